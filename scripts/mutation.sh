#!/usr/bin/env bash
# Puts one small fault at a time into a copy of the libraries and tells whether the tests notice:
#   scripts/mutation.sh            every fault
#   scripts/mutation.sh NAME...    only these
#   scripts/mutation.sh --list     names them
#   scripts/mutation.sh --check    only sees to it that each still finds what it changes
# A fault is a sed script in scripts/mutations. Its comments name the file that it changes and the test programs that
# ought to notice. What those let pass, all tests are asked about in the end. Fails when a fault survives, no longer
# changes anything or does not compile.
set -euo pipefail
cd "$(dirname "$0")/.."

faults=$PWD/scripts/mutations
work=$PWD/build/mutation
tree=$work/tree
build=$work/build
longest=300 # seconds that a test program may take; a fault may make it run for ever
memory=8388608 # kilobytes, likewise

mapfile -t names < <(cd "$faults" && printf '%s\n' *.sed | sed 's/\.sed$//')
if [ "${1:-}" = --list ]; then
    printf '%s\n' "${names[@]}"
    exit 0
fi
if [ $# -ne 0 ] && [ "$1" != --check ]; then
    names=("$@")
fi
for name in "${names[@]}"; do
    [ -f "$faults/$name.sed" ] || { echo "mutation.sh: no fault '$name'; see mutation.sh --list" >&2; exit 2; }
done

# The value of a comment of a fault: "file" or "tests".
said() { sed -n "s/^# $2: //p" "$faults/$1.sed"; }

if [ "${1:-}" = --check ]; then
    status=0
    for name in "${names[@]}"; do
        file=$(said "$name" file)
        if sed -f "$faults/$name.sed" "$file" | cmp -s - "$file"; then
            echo "$name changes nothing in $file"
            status=1
        fi
    done
    exit $status
fi

compile() { ninja -C "$build" --quiet "$@" >"$work/compile.log" 2>&1; }

ask() {
    local program
    for program in "$@"; do
        # In braces, so that what the shell says of a crash goes into the file too.
        { (ulimit -v $memory
           timeout $longest "$(find "$build/tests" -type f -name "$program")" --gtest_fail_fast); } \
            >"$work/test.log" 2>&1 || return 1
    done
}

# What belongs to how the product is built, rather than to what it does, is left out.
ask_all() {
    ctest --test-dir "$build" -j "$(nproc)" -LE product -E '^Abi\.' --stop-on-failure --timeout $longest \
        >"$work/test.log" 2>&1
}

rm -rf "$tree"
mkdir -p "$tree"
git ls-files -z | tar --create --null --files-from=- --ignore-failed-read 2>/dev/null | tar --extract --directory="$tree"
rm -rf "$work/pristine"
cp -a "$tree" "$work/pristine"
# What an earlier run was stopped at is built anew.
for name in "${names[@]}"; do touch "$tree/$(said "$name" file)"; done

# Programs are not linked again when only a library behind them changes, and are asked for their tests when they run.
export CCACHE_NOHASHDIR=1
cmake -S "$tree" -B "$build" -G Ninja -DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_CXX_FLAGS_DEBUG=-O0 -DCMAKE_LINK_DEPENDS_NO_SHARED=ON -DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST \
    -DZELK_BUILD_TOOLS=OFF -DZELK_BUILD_EXAMPLES=OFF >"$work/compile.log" 2>&1 || { cat "$work/compile.log" >&2; exit 1; }

without_fault() {
    "$@" && return
    cat "$work/compile.log" "$work/test.log" >&2
    echo "mutation.sh: fails without any fault: $*" >&2
    exit 1
}

killed=0
failed=()
tell() {
    case $2 in
        killed*) killed=$((killed + 1)) ;;
        *) failed+=("$1") ;;
    esac
    printf '%-40s %s\n' "$1" "$2"
}

mapfile -t programs < <(for name in "${names[@]}"; do said "$name" tests; done | tr ' ' '\n' | sort -u)
: >"$work/test.log"
without_fault compile "${programs[@]}"
without_fault ask "${programs[@]}"

passed=()
for name in "${names[@]}"; do
    file=$(said "$name" file)
    read -ra programs <<<"$(said "$name" tests)"
    sed -i -f "$faults/$name.sed" "$tree/$file"
    if cmp -s "$tree/$file" "$work/pristine/$file"; then
        tell "$name" "CHANGES NOTHING"
    elif ! compile "${programs[@]}"; then
        tell "$name" "DOES NOT COMPILE"
    elif ! ask "${programs[@]}"; then
        tell "$name" killed
    else
        passed+=("$name")
    fi
    cp "$work/pristine/$file" "$tree/$file"
done

if [ ${#passed[@]} -ne 0 ]; then
    without_fault compile
    without_fault ask_all
    for name in "${passed[@]}"; do
        file=$(said "$name" file)
        sed -i -f "$faults/$name.sed" "$tree/$file"
        if ! compile; then
            tell "$name" "DOES NOT COMPILE"
        elif ! ask_all; then
            tell "$name" "killed, though not by the tests that it names"
        else
            tell "$name" SURVIVED
        fi
        cp "$work/pristine/$file" "$tree/$file"
    done
fi

echo "$killed of ${#names[@]} faults killed in $SECONDS s"
[ ${#failed[@]} -eq 0 ] || { printf 'Not killed: %s\n' "${failed[*]}"; exit 1; }
