#!/usr/bin/env bash
# What takes too long for every change: nightly.sh [FUZZING_SECONDS]
# The stages of ./test --all, users' projects in every language standard, the tests against planted faults and under
# valgrind, and each fuzzing harness for a long time: half an hour unless told otherwise.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-1800}

scripts/setup.sh test
export CMAKE_CXX_COMPILER_LAUNCHER=ccache CCACHE_NOHASHDIR=1
mkdir -p build
failed=()

# attempt NAME COMMAND...: goes on when the command fails, and remembers it.
attempt() {
    local name=$1
    shift
    echo "== $name"
    "$@" || failed+=("$name")
}

valgrind_tests() {
    local memcheck="valgrind;--quiet;--leak-check=full;--errors-for-leak-kinds=definite,indirect"
    memcheck+=";--show-leak-kinds=definite,indirect;--num-callers=25;--error-exitcode=99"
    # Some test programs bring an operator new that fails when told to; valgrind is to leave it to them.
    memcheck+=";--soname-synonyms=somalloc=nouserintercepts"
    # Optimised, since valgrind makes everything many times slower; CMake puts the emulator before every test program.
    cmake --preset release -B build/valgrind -DCMAKE_CXX_FLAGS_RELEASE="-O1 -g1" \
        -DCMAKE_CROSSCOMPILING_EMULATOR="$memcheck" >build/valgrind.log &&
        cmake --build build/valgrind -j "$(nproc)" -- --quiet &&
        ctest --test-dir build/valgrind -j "$(nproc)" --timeout 7200 --output-on-failure --no-tests=error \
            -LE product
}

attempt "every stage" env ZELK_ALL_STANDARDS=1 ./test --all
attempt "planted faults" scripts/mutation.sh
attempt "tests under valgrind" valgrind_tests
attempt "fuzzing" scripts/fuzz.sh "$seconds"

if [ ${#failed[@]} -ne 0 ]; then
    printf 'Failed: %s\n' "${failed[@]}"
    exit 1
fi
echo "All nightly checks passed"
