#!/usr/bin/env bash
# Sets up the machine, builds everything and runs the whole test suite.
# With a preset name (asan, tsan, clang) it builds and tests that preset instead.
set -euo pipefail
cd "$(dirname "$0")/.."
preset="${1:-default}"
bash scripts/setup.sh
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" -j "$(nproc)"
ctest --preset "$preset"
