#!/usr/bin/env bash
# Makes the four Debian packages of the default build and unpacks them into a temporary root
# (nothing is installed on the machine). Against that root it builds and runs the example
# consumer twice, through the CMake package and through pkg-config, builds the guide's programs
# (examples/guide, each checking its own output) and runs them, and runs the packaged tool.
# Lintian checks the packages: an error fails the run, warnings are printed.
set -euo pipefail
cd "$(dirname "$0")/.."
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "check-install: $*" >&2; exit 1; }

cmake --build --preset default >/dev/null
cpack --config build/default/CPackConfig.cmake -B "$work/debs" >/dev/null
debs=("$work"/debs/*.deb)
[ ${#debs[@]} -eq 4 ] || fail "expected 4 packages, got: ${debs[*]##*/}"
root="$work/root"
for deb in "${debs[@]}"; do
    dpkg-deb -x "$deb" "$root"
    package=$(dpkg-deb -f "$deb" Package)
    printf '%s: Installed-Size %s KiB; Depends: %s\n' "$package" \
        "$(dpkg-deb -f "$deb" Installed-Size)" "$(dpkg-deb -f "$deb" Depends)"
    case "$package" in
    libkavo-push-dev) ;;
    *) dpkg-deb -f "$deb" Depends | grep -q -- '-dev' && fail "$deb: a run-time package depends on a -dev package" ;;
    esac
    # A library package holds the one shared object its name comes from (libkavo-push0:
    # libkavo_push.so.0).
    case "$package" in
    libkavo-*[0-9])
        soname=$(sed -E 's/^lib(kavo)-(.*[^0-9])([0-9]+)$/lib\1_\2.so.\3/' <<<"$package")
        objects=$(dpkg-deb -c "$deb" | grep -o '[^/ ]*\.so\.[0-9]*' | sort -u | tr '\n' ' ')
        [ "$objects" = "$soname " ] || fail "$package holds $objects, not $soname alone"
        ;;
    esac
done
dpkg-deb -f "$work"/debs/libkavo-push[0-9]*.deb Depends | grep -q 'libkavo-host[0-9]' ||
    fail "libkavo-push does not depend on libkavo-host"
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
cmake -S examples/guide -B "$work/guide" -G Ninja -DCMAKE_PREFIX_PATH="$root/usr" >/dev/null
cmake --build "$work/guide" >/dev/null
ctest --test-dir "$work/guide" --output-on-failure >/dev/null || fail "a guide program shows what the guide does not say"
"$root/usr/bin/kavo-push" errors >/dev/null

lintian --fail-on error "${debs[@]}"
echo "check-install: 4 packages; the unpacked packages build and run a consumer (CMake package and pkg-config), the guide's programs and the tool"
