#!/usr/bin/env bash
# clang-tidy and cppcheck over the libraries and the program: lint.sh BUILD, a configured build with compile commands.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:?build folder}

git ls-files 'framework/*.cpp' 'msgs/*.cpp' 'tools/*.cpp' 'examples/*.cpp' |
    xargs -P "$(nproc)" -n 4 clang-tidy --quiet --warnings-as-errors='*' -p "$build" 2>&1 |
    grep -vE '^[0-9]+ warnings? generated\.$|^Suppressed|^Use -header-filter' || [ "${PIPESTATUS[1]}" -eq 0 ]

cppcheck --quiet --error-exitcode=1 --std=c++17 --enable=warning,performance,portability --inline-suppr \
    --suppressions-list=scripts/cppcheck.suppressions -I . -j "$(nproc)" framework msgs
