#!/bin/bash
# Uses the library in every way a user can, each time from a project of its own, and runs what comes out.
#
#     tests/package/check.sh [-k] [folder]
#
# The library is built and installed once with each compiler, and the prefix is moved before anything uses it.
# From the moved prefix, as C++17, C++20 and C++23: every header alone, find_package, pkg-config. From the sources:
# add_subdirectory and FetchContent. At last the state messages alone, their sources copied out of the tree, are built
# against a prefix that holds only the other two libraries. Everything is written to package-check in the folder (by
# default a temporary one), which -k keeps. The environment variables COMPILERS and STANDARDS narrow the run.
set -euo pipefail

source_dir=$(cd "$(dirname "$0")/../.." && pwd)
here=$source_dir/tests/package
compilers=${COMPILERS:-g++ clang++}
standards=${STANDARDS:-17 20 23}
jobs=${JOBS:-$(nproc)}

keep=no
if [ "${1:-}" = -k ]; then
    keep=yes
    shift
fi
if [ $# -gt 0 ]; then
    mkdir -p "$1"
    work=$(cd "$1" && pwd)/package-check
    rm -rf "$work"
    mkdir "$work"
else
    work=$(mktemp -d)
fi
trap 'status=$?; [ $keep = yes ] || rm -rf "$work"; exit $status' EXIT

if command -v ccache >/dev/null; then
    export CMAKE_CXX_COMPILER_LAUNCHER=ccache CCACHE_NOHASHDIR=1
fi
export CMAKE_GENERATOR=Ninja
warnings="-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor \
    -Woverloaded-virtual -Wold-style-cast -Wcast-qual -Werror"
passed=0

fail() {
    echo "FAILED: $*" >&2
    exit 1
}

# step <what> <command...>: quiet unless the command fails. The command runs in a shell of its own that stops at the
# first failure within it.
step() {
    local what=$1 status
    shift
    set +e
    (
        set -e
        "$@"
    ) >"$work/log" 2>&1
    status=$?
    set -e
    if [ $status -ne 0 ]; then
        tail -n 40 "$work/log" | cut -c1-300 >&2
        fail "$what"
    fi
    passed=$((passed + 1))
    echo "ok: $what"
}

# What the files of a prefix may not name: where it was built or first installed.
names_no_other_place() {
    ! grep -rnE "$work|$source_dir" "$1" --include='*.cmake' --include='*.pc'
}

links_are_by_soname() {
    local library
    for library in Core MessagesCommon StateMessages; do
        [ -L "$1/libZelk$library.so" ] && [ -L "$1/libZelk$library.so.0" ] || return 1
        objdump -p "$1/libZelk$library.so" | grep "SONAME *libZelk$library.so.0\$" >/dev/null || return 1
    done
}

# The option for a standard; c++2b is the name of C++23 that the older compilers know too.
std_option() {
    case $1 in
    23) echo -std=c++2b ;;
    *) echo "-std=c++$1" ;;
    esac
}
export -f std_option

# Compiled by itself and twice in a row, without any warning.
header_compiles_alone() {
    printf '#include "%s"\n#include "%s"\nint main() {}\n' "$4" "$4" |
        $1 -x c++ "$(std_option "$2")" -fsyntax-only $warnings -I"$3" -
}
export -f header_compiles_alone
export warnings

all_headers_compile_alone() {
    (cd "$3" && find . -name '*.h' | sed 's|^\./||' | sort) >"$work/headers"
    [ -s "$work/headers" ] || fail "no header is installed below $3"
    xargs -P "$jobs" -I{} bash -c 'header_compiles_alone "$@" || { echo "not alone: $4" >&2; exit 1; }' _ \
        "$1" "$2" "$3" {} <"$work/headers"
}

# configure <build folder> <source folder> <compiler> <standard> <more arguments...>
configure() {
    cmake -S "$2" -B "$1" -DCMAKE_CXX_COMPILER="$3" -DCMAKE_CXX_STANDARD="$4" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_CXX_STANDARD_REQUIRED=ON "${@:5}"
}

by_find_package() {
    local build=$work/find_package-$1-$2
    configure "$build" "$here/find_package" "$1" "$2" -DCMAKE_PREFIX_PATH="$3" -DWANTED_VERSION="$version"
    cmake --build "$build" -j "$jobs"
    "$build/consumer"
    "$build/all_named"
}

