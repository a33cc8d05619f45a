#!/usr/bin/env bash
# Line and branch coverage of the three libraries by the tests. Fails when a line is reached by no test, unless its
# source says why it cannot be, behind a GCOVR_EXCL marker.
# The report is written into build/coverage-report/index.html.
set -euo pipefail
cd "$(dirname "$0")/.."
build=build/coverage
report=build/coverage-report
mkdir -p "$build" "$report"

cmake --preset coverage -B "$build" -DZELK_BUILD_TOOLS=OFF -DZELK_BUILD_EXAMPLES=OFF \
    -DZELK_PRECOMPILE_TESTS=ON >"$build/configure.log" ||
    { cat "$build/configure.log" >&2; exit 1; }
find "$build" -name '*.gcda' -delete
cmake --build "$build" -j "$(nproc)" -- --quiet
ctest --test-dir "$build" -j "$(nproc)" --output-on-failure --no-tests=error -LE product |
    grep -vE '^ *(Start +[0-9]+|[0-9]+/[0-9]+ .* Passed)'

echo "Lines that no test can reach, each with the reason:"
grep -rnE 'GCOVR?_EXCL|LCOV_EXCL' framework msgs || echo "none"

# Branches that only the unwinding of the stack takes are none that a test could choose.
gcovr --root . --filter framework/ --filter msgs/ --exclude-throw-branches --exclude-unreachable-branches \
    --print-summary --txt "$report/summary.txt" --html-details "$report/index.html" --json "$report/lines.json" \
    --fail-under-branch 90 -j "$(nproc)" "$build"
cat "$report/summary.txt"
python3 - "$report/lines.json" <<'END'
import json
import sys

missed = [(file["file"], line["line_number"])
          for file in json.load(open(sys.argv[1]))["files"]
          for line in file["lines"]
          if line["count"] == 0 and not line.get("gcovr/noncode", False)]
for path, number in missed:
    print(f"{path}:{number}: no test reaches this line")
sys.exit(1 if missed else 0)
END
