#!/usr/bin/env bash
# Lays out every C++ file git tracks as .clang-format says.
#   scripts/format.sh           rewrites the files in place
#   scripts/format.sh --check   changes nothing; fails and names the files that differ
set -euo pipefail
cd "$(dirname "$0")/.."

./scripts/setup.sh
mapfile -t files < <(git ls-files '*.cpp' '*.hpp')
if [[ "${1:-}" == "--check" ]]; then
  clang-format --dry-run --Werror "${files[@]}"
  echo "format: ${#files[@]} files laid out as .clang-format says"
else
  clang-format -i "${files[@]}"
fi
