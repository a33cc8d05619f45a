#!/usr/bin/env bash
# Installs what the given jobs need and is not there yet: setup.sh run|test
# Debian packages only; asks nothing and prints nothing when there is nothing to do.
set -euo pipefail

run=(g++ cmake ninja-build graphviz libcli11-dev)
test=("${run[@]}"
      ccache clang clang-format clang-tidy cppcheck gcovr gdb valgrind pkgconf file
      libgtest-dev libgmock-dev libbenchmark-dev
      nlohmann-json3-dev rapidjson-dev libboost-json1.81-dev libsimdjson-dev libfuzzer-14-dev
      locales python3 python3-jsonschema
      doxygen doxygen-awesome-css abigail-tools
      debhelper pkg-kde-tools lintian fakeroot)

case "${1:?run or test}" in
    run) wanted=("${run[@]}") ;;
    test) wanted=("${test[@]}") ;;
    *) echo "setup.sh: run or test" >&2; exit 2 ;;
esac

missing=()
for package in "${wanted[@]}"; do
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing missing packages: ${missing[*]}"
as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! { "${as_root[@]}" apt-get update -qq &&
       "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends \
           "${missing[@]}"; } >"$log" 2>&1; then
    cat "$log" >&2
    exit 1
fi
