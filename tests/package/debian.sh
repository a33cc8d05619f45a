#!/bin/bash
# Builds the Debian packages, examines them, installs them, uses them, and removes them again. They go into the running
# system, so this needs root or sudo, and is refused where one of them is installed already; they are purged whatever
# happens.
#
#     tests/package/debian.sh [-k] [folder]
#     tests/package/debian.sh --record-symbols
#
# Everything is written to debian-check in the folder (by default a temporary one), which -k keeps, with the packages.
# --record-symbols writes debian/*.symbols from what the libraries export now.
set -euo pipefail

source_dir=$(cd "$(dirname "$0")/../.." && pwd)
keep=no
record=no
case ${1:-} in
-k) keep=yes && shift ;;
--record-symbols) record=yes && shift ;;
esac
if [ $# -gt 0 ]; then
    mkdir -p "$1"
    work=$(cd "$1" && pwd)/debian-check
    rm -rf "$work"
    mkdir "$work"
else
    work=$(mktemp -d)
fi
as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
# apt and lintian give up their rights for part of the work.
chmod 755 "$work"
tree=$work/zelk-state-messages
packages="libzelkcore0 libzelkmessagescommon0 libzelkstatemessages0 libzelkstatemessages-dev zelk-msg-tools
    libzelkstatemessages-doc"
passed=0

installed_packages() {
    dpkg-query -W -f '${Package} ${db:Status-Status}\n' $packages 2>/dev/null |
        awk '$2 != "not-installed" { print $1 }' || true
}
purge() {
    local installed
    installed=$(installed_packages)
    [ -z "$installed" ] || "${as_root[@]}" dpkg --purge $installed
}
clean_up() {
    local status=$?
    [ ! -e "$work/installed" ] || purge >/dev/null 2>&1 || true
    [ $keep = yes ] || rm -rf "$work"
    exit $status
}
trap clean_up EXIT

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
        echo "FAILED: $what" >&2
        exit 1
    fi
    passed=$((passed + 1))
    echo "ok: $what"
}

version=$(sed -nE 's/^project\(ZelkStateMessages VERSION ([0-9.]+).*/\1/p' "$source_dir/CMakeLists.txt")

none_is_installed() {
    [ -z "$(installed_packages)" ]
}

one_version() {
    [ "$(dpkg-parsechangelog -l "$source_dir/debian/changelog" -S Version)" = "$version" ]
}

# The tree as it would be committed now, without what was built in it.
copy_tree() {
    rm -rf "$tree"
    mkdir -p "$tree"
    cd "$source_dir"
    git ls-files -z --cached --others --exclude-standard | while IFS= read -r -d '' file; do
        [ ! -e "$file" ] || printf '%s\0' "$file"
    done | tar -c --null -T - | tar -x -C "$tree"
}

# The tests have runs of their own.
build_packages() {
    cd "$tree"
    if [ -d /usr/lib/ccache ]; then
        export PATH=/usr/lib/ccache:$PATH CCACHE_DIR=${CCACHE_DIR:-$HOME/.cache/ccache} CCACHE_NOHASHDIR=1
    fi
    DEB_BUILD_OPTIONS="nocheck parallel=$(nproc)" DEB_BUILD_PROFILES=nocheck dpkg-buildpackage -us -uc
}

examine_with_lintian() {
    lintian --allow-root --fail-on error,warning --tag-display-limit 0 "$work"/*.changes
}

# Each library package depends on those below it, by computed relations, and carries the list of its symbols.
relations_are_computed() {
    local deb=$work/libzelkstatemessages0_${version}_$(dpkg --print-architecture).deb name
    dpkg-deb -f "$deb" Depends | grep 'libzelkcore0 (>= ' >/dev/null
    dpkg-deb -f "$deb" Depends | grep 'libzelkmessagescommon0 (>= ' >/dev/null
    for name in libzelkcore0 libzelkmessagescommon0 libzelkstatemessages0; do
        dpkg-deb --ctrl-tarfile "$work/${name}_${version}_$(dpkg --print-architecture).deb" | tar -t |
            grep -x './symbols' >/dev/null
    done
}

install_packages() {
    touch "$work/installed"
    local package debs=
    for package in $packages; do
        debs+=" $(ls "$work/${package}_${version}"_*.deb)"
    done
    "${as_root[@]}" dpkg -i $debs
}

run_package_test() {
    mkdir -p "$work/test"
    cd "$tree"
    AUTOPKGTEST_TMP=$work/test "debian/tests/$1"
    rm -rf "$work/test"
}

nothing_is_left() {
    purge
    rm "$work/installed"
    [ -z "$(find /usr/include/zelk /usr/share/doc/*zelk* /usr/lib/*/*Zelk* /usr/lib/*/cmake/Zelk* \
        /usr/lib/*/pkgconfig/zelk* /usr/bin/zelk-msg 2>/dev/null)" ]
}

# As C++ names, so that a list holds for every architecture. A name keeps the version in which it was first listed. Names
# that come and go with the compiler, marked with "?" in the reviewed lists of tests/abi, are optional.
record_symbols() {
    local package library list reviewed symbol plain tags first
    while read -r package library; do
        list=$source_dir/debian/$package.symbols
        reviewed=$source_dir/tests/abi/exports-$library.txt
        {
            echo "lib$library.so.0 $package #MINVER#"
            echo "* Build-Depends-Package: libzelkstatemessages-dev"
            nm -D --defined-only "$tree/debian/$package"/usr/lib/*/lib"$library".so.0 |
                awk '{ print $NF }' | c++filt | LC_ALL=C sort -u |
                while IFS= read -r symbol; do
                    plain=${symbol//std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >/std::string}
                    plain=${plain//\[abi:cxx11\]/}
                    tags="c++"
                    ! grep -qxF "? ${plain/#VTT for/vtable for}" "$reviewed" || tags="c++|optional"
                    first=
                    [ ! -f "$list" ] ||
                        first=$(grep -F "\"$symbol@Base\" " "$list" | awk '{ print $NF }')
                    printf ' (%s)"%s@Base" %s\n' "$tags" "$symbol" "${first:-$version}"
                done
        } >"$work/$package.symbols"
        mv "$work/$package.symbols" "$list"
        echo "recorded debian/$package.symbols: $(grep -c '^ ' "$list") names"
    done <<END
libzelkcore0 ZelkCore
libzelkmessagescommon0 ZelkMessagesCommon
libzelkstatemessages0 ZelkStateMessages
END
}

step "changelog and CMakeLists.txt tell one version" one_version
step "copy the tree" copy_tree
if [ $record = yes ]; then
    rm -f "$tree"/debian/*.symbols
    step "build the packages" build_packages
    record_symbols
    exit 0
fi
step "none of the packages is installed yet" none_is_installed
step "build the packages" build_packages
step "lintian" examine_with_lintian
step "relations between the packages are computed" relations_are_computed
step "install the packages" install_packages
step "a user's program is built and run" run_package_test consumer
step "the tools run" run_package_test tools
step "purge the packages; nothing is left" nothing_is_left

echo "$passed passed, 0 failed"
