#!/usr/bin/env bash
# Sets up the machine, builds everything and runs the whole test suite.
# With a preset name (asan, tsan, clang, arm64) it builds and tests that preset instead; arm64
# cross-builds for the device and runs the suite under qemu-aarch64.
set -euo pipefail
cd "$(dirname "$0")/.."
preset="${1:-default}"
if [ "$preset" = arm64 ]; then
    bash scripts/setup.sh arm64
else
    bash scripts/setup.sh
fi
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" -j "$(nproc)"
ctest --preset "$preset"
