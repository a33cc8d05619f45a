#!/usr/bin/env bash
# Builds every fuzzing harness and runs each for some time: fuzz.sh SECONDS [HARNESS...]
# What a harness finds stays below build/fuzz: corpus/ holds inputs that reach new code, and is used again; crashes/
# holds those that broke a rule. Keep one of these in fuzz/crashes/HARNESS/, where the tests replay it.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:?seconds for each harness}
shift
harnesses=("$@")
[ $# -ne 0 ] || harnesses=(json_text message_read element_edit)

build=build/fuzz
mkdir -p "$build"
cmake --preset release-clang -B "$build" -DZELK_BUILD_FUZZERS=ON -DZELK_BUILD_TESTS=OFF -DZELK_BUILD_TOOLS=OFF \
    -DZELK_BUILD_EXAMPLES=OFF -DZELK_INSTALL=OFF >"$build/configure.log" || { cat "$build/configure.log" >&2; exit 1; }
cmake --build "$build" -j "$(nproc)" --target "${harnesses[@]/#/fuzz_}" "${harnesses[@]/#/seeds_}" -- --quiet

# fuzz HARNESS: runs one, and tells how it ended.
fuzz() {
    local harness=$1
    local corpus=$build/corpus/$harness crashes=$build/crashes/$harness log=$build/$harness.log
    mkdir -p "$corpus" "$crashes"
    "$build/fuzz/seeds_$harness" --write-seeds "$build/seeds/$harness"
    local kept=()
    [ ! -d "fuzz/crashes/$harness" ] || kept=("fuzz/crashes/$harness")
    if "$build/fuzz/fuzz_$harness" -max_total_time="$seconds" -timeout=120 -rss_limit_mb=2048 -print_final_stats=1 \
        -dict=fuzz/json.dict -artifact_prefix="$crashes/" "$corpus" "$build/seeds/$harness" "${kept[@]}" \
        >"$log" 2>&1; then
        echo "$harness: $(sed -n 's/^stat::number_of_executed_units: *//p' "$log") inputs, nothing found"
    else
        tail -n 60 "$log"
        echo "$harness: FAILED, the input is in $crashes"
        return 1
    fi
}
export -f fuzz
export build seconds
printf '%s\n' "${harnesses[@]}" | xargs -P "$(nproc)" -I{} bash -c 'set -euo pipefail; fuzz "$1"' fuzz {}
