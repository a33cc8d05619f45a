#!/bin/bash
# Compares the binary interface of the three libraries with the descriptions in docs/abi.
#
#     cmake/abi-check.sh [--record] [build folder]
#
# Fails when a library is no longer compatible with its description: a name is gone, a class has another size, virtual
# functions stand in another order. Additions are shown and allowed. A library with another SONAME needs a
# description of its own. --record writes the descriptions anew. The build folder (by default a temporary one) is
# configured by this script, with the debug information that the descriptions are made from.
set -euo pipefail

source_dir=$(cd "$(dirname "$0")/.." && pwd)
descriptions=$source_dir/docs/abi
record=no
if [ "${1:-}" = --record ]; then
    record=yes
    shift
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
build=${1:-$work/build}

if command -v ccache >/dev/null; then
    export CMAKE_CXX_COMPILER_LAUNCHER=ccache CCACHE_NOHASHDIR=1
fi
# One compiler and one level of optimisation: both decide which inline functions are left in a library. The descriptions
# name sources by where they stand in the tree, not on this machine.
if ! {
    cmake -S "$source_dir" -B "$build" -G Ninja -DCMAKE_CXX_COMPILER=g++ -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O2 -g -DNDEBUG -ffile-prefix-map=$source_dir/=" -DCMAKE_INSTALL_LIBDIR=lib \
        -DZELK_BUILD_TESTS=OFF -DZELK_BUILD_TOOLS=OFF -DZELK_BUILD_EXAMPLES=OFF -DCMAKE_SKIP_INSTALL_RPATH=ON &&
        cmake --build "$build" -j "$(nproc)" &&
        cmake --install "$build" --component runtime --prefix "$work/installed" &&
        cmake --install "$build" --component development --prefix "$work/installed"
} >"$work/log" 2>&1; then
    cat "$work/log" >&2
    exit 1
fi
installed=$work/installed

# What is not in a public header is no part of the interface.
describe() {
    abidw --headers-dir "$installed/include/zelk" --drop-private-types --exported-interfaces-only \
        --no-corpus-path --no-comp-dir-path --no-show-locs "$1"
}

passed=0
failed=0
for name in ZelkCore ZelkMessagesCommon ZelkStateMessages; do
    library=$installed/lib/lib$name.so
    soname=$(objdump -p "$library" | awk '$1 == "SONAME" { print $2 }')
    description=$descriptions/$soname.abi
    if [ $record = yes ]; then
        mkdir -p "$descriptions"
        describe "$library" >"$description"
        echo "recorded $soname: $(grep -c '<elf-symbol ' "$description") names"
        continue
    fi
    if [ ! -f "$description" ]; then
        echo "FAILED: $soname has no description; a new SONAME is recorded with cmake/abi-check.sh --record" >&2
        failed=$((failed + 1))
        continue
    fi
    describe "$library" >"$work/$soname.abi"
    # Without the additions, everything that abidiff still reports can break a program that is linked already.
    status=0
    abidiff --no-added-syms "$description" "$work/$soname.abi" >"$work/report" 2>&1 || status=$?
    if [ $status -ne 0 ]; then
        cat "$work/report" >&2
        echo "FAILED: $soname is not compatible with docs/abi/$soname.abi (abidiff ended with $status)" >&2
        failed=$((failed + 1))
        continue
    fi
    abidiff "$description" "$work/$soname.abi" >"$work/report" 2>&1 || cat "$work/report"
    echo "ok: $soname"
    passed=$((passed + 1))
done
[ $record = yes ] || echo "$passed passed, $failed failed"
exit $((failed > 0))
