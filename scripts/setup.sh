#!/usr/bin/env bash
# Installs what the build needs on a Debian machine, only when something is missing.
# Run as root (or with sudo available). Safe to run again: it does nothing the second time.
set -euo pipefail

packages=(g++ clang cmake ninja-build pkg-config make openssl libssl-dev libjsoncpp-dev
          libgtest-dev libgmock-dev libbenchmark-dev)

missing=()
for pkg in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$pkg")
    fi
done

if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

echo "setup: installing ${missing[*]}" >&2
sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then
    sudo_cmd=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2
