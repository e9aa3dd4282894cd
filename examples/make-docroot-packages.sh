#!/usr/bin/env bash
# Rebuilds the sample documentation root's zip packages from their JSON sources:
#   examples/docroot-packages/<package>/*.json  ->  examples/docroot/docCatalog/referenceapi_lookup/<package>.zip
# The packages come out byte for byte the same on every run (entries in name order, one fixed
# timestamp and file mode, no extra attributes), so a rebuild shows up in git only when a source
# changed. An output folder may be given instead of the sample root's lookup folder.
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
out="${1:-$here/docroot/docCatalog/referenceapi_lookup}"
mkdir -p "$out"
out="$(cd "$out" && pwd)"

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

for source in "$here"/docroot-packages/*/; do
  package="$(basename "$source")"
  mkdir "$work/$package"
  cp "$source"/*.json "$work/$package/"
  chmod 644 "$work/$package"/*.json
  TZ=UTC touch -d '2024-01-01 00:00:00' "$work/$package"/*.json
  rm -f "$out/$package.zip"
  (cd "$work/$package" && LC_ALL=C ls -1 ./*.json | sed 's|^\./||' | TZ=UTC zip -X -D -q "$out/$package.zip" -@)
  echo "$out/$package.zip"
done