by_pkg_config() {
    local dir=$work/pkg_config-$1-$2 flags
    mkdir -p "$dir"
    export PKG_CONFIG_PATH=$3/lib/pkgconfig
    [ "$(pkg-config --modversion zelkstatemessages)" = "$version" ] || return 1
    pkg-config --exists "zelkcore = $version" "zelkmessagescommon = $version" || return 1
    flags=$(pkg-config --cflags --libs zelkstatemessages)
    $1 "$(std_option "$2")" $warnings "$here/consumer/main.cpp" -o "$dir/consumer" $flags
    LD_LIBRARY_PATH=$3/lib "$dir/consumer"
}

# A project that takes in the sources gets no test and no installed file of ours.
from_sources() {
    local build=$work/$3-$1-$2
    configure "$build" "$here/$3" "$1" "$2" -DZELK_SOURCE_DIR="$source_dir" \
        -DCMAKE_INSTALL_PREFIX="$build/installed"
    cmake --build "$build" -j "$jobs"
    ctest --test-dir "$build" --output-on-failure
    [ "$(ctest --test-dir "$build" -N | grep -c 'Test *#')" = 1 ] || return 1
    cmake --install "$build"
    [ "$(cd "$build/installed" && find . -type f)" = ./bin/consumer ]
}

install_and_move() {
    configure "$work/build-$1" "$source_dir" "$1" 17 -DZELK_BUILD_TESTS=OFF -DZELK_BUILD_EXAMPLES=OFF \
        -DZELK_BUILD_TOOLS=OFF -DCMAKE_INSTALL_LIBDIR=lib -DCMAKE_INSTALL_PREFIX="$work/first-$1"
    cmake --build "$work/build-$1" -j "$jobs"
    cmake --install "$work/build-$1" --component runtime
    cmake --install "$work/build-$1" --component development
    mv "$work/first-$1" "$2"
}

# The runtime component is what a user of a program needs; the development component adds nothing that is loaded. Every
# file belongs to one component.
components_are_apart() {
    local alone=$work/components-$1 component
    for component in runtime development tools docs; do
        mkdir -p "$alone/$component"
        cmake --install "$work/build-$1" --component $component --prefix "$alone/$component"
    done
    cmake --install "$work/build-$1" --prefix "$alone/all"
    [ "$(cd "$alone" && find runtime development tools docs -mindepth 1 ! -type d | cut -d/ -f2- | sort)" = \
        "$(cd "$alone/all" && find . -mindepth 1 ! -type d | cut -d/ -f2- | sort)" ] || return 1
    [ "$(cd "$alone/runtime" && find . -type f -printf '%f\n' | sort | tr '\n' ' ')" = \
        "libZelkCore.so.$version libZelkMessagesCommon.so.$version libZelkStateMessages.so.$version " ] || return 1
    [ -z "$(find "$alone/development/lib" -name '*.so.*')" ]
}

# The platform's part of a prefix, without anything of the state messages and without package files.
platform_prefix() {
    mkdir -p "$2/lib" "$2/include/msgs"
    cp -a "$1"/lib/libZelkCore.so* "$1"/lib/libZelkMessagesCommon.so* "$2/lib"
    cp -a "$1/include/zelk/framework" "$2/include"
    cp -a "$1/include/zelk/msgs/common" "$2/include/msgs"
}

# Only the product's own sources are there, so nothing of our framework can slip in.
product_on_platform() {
    local tree=$work/product-$1 build=$work/product-build-$1 prefix=$work/product-first-$1
    mkdir -p "$tree/msgs"
    cp -a "$source_dir/CMakeLists.txt" "$source_dir/cmake" "$source_dir/docs" "$tree"
    cp -a "$source_dir/msgs/CMakeLists.txt" "$source_dir/msgs/legacystate" "$source_dir/msgs/msgidstate" "$tree/msgs"
    configure "$build" "$tree" "$1" 17 -DZELK_SIBLINGS_PREFIX="$2" -DZELK_WARNINGS_AS_ERRORS=ON \
        -DCMAKE_INSTALL_LIBDIR=lib -DCMAKE_INSTALL_PREFIX="$prefix"
    cmake --build "$build" -j "$jobs"
    cmake --install "$build"
    [ -z "$(find "$prefix" -name '*ZelkCore*' -o -name '*MessagesCommon*' -o -name framework -o -name common)" ] ||
        return 1
    mv "$prefix" "$3"
}

