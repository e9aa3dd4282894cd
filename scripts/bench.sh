#!/usr/bin/env bash
# The benchmark, from a clean clone: installs what is missing, builds the corpus generator and the
# harness in release mode, generates a corpus of each profile (build/bench/corpus-default and
# build/bench/corpus-varied), runs every benchmark on both (medians over repetitions, repetitions
# of different benchmarks interleaved) and writes build/bench/summary.md, build/bench/summary.json
# and the raw Google Benchmark output build/bench/raw.json. Prints the summary tables.
#
#   scripts/bench.sh [harness or Google Benchmark flags, e.g. --benchmark_filter=lookup]
#
# The search benchmarks run on a corpus of each profile scaled to about ten times as many lookup
# entries (build/bench/search-default and build/bench/search-varied, lookup files only).
#
# Environment: BENCH_REPETITIONS (default 10), BENCH_MIN_TIME (seconds per repetition, default
# 0.5), BENCH_SEED, BENCH_PRODUCTS (default 60), BENCH_MEAN_ITEMS (default 900),
# BENCH_SEARCH_MEAN_ITEMS (entries per product of the search corpora, default 9000).
set -euo pipefail
cd "$(dirname "$0")/.."

repetitions="${BENCH_REPETITIONS:-10}"
min_time="${BENCH_MIN_TIME:-0.5}"
corpus_args=(--products "${BENCH_PRODUCTS:-60}" --mean-items "${BENCH_MEAN_ITEMS:-900}")
if [[ -n "${BENCH_SEED:-}" ]]; then corpus_args+=(--seed "$BENCH_SEED"); fi

./scripts/setup.sh
cmake --preset release -DREFDOC_WERROR=ON >/dev/null
cmake --build --preset release --target refdoc_corpus refdoc_bench refdoc_bench_profile

out=build/bench
mkdir -p "$out"
rm -rf "$out/corpus" # the single corpus of earlier versions
harness_corpora=()
for profile in default varied; do
  corpus="$out/corpus-$profile"
  rm -rf "$corpus"
  build/release/bench/refdoc_corpus "$corpus" --profile "$profile" "${corpus_args[@]}"
  harness_corpora+=(--corpus "$corpus")
  search="$out/search-$profile"
  rm -rf "$search"
  build/release/bench/refdoc_corpus "$search" --profile "$profile" --no-pages --products "${BENCH_PRODUCTS:-60}" \
    --mean-items "${BENCH_SEARCH_MEAN_ITEMS:-9000}" ${BENCH_SEED:+--seed "$BENCH_SEED"}
  harness_corpora+=(--search-corpus "$search")
done

label="$(git rev-parse --short HEAD 2>/dev/null || echo unknown)"
if ! git diff --quiet HEAD 2>/dev/null; then label+="+changes"; fi

build/release/bench/refdoc_bench "${harness_corpora[@]}" --summary "$out" --label "$label" \
  --benchmark_repetitions="$repetitions" --benchmark_min_time="$min_time" \
  --benchmark_enable_random_interleaving=true --benchmark_report_aggregates_only=true \
  --benchmark_out="$out/raw.json" --benchmark_out_format=json "$@"
echo
echo "bench: summary in $out/summary.md and $out/summary.json"
