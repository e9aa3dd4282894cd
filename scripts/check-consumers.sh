#!/usr/bin/env bash
# Builds the example consumer (tests/consumer) the ways an application takes the library and runs
# it: against an installed package with find_package(refdoc), with a plain compiler command and
# the installed refdoc.pc, and with the sources pulled in by add_subdirectory. The consumer is
# linked as needed, so an installed library that cannot find its own dependencies fails here.
#
#   scripts/check-consumers.sh                      builds its own release library below build/consumers
#   scripts/check-consumers.sh --build DIR [WAY...] installs the built tree DIR below DIR/consumers
#                                                   (what ctest runs, one way per test)
# WAY is install, find_package, pkg-config or add_subdirectory; without one, all of them in turn.
set -euo pipefail
cd "$(dirname "$0")/.."
root="$PWD"

build=""
if [[ ${1:-} == --build ]]; then
  build=$(cd "$2" && pwd)
  shift 2
fi
ways=("$@")
if ((${#ways[@]} == 0)); then
  ways=(install find_package pkg-config add_subdirectory)
fi
work="${build:-$root/build}/consumers"
prefix="$work/prefix"
jobs=(--parallel 2)
# A consumer must find the libraries through the paths linked into it, not the environment.
unset LD_LIBRARY_PATH

for way in "${ways[@]}"; do
  case "$way" in
  install)
    rm -rf "$prefix"
    if [[ -z $build ]]; then
      ./scripts/setup.sh
      build="$work/lib"
      cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DREFDOC_WERROR=ON \
        -DREFDOC_BUILD_TESTS=OFF -DREFDOC_BUILD_TOOLS=OFF -DREFDOC_BUILD_BENCHMARKS=OFF >/dev/null
      cmake --build "$build" "${jobs[@]}"
    fi
    cmake --install "$build" --prefix "$prefix" >/dev/null
    ;;
  find_package)
    rm -rf "$work/installed"
    cmake -S "$root/tests/consumer" -B "$work/installed" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
    cmake --build "$work/installed" "${jobs[@]}"
    "$work/installed/refdoc_consumer"
    ;;
  pkg-config)
    pcdir=$(dirname "$(find "$prefix" -name refdoc.pc | head -n 1)")
    cflags=$(PKG_CONFIG_PATH="$pcdir" pkg-config --cflags refdoc)
    libs=$(PKG_CONFIG_PATH="$pcdir" pkg-config --libs refdoc)
    libdir=$(PKG_CONFIG_PATH="$pcdir" pkg-config --variable=libdir refdoc)
    if [[ $cflags == *-std=* ]]; then
      echo "refdoc.pc must leave the language standard to the application: $cflags" >&2
      exit 1
    fi
    mkdir -p "$work/pkgconfig"
    # shellcheck disable=SC2086 # the flags are words
    "${CXX:-c++}" -std=c++20 -Wall -Wextra -Wpedantic -Werror -I"$root/tests/consumer/include" \
      "$root/tests/consumer/main.cpp" $cflags \
      -Wl,--as-needed $libs -Wl,-rpath,"$libdir" -o "$work/pkgconfig/refdoc_consumer"
    "$work/pkgconfig/refdoc_consumer"
    ;;
  add_subdirectory)
    rm -rf "$work/subdir"
    cmake -S "$root/tests/consumer" -B "$work/subdir" -G Ninja -DREFDOC_SOURCE_DIR="$root" >/dev/null
    cmake --build "$work/subdir" "${jobs[@]}"
    "$work/subdir/refdoc_consumer"
    ;;
  *)
    echo "unknown way: $way" >&2
    exit 2
    ;;
  esac
  echo "consumer: $way works"
done