# In the whole tree, the other two libraries stay out of it too: every header of theirs is the platform's.
whole_tree_on_platform() {
    local build=$work/whole-tree-$1
    configure "$build" "$source_dir" "$1" 17 -DZELK_SIBLINGS_PREFIX="$2" -DZELK_INSTALL=OFF
    cmake --build "$build" -j "$jobs"
    ninja -C "$build" -t deps >"$work/deps"
    grep "$build/siblings/framework/element.h" "$work/deps" >/dev/null
    grep "$build/siblings/msgs/common/message.h" "$work/deps" >/dev/null
    ! grep -E "$source_dir/(framework|msgs/common)/" "$work/deps"
}

# The program finds the state messages in their prefix and the platform's libraries in theirs.
consumer_on_platform() {
    local build=$work/product-consumer-$1
    configure "$build" "$here/find_package" "$1" 17 -DCMAKE_PREFIX_PATH="$3" -DWANTED_VERSION="$version"
    cmake --build "$build" -j "$jobs"
    "$build/consumer"
    PKG_CONFIG_PATH=$3/lib/pkgconfig pkg-config --cflags --libs zelkstatemessages >"$work/flags"
    $1 -std=c++17 "$here/consumer/main.cpp" -o "$build/by_pkg_config" $(cat "$work/flags")
    LD_LIBRARY_PATH=$3/lib:$2/lib "$build/by_pkg_config"
}

# A prefix that lacks something is refused with a sentence that says what.
incomplete_platform_is_refused() {
    ! cmake -S "$work/product-$1" -B "$work/refused-$1" -DCMAKE_CXX_COMPILER="$1" \
        -DZELK_SIBLINGS_PREFIX="$work/nothing" >"$work/refused.txt" 2>&1 || return 1
    tr -s '\n ' ' ' <"$work/refused.txt" | grep "no libZelkCore.so, libZelkMessagesCommon.so, framework/element.h" >/dev/null
}

version=$(sed -nE 's/^project\(ZelkStateMessages VERSION ([0-9.]+).*/\1/p' "$source_dir/CMakeLists.txt")
[ -n "$version" ] || fail "CMakeLists.txt does not tell the version"

for compiler in $compilers; do
    prefix=$work/moved/$compiler/deep/prefix
    mkdir -p "$(dirname "$prefix")"
    step "$compiler: build, install, move" install_and_move "$compiler" "$prefix"
    step "$compiler: runtime and development are apart" components_are_apart "$compiler"
    rm -rf "$work/build-$compiler"
    step "$compiler: package files name no other place" names_no_other_place "$prefix"
    step "$compiler: libraries are linked by SONAME" links_are_by_soname "$prefix/lib"
    for standard in $standards; do
        step "$compiler C++$standard: every header alone" \
            all_headers_compile_alone "$compiler" "$standard" "$prefix/include/zelk"
        step "$compiler C++$standard: find_package" by_find_package "$compiler" "$standard" "$prefix"
        step "$compiler C++$standard: pkg-config" by_pkg_config "$compiler" "$standard" "$prefix"
        step "$compiler C++$standard: add_subdirectory" from_sources "$compiler" "$standard" subdirectory
        step "$compiler C++$standard: FetchContent" from_sources "$compiler" "$standard" fetch_content
    done
    platform=$work/platform/$compiler
    step "$compiler: a prefix with the platform's libraries only" platform_prefix "$prefix" "$platform"
    product=$work/moved/$compiler/product
    rm -rf "$prefix"
    step "$compiler: the state messages alone, built against it" product_on_platform "$compiler" "$platform" "$product"
    step "$compiler: the whole tree, built against it" whole_tree_on_platform "$compiler" "$platform"
    step "$compiler: a program on the platform" consumer_on_platform "$compiler" "$platform" "$product"
    step "$compiler: an incomplete platform is refused" incomplete_platform_is_refused "$compiler"
done

echo "$passed passed, 0 failed"
