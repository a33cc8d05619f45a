#!/usr/bin/env bash
# clang-tidy and cppcheck over the libraries, the program and the examples: lint.sh BUILD, a configured build with
# compile commands. Prints the findings, and fails when there are any.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:?build folder}

tidy() {
    local findings
    # The count of warnings in the headers of others comes even with --quiet.
    findings=$(clang-tidy --quiet --warnings-as-errors='*' -p "$1" "$2" 2>&1) ||
        { printf '%s\n' "$findings" | grep -vE '^[0-9]+ warnings?( treated as errors?| generated)' >&2; return 1; }
}
export -f tidy

failed=0
# The largest first, so that none is left to run alone at the end.
git ls-files -z 'framework/*.cpp' 'msgs/*.cpp' 'tools/*.cpp' 'examples/*.cpp' | xargs -0 ls -S |
    xargs -P "$(nproc)" -I{} bash -c 'tidy "$@"' tidy "$build" {} || failed=1

cppcheck --quiet --error-exitcode=1 --std=c++17 --enable=warning,performance,portability --inline-suppr \
    --suppressions-list=scripts/cppcheck.suppressions -I . -j "$(nproc)" framework msgs tools examples || failed=1
exit $failed
