#!/usr/bin/env bash
# Installs the default build into a temporary prefix, then builds and runs the example consumer
# against it twice: through the CMake package and through pkg-config.
set -euo pipefail
cd "$(dirname "$0")/.."
prefix=$(mktemp -d)
work=$(mktemp -d)
trap 'rm -rf "$prefix" "$work"' EXIT
cmake --build --preset default >/dev/null
cmake --install build/default --prefix "$prefix" >/dev/null
cmake -S examples/consumer -B "$work/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$work/cmake" >/dev/null
LD_LIBRARY_PATH="$prefix/lib" "$work/cmake/consumer"
PKG_CONFIG_PATH="$prefix/lib/pkgconfig" c++ -std=c++17 examples/consumer/main.cpp -o "$work/consumer-pc" \
    $(PKG_CONFIG_PATH="$prefix/lib/pkgconfig" pkg-config --cflags --libs kavo-push)
LD_LIBRARY_PATH="$prefix/lib" "$work/consumer-pc" >/dev/null
echo "check-install: the installed package builds and runs a consumer (CMake package and pkg-config)"
