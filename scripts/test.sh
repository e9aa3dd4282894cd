#!/usr/bin/env bash
# Installs what is missing, builds with warnings as errors and runs the whole test suite.
#   scripts/test.sh            debug build
#   scripts/test.sh asan       address + undefined-behaviour sanitizers
#   scripts/test.sh tsan       thread sanitizer
# Extra arguments after the preset go to ctest (for example -R settings).
set -euo pipefail
cd "$(dirname "$0")/.."

preset="${1:-debug}"
shift || true

./scripts/setup.sh
cmake --preset "$preset" -DREFDOC_WERROR=ON >/dev/null
cmake --build --preset "$preset"
ctest --preset "$preset" "$@"
