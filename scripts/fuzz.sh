#!/usr/bin/env bash
# Builds the fuzz preset (clang, libFuzzer, address + undefined-behaviour sanitizers) and runs each
# fuzz target for a while.
#   scripts/fuzz.sh                      every target, 60 s each
#   scripts/fuzz.sh 900 page_file        one target for 15 minutes
# The targets are those of fuzz/targets.txt. Seeds come from fuzz/corpus/<target> and the folders
# that targets.txt names for it (other corpora, the sample documentation root); all are only read.
# Everything a run writes (the grown corpus, crash and timeout inputs, the log) stays under
# build/fuzz/runs/<target>.
# Exits non-zero as soon as a target reports a fault; the reproducer is named in the log.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds="${1:-60}"
shift || true

# fuzz/targets.txt: name, class, then the seed folders besides fuzz/corpus/<name>.
declare -A seed_folders
all_targets=()
while read -r name class folders; do
  [[ -z $name || $name == \#* ]] && continue
  all_targets+=("$name")
  seed_folders[$name]="$folders"
done <fuzz/targets.txt

targets=("$@")
if ((${#targets[@]} == 0)); then
  targets=("${all_targets[@]}")
fi
for target in "${targets[@]}"; do
  if [[ ! -v seed_folders[$target] ]]; then
    echo "fuzz: unknown target $target (see fuzz/targets.txt)" >&2
    exit 2
  fi
done

./scripts/setup.sh
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz --target "${targets[@]/#/refdoc_fuzz_}"

# Resource files are small; 64 KiB leaves room for many documents and for zip structure.
maxlen=65536
for target in "${targets[@]}"; do
  run="build/fuzz/runs/$target"
  mkdir -p "$run/corpus" "$run/artifacts"
  seeds=()
  for folder in "fuzz/corpus/$target" ${seed_folders[$target]}; do
    [[ -d $folder ]] && seeds+=("$folder")
  done
  echo "== $target for ${seconds}s"
  # -rss_limit_mb also caps single allocations; -timeout catches inputs that take too long.
  set +e
  ASAN_OPTIONS="detect_leaks=1:allocator_may_return_null=0" \
  UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1" \
  "build/fuzz/fuzz/refdoc_fuzz_$target" \
    -max_total_time="$seconds" -max_len="$maxlen" -rss_limit_mb=2048 -timeout=10 \
    -dict="fuzz/$target.dict" -artifact_prefix="$run/artifacts/" -print_final_stats=1 \
    "$run/corpus" "${seeds[@]}" >"$run/fuzz.log" 2>&1
  status=$?
  set -e
  grep -E '^#[0-9]+[[:space:]]+(INITED|DONE)|ERROR|SUMMARY|^stat::|Test unit written' "$run/fuzz.log" || true
  if ((status != 0)); then
    echo "fuzz: $target failed (exit $status); see $run/fuzz.log" >&2
    exit "$status"
  fi
done
