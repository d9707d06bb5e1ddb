#!/usr/bin/env bash
# Makes the three Debian packages of the default build and unpacks them into a temporary root
# (nothing is installed on the machine). Against that root it builds and runs the example
# consumer twice, through the CMake package and through pkg-config, and runs the packaged tool.
# Lintian checks the packages: an error fails the run, warnings are printed.
set -euo pipefail
cd "$(dirname "$0")/.."
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "check-install: $*" >&2; exit 1; }

cmake --build --preset default >/dev/null
cpack --config build/default/CPackConfig.cmake -B "$work/debs" >/dev/null
debs=("$work"/debs/*.deb)
[ ${#debs[@]} -eq 3 ] || fail "expected 3 packages, got: ${debs[*]##*/}"
root="$work/root"
for deb in "${debs[@]}"; do
    dpkg-deb -x "$deb" "$root"
    printf '%s: Installed-Size %s KiB; Depends: %s\n' "$(dpkg-deb -f "$deb" Package)" \
        "$(dpkg-deb -f "$deb" Installed-Size)" "$(dpkg-deb -f "$deb" Depends)"
    case "$(dpkg-deb -f "$deb" Package)" in
    libkavo-push-dev) ;;
    *) dpkg-deb -f "$deb" Depends | grep -q -- '-dev' && fail "$deb: a run-time package depends on a -dev package" ;;
    esac
done
while IFS= read -r elf; do
    file -L "$elf" | grep -q ', stripped' || fail "not stripped: ${elf#"$root"}"
done < <(find "$root" -type f \( -name '*.so*' -o -path '*/bin/*' \))

libdir=$(dirname "$(find "$root" -name 'libkavo_push.so' | head -n 1)")
export LD_LIBRARY_PATH="$libdir"
cmake -S examples/consumer -B "$work/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$root/usr" >/dev/null
cmake --build "$work/cmake" >/dev/null
"$work/cmake/consumer"
export PKG_CONFIG_PATH="$libdir/pkgconfig"
# shellcheck disable=SC2046 # pkg-config prints several words on purpose
c++ -std=c++17 examples/consumer/main.cpp -o "$work/consumer-pc" $(pkg-config --cflags --libs kavo-push)
"$work/consumer-pc" >/dev/null
"$root/usr/bin/kavo-push" errors >/dev/null

lintian --fail-on error "${debs[@]}"
echo "check-install: 3 packages; the unpacked packages build and run a consumer (CMake package and pkg-config) and the tool"
