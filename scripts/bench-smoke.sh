#!/usr/bin/env bash
# A smoke run of the benchmark for CI: builds the corpus generator, the harness and the profiling
# driver, and runs each once on a small corpus. Asserts nothing about speed; fails only when a
# tool fails (a corpus the library cannot load makes the floor or a load throw).
#
#   scripts/bench-smoke.sh [preset]     (default: debug, the build CI has already made)
set -euo pipefail
cd "$(dirname "$0")/.."

preset="${1:-debug}"
./scripts/setup.sh
cmake --preset "$preset" -DREFDOC_WERROR=ON >/dev/null
cmake --build --preset "$preset" --target refdoc_corpus refdoc_bench refdoc_bench_profile

bin="build/$preset/bench"
out="build/$preset/bench-smoke"
rm -rf "$out"
mkdir -p "$out"
"$bin/refdoc_corpus" "$out/corpus" --products 8 --mean-items 60
"$bin/refdoc_bench" --corpus "$out/corpus" --summary "$out" --label smoke \
  --benchmark_min_time=0.01 --benchmark_repetitions=1
for load in lookup lookup-floor pages pages-floor; do
  "$bin/refdoc_bench_profile" "$out/corpus" "$load" ja 1
done
test -s "$out/summary.md" && test -s "$out/summary.json"
rm -rf "$out/corpus"
echo "bench-smoke: corpus, harness and profiling driver all ran"
