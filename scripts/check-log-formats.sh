#!/usr/bin/env bash
# Checks the arguments of every log, report and result format against its conversions, with the
# compiler's printf checking. Log formats carry privacy markers ("%{public}s") that are no printf,
# so this compiles a copy of the sources with the markers stripped from their text, defining
# KAVO_LOG_FORMAT_CHECK (which turns the checking on), syntax only.
# Usage: scripts/check-log-formats.sh [BUILD_DIR]   (default build/default, configured already)
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build/default}
copy=$build/log-format-check
rm -rf "$copy"
mkdir -p "$copy"
cd "$root"
git ls-files kavo tools tests fuzz bench | while read -r file; do
    mkdir -p "$copy/$(dirname "$file")"
    sed -e 's/%{public}/%/g' -e 's/%{private}/%/g' "$file" >"$copy/$file"
done
python3 - "$build/compile_commands.json" "$root" "$copy" <<'PY' | xargs -0 -n1 -P2 bash -c
import json, shlex, sys
commands, root, copy = sys.argv[1:]
for entry in json.load(open(commands)):
    args = shlex.split(entry["command"])
    if "-o" in args:
        i = args.index("-o")
        del args[i:i + 2]
    args = [a.replace(root, copy) for a in args]
    args += ["-fsyntax-only", "-DKAVO_LOG_FORMAT_CHECK", "-Werror=format"]
    sys.stdout.write("cd " + shlex.quote(entry["directory"]) + " && " + shlex.join(args) + "\0")
PY
echo "log formats: checked"
