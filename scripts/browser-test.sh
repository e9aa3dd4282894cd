#!/usr/bin/env bash
# The real-browser test of `refdoc serve`: installs Debian's chromium and the pinned
# playwright-core (npm ci, no browser download), builds the tool and drives headless Chromium
# through the sample root. Screenshots go to build/browser/.
#   scripts/browser-test.sh [preset]      (default: debug)
set -euo pipefail
cd "$(dirname "$0")/.."
preset="${1:-debug}"

./scripts/setup.sh
# The Japanese font is for the screenshots of the sample's Japanese texts.
font_installed=$(dpkg-query -W -f='${Status}' fonts-ipafont-gothic 2>/dev/null || true)
if ! command -v chromium >/dev/null || ! command -v node >/dev/null || ! command -v npm >/dev/null ||
   [[ "$font_installed" != "install ok installed" ]]; then
  SUDO=""
  if [[ $(id -u) -ne 0 ]]; then SUDO="sudo"; fi
  export DEBIAN_FRONTEND=noninteractive
  $SUDO apt-get update -qq
  missing=(chromium fonts-ipafont-gothic)
  command -v node >/dev/null || missing+=(nodejs)
  command -v npm >/dev/null || missing+=(npm)
  $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi

(cd tests/browser && npm ci --no-audit --no-fund --silent)

cmake --preset "$preset" -DREFDOC_WERROR=ON >/dev/null
cmake --build --preset "$preset" --target refdoc refdoc_corpus
node tests/browser/serve.test.mjs "build/$preset/tools/refdoc/refdoc" build/browser
# The server under load on a generated root: figures for the log, no verdict on them.
python3 scripts/serve-load.py --tool "build/$preset/tools/refdoc/refdoc" --corpus-tool "build/$preset/bench/refdoc_corpus"
