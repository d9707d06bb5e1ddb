#!/usr/bin/env bash
# Sets up the machine, builds the kavo-push tool and runs its main job.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake --preset default >/dev/null
cmake --build --preset default --target kavo-push >/dev/null
exec ./build/default/tools/kavo-push/kavo-push demo "$@"
