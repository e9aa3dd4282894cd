#!/usr/bin/env bash
# Installs everything refdoc needs to build, test, benchmark and fuzz on Debian 12.
# Idempotent: when every package is already present it only runs dpkg-query and exits.
# (zipcmp, zipmerge and ziptool are listed because libzip-dev's CMake package refers to them;
# zip, unzip and python3 write the test packages of everyday zip writers; python3-jsonschema
# checks the published schemas against the library.)
set -euo pipefail

PACKAGES=(
  build-essential cmake ninja-build pkg-config git zip unzip python3 python3-jsonschema doxygen
  clang clang-format libclang-rt-14-dev
  libboost1.81-dev libboost-json1.81-dev libboost-log1.81-dev libboost-exception1.81-dev
  libzip-dev zipcmp zipmerge ziptool zlib1g-dev libicu-dev
  libgtest-dev libgmock-dev libbenchmark-dev nlohmann-json3-dev
  libcli11-dev libcpp-httplib-dev libboost-url1.81-dev
)

missing=()
for p in "${PACKAGES[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$p" 2>/dev/null || true)
  [[ "$status" == "install ok installed" ]] || missing+=("$p")
done

if ((${#missing[@]} == 0)); then
  exit 0
fi

echo "setup: installing ${missing[*]}"
SUDO=""
if [[ $(id -u) -ne 0 ]]; then SUDO="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
