#!/usr/bin/env bash
# The README's first command: installs what is missing (Debian 12), builds the refdoc tool in
# the release preset and runs `refdoc lookup` on the bundled sample documentation root.
# Arguments go to `refdoc lookup`, e.g. scripts/run.sh --lang ja, or --root DIR for another root.
# Build output goes to stderr, so stdout is only what refdoc prints.
set -euo pipefail
cd "$(dirname "$0")/.."

./scripts/setup.sh >&2
cmake --preset release >/dev/null
cmake --build --preset release --target refdoc >&2
exec ./build/release/tools/refdoc/refdoc lookup "$@"
