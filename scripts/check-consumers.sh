#!/usr/bin/env bash
# Builds the example consumer three ways: against an installed package (find_package), with the
# sources pulled in by add_subdirectory, and with a plain compiler command through pkg-config. Everything goes below build/consumers.
set -euo pipefail
cd "$(dirname "$0")/.."
root="$PWD"
work="$root/build/consumers"
rm -rf "$work"
mkdir -p "$work"

./scripts/setup.sh

# 1. Install the library into a private prefix and consume it with find_package(refdoc).
cmake -S "$root" -B "$work/lib" -G Ninja -DCMAKE_BUILD_TYPE=Release -DREFDOC_WERROR=ON \
  -DREFDOC_BUILD_TESTS=OFF -DREFDOC_BUILD_TOOLS=OFF -DCMAKE_INSTALL_PREFIX="$work/prefix" >/dev/null
cmake --build "$work/lib"
cmake --install "$work/lib" >/dev/null
cmake -S "$root/tests/consumer" -B "$work/installed" -G Ninja -DCMAKE_PREFIX_PATH="$work/prefix" >/dev/null
cmake --build "$work/installed"
"$work/installed/refdoc_consumer"

# 2. The same consumer with the library as a subdirectory.
cmake -S "$root/tests/consumer" -B "$work/subdir" -G Ninja -DREFDOC_SOURCE_DIR="$root" >/dev/null
cmake --build "$work/subdir"
"$work/subdir/refdoc_consumer"
# 3. The same consumer without CMake: the compiler and linker flags from the installed refdoc.pc.
pcdir=$(dirname "$(find "$work/prefix" -name refdoc.pc | head -n 1)")
flags=$(PKG_CONFIG_PATH="$pcdir" pkg-config --cflags --libs refdoc)
mkdir -p "$work/pkgconfig"
# shellcheck disable=SC2086 # the flags are words
c++ -Wall -Wextra -Wpedantic -Werror "$root/tests/consumer/main.cpp" $flags \
  -Wl,-rpath,"$(PKG_CONFIG_PATH="$pcdir" pkg-config --variable=libdir refdoc)" -o "$work/pkgconfig/refdoc_consumer"
"$work/pkgconfig/refdoc_consumer"
echo "consumers: find_package, add_subdirectory and pkg-config builds all work"
