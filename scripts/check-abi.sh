#!/usr/bin/env bash
# Compares the binary interface of each shared object of the default build with its checked-in
# baseline, abi/<SONAME>.abi (libabigail's abidw), as abidiff sees it:
#   - any change but an addition (a function or variable removed, a member added to or taken
#     from an exported class, a type changed) fails, unless the SONAME changed with it, which
#     makes it a new interface with no baseline yet;
#   - an addition (a function or variable) passes and is reported.
# `check-abi.sh --update` rewrites the baselines from the build: run it when a change to the
# interface is meant, and commit abi/ with the change. KAVO_ABI_BUILD names another build folder.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${KAVO_ABI_BUILD:-build/default}
update=0
case "${1:-}" in
"") ;;
--update) update=1 ;;
*) echo "usage: check-abi.sh [--update]" >&2; exit 2 ;;
esac

# Only what the library exports (its symbols and the types they reach) is its interface;
# locations, the checkout's folder and sequence numbers are left out of the text.
dump() {
    abidw --exported-interfaces-only --no-show-locs --no-corpus-path --no-comp-dir-path --type-id-style hash \
        "$1" | sed "s#path='$PWD/#path='#" >"$2"
}
soname() { readelf -d "$1" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p'; }

options=(--exported-interfaces-only --no-show-locs)
failed=0
for library in kavo_host kavo_push; do
    object=$(readlink -f "$build/lib$library.so")
    [ -f "$object" ] || { echo "check-abi: no $build/lib$library.so: build the default preset first" >&2; exit 1; }
    name=$(soname "$object")
    baseline=abi/$name.abi
    if [ $update = 1 ]; then
        # The text abidw writes depends on the build's folder as well (which translation unit a
        # type is listed under), so a baseline that abidiff finds equal is kept as it is.
        if [ -f "$baseline" ] && abidiff "${options[@]}" "$baseline" "$object" >/dev/null; then
            echo "check-abi: $baseline kept: same interface"
            continue
        fi
        mkdir -p abi
        rm -f abi/lib"$library".so.*.abi
        dump "$object" "$baseline"
        echo "check-abi: $baseline written"
        continue
    fi
    if [ ! -f "$baseline" ]; then
        # A new SONAME (or a first library): there is nothing it must stay compatible with.
        echo "check-abi: $name has no baseline (a new SONAME?); write one with check-abi.sh --update" >&2
        ls abi/lib"$library".so.*.abi >/dev/null 2>&1 || failed=1
        continue
    fi
    # As DPDK's check-abi does: first with additions hidden, where any change left fails.
    status=0
    report=$(abidiff "${options[@]}" --no-added-syms "$baseline" "$object") || status=$?
    if (( status & 3 )); then  # abidiff itself failed, or was called wrongly
        echo "check-abi: abidiff could not compare $name ($status)" >&2
        echo "$report" >&2
        failed=1
    elif (( status )); then
        echo "check-abi: $name: the interface changed, and the SONAME is still $name:" >&2
        echo "$report" >&2
        failed=1
    elif report=$(abidiff "${options[@]}" "$baseline" "$object"); then
        echo "check-abi: $name: same interface as $baseline"
    else
        echo "check-abi: $name: additions only (refresh the baseline with check-abi.sh --update):"
        echo "$report"
    fi
done
exit $failed
