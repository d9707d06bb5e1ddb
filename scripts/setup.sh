#!/usr/bin/env bash
# Installs what the build needs on a Debian machine, only when something is missing.
# Run as root (or with sudo available). Safe to run again: it does nothing the second time.
# `setup.sh arm64` adds the 64-bit ARM cross build: the cross compiler, the arm64 -dev packages
# (multiarch) and the emulator that runs its tests.
set -euo pipefail

# The default set: build, tests, benchmarks (protobuf is a benchmark's baseline), the
# Debian packages (dpkg-shlibdeps, file, lintian), the binary-interface check (abidw, abidiff)
# and the guide's check (python3).
packages=(g++ clang cmake ninja-build pkg-config make openssl libssl-dev libjsoncpp-dev
          libgtest-dev libgmock-dev libbenchmark-dev libprotobuf-dev protobuf-compiler
          dpkg-dev file lintian abigail-tools python3)
arm64_packages=(g++-aarch64-linux-gnu qemu-user libc6:arm64 libssl-dev:arm64 libjsoncpp-dev:arm64
                libgtest-dev:arm64 libgmock-dev:arm64)

sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then
    sudo_cmd=(sudo)
fi

case "${1:-}" in
"") ;;
arm64)
    if ! dpkg --print-foreign-architectures | grep -qx arm64; then
        echo "setup: adding the arm64 architecture" >&2
        "${sudo_cmd[@]}" dpkg --add-architecture arm64
    fi
    packages+=("${arm64_packages[@]}")
    ;;
*)
    echo "usage: setup.sh [arm64]" >&2
    exit 2
    ;;
esac

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
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2
