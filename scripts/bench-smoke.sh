#!/usr/bin/env bash
# A smoke run of the benchmark for CI: builds the corpus generator, the harness and the profiling
# driver, and runs each once on a tiny corpus of each profile, the straightforward reader
# included. Asserts nothing about speed; fails only when a tool fails (a corpus the library or the
# reader cannot load makes the floor, a load or the reader throw). The search benchmarks run on the
# same tiny corpora.
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
"$bin/refdoc_corpus" "$out/corpus-default" --products 6 --mean-items 30
"$bin/refdoc_corpus" "$out/corpus-varied" --products 6 --mean-items 30 --profile varied
"$bin/refdoc_bench" --corpus "$out/corpus-default" --corpus "$out/corpus-varied" \
  --search-corpus "$out/corpus-default" --search-corpus "$out/corpus-varied" --summary "$out" --label smoke \
  --benchmark_min_time=0.01 --benchmark_repetitions=1
for profile in default varied; do
  for load in lookup lookup-floor lookup-peer pages pages-floor pages-peer; do
    "$bin/refdoc_bench_profile" "$out/corpus-$profile" "$load" ja 1 --profile "$profile" --free
  done
done
test -s "$out/summary.md" && test -s "$out/summary.json"
grep -q '^### Profile default' "$out/summary.md" && grep -q '^### Profile varied' "$out/summary.md"
grep -q 'straightforward reader, pages ja' "$out/summary.md"
grep -q '^### Search index, profile default' "$out/summary.md" && grep -q '^### Search index, profile varied' "$out/summary.md"
grep -q 'speed-up over a linear scan' "$out/summary.md"
rm -rf "$out/corpus-default" "$out/corpus-varied"
echo "bench-smoke: corpus, harness and profiling driver all ran"
