#!/usr/bin/env python3
"""Times this library and its peers in one interleaved run and prints the ratios of minima against their limits.

    bench/report.py BUILD [--only text messages large counts] [--repetitions FACTOR]

BUILD is the build directory of an optimised build with ZELK_BUILD_BENCHMARKS=ON.
"""

import argparse
import json
import subprocess
import tempfile
from pathlib import Path

import counts

BASIC = ["rapidjson", "boost", "nlohmann"]
TREES = BASIC + ["boost_monotonic"]
ROUNDING = ["rapidjson", "nlohmann"]

# work, peers of which the fastest counts, largest ratio allowed
LIMITS = [
    ("subscriber/write_fresh", BASIC, 0.80),
    ("subscriber/write_kept", TREES, 0.75),
    ("subscriber/write_kept", ["by_hand"], 1.5),
    ("subscriber/read_fresh", BASIC, 0.72),
    ("subscriber/read_fresh", ["boost_monotonic"], 1.00),
    ("subscriber/read_fresh", ["simdjson"], 1.7),
    ("subscriber/read_kept", TREES, None),
    ("subscriber/read_kept", ["simdjson"], None),
    ("states_8/read_sorted", BASIC, 0.75),
    ("states_8/read_unsorted", BASIC, 0.75),
    ("states_1000/read_sorted", BASIC, 0.75),
    ("states_1000/read_unsorted", BASIC, 0.75),
    ("states_1000/read_sorted", ["boost_monotonic"], 1.10),
    ("states_1000/read_unsorted", ["boost_monotonic"], 1.10),
    ("states_8/write", BASIC, 0.95),
    ("states_8/build_and_write", BASIC, 0.95),
    ("states_1000/write", BASIC, 0.95),
    ("states_1000/build_and_write", BASIC, 0.95),
    ("states_100000/read_sorted", ["nlohmann"], 0.36),
    ("states_100000/read_unsorted", ["nlohmann"], 0.36),
    ("states_100000/write", ["nlohmann"], 0.36),
    ("states_100000/build_and_write", ["nlohmann"], 0.36),
    ("states_100000/read_sorted", ["boost"], 0.95),
    ("states_100000/read_unsorted", ["boost"], 0.95),
    ("states_100000/write", ["boost"], 0.95),
    ("states_100000/build_and_write", ["boost"], 0.95),
    ("registration_1000/write", TREES, 0.90),
    ("registration_1000/read", BASIC, 1.00),
    ("feed/parse", BASIC, 0.75),
    ("outlines/parse", ROUNDING, 0.75),
    ("catalogue/parse", BASIC, 0.75),
    ("feed/print", BASIC, 1.0),
    ("outlines/print", BASIC, 1.4),
    ("catalogue/print", BASIC, 1.0),
]

# What RapidJSON writes when it does not look at UTF-8: less than the same work, so a bound and no limit.
LIMITS += [(work, ["rapidjson_unchecked"], None) for work in (
    "subscriber/write_fresh", "subscriber/write_kept", "states_8/write", "states_1000/write", "states_1000/build_and_write",
    "states_100000/write", "registration_1000/write", "feed/print", "outlines/print", "catalogue/print")]

# work, operations that the count is divided by, largest count allowed
ALLOCATION_LIMITS = [
    ("subscriber/read_fresh", 1, 3),
    ("subscriber/write_kept", 1, 2),
    ("states_1000/read_sorted", 1000, 2.6),
    ("states_1000/write", 1000, 1.5),
]

MEMORY_LIMIT = 1.1
GROWTH_LIMIT = 2.0
LARGE = 100000


def minima(program: Path, arguments: list[str], repetitions: int, chunk: float) -> dict[str, float]:
    """The least processor time, in nanoseconds, of each benchmark of a program, all of them interleaved."""
    command = [program, "--benchmark_enable_random_interleaving=true", f"--benchmark_repetitions={repetitions}",
               f"--benchmark_min_time={chunk}", "--benchmark_format=json", *arguments]
    output = subprocess.run(command, check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True).stdout
    least: dict[str, float] = {}
    for run in json.loads(output)["benchmarks"]:
        if run["run_type"] == "iteration":
            name = run["run_name"].split("/repeats:")[0]
            least[name] = min(least.get(name, float("inf")), run["cpu_time"])
    return least


def verdict(value: float, limit: float | None) -> str:
    if limit is None:
        return ""
    return "ok" if value <= limit else "OVER"


def nanoseconds(value: float) -> str:
    return f"{value:,.0f} ns" if value < 10000 else f"{value / 1000:,.1f} us"


def print_ratios(times: dict[str, float]) -> None:
    print(f"{'work':<31}{'ours':>13}  {'fastest of the peers':<24}{'':>11}{'ratio':>7}{'limit':>7}")
    for work, peers, limit in LIMITS:
        ours = times.get(f"{work}/ours")
        if ours is None:
            continue
        peer = min(peers, key=lambda name: times[f"{work}/{name}"])
        theirs = times[f"{work}/{peer}"]
        of = f" of {len(peers)}" if len(peers) > 1 else ""
        print(f"{work:<31}{nanoseconds(ours):>13}  {peer + of:<20}{nanoseconds(theirs):>15}"
              f"{ours / theirs:>7.2f}{limit if limit is not None else '-':>7}  {verdict(ours / theirs, limit)}")


def print_growth(times: dict[str, float]) -> None:
    print(f"\ntime per transition, {LARGE:,} against 1,000 transitions")
    for work in ("read_sorted", "read_unsorted", "write", "build_and_write"):
        growth = times[f"states_{LARGE}/{work}/ours"] / LARGE / (times[f"states_1000/{work}/ours"] / 1000)
        print(f"  {work:<16}{growth:>7.2f}{GROWTH_LIMIT:>7}  {verdict(growth, GROWTH_LIMIT)}")


def print_memory(build: Path) -> None:
    program = build / "bench/zelk-bench-memory"
    with tempfile.NamedTemporaryFile() as text:
        subprocess.run([program, "text", str(LARGE)], check=True, stdout=text)
        peaks = {}
        for reader in ("ours", "nlohmann"):
            output = subprocess.run([program, reader, text.name], check=True, capture_output=True, text=True).stdout
            peaks[reader] = int(output.split()[0])
    ratio = peaks["ours"] / peaks["nlohmann"]
    print(f"\npeak memory of reading {LARGE:,} transitions: ours {peaks['ours'] / 2**20:.1f} MiB, "
          f"nlohmann {peaks['nlohmann'] / 2**20:.1f} MiB")
    print(f"  {'ratio':<16}{ratio:>7.2f}{MEMORY_LIMIT:>7}  {verdict(ratio, MEMORY_LIMIT)}")


def print_counts(build: Path) -> None:
    allocations = counts.allocations(build)
    instructions = counts.instructions(build)
    print("\nallocations")
    for work, operations, limit in ALLOCATION_LIMITS:
        count = allocations[work] / operations
        per = " a transition" if operations > 1 else ""
        print(f"  {work + per:<38}{count:>7.2f}{limit:>7}  {verdict(count, limit)}")
    print(f"\n{'per operation, ours':<31}{'instructions':>15}{'allocations':>13}")
    for work, count in instructions.items():
        print(f"{work:<31}{count:>15,.0f}{allocations[work]:>13,.1f}")


def main() -> None:
    parts = ["text", "messages", "large", "counts"]
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build", type=Path)
    parser.add_argument("--only", nargs="+", choices=parts, default=parts)
    parser.add_argument("--repetitions", type=float, default=1.0, metavar="FACTOR",
                        help="more or fewer repetitions than usual")
    options = parser.parse_args()

    def repeated(count: int) -> int:
        return max(2, round(count * options.repetitions))

    times: dict[str, float] = {}
    folder = options.build / "bench"
    if "messages" in options.only:
        times |= minima(folder / "zelk-bench-messages", [], repeated(30), 0.006)
    if "large" in options.only:
        times |= minima(folder / "zelk-bench-messages", [f"--transitions={LARGE}"], repeated(6), 0.01)
    if "text" in options.only:
        times |= minima(folder / "zelk-bench-text", [], repeated(15), 0.01)
    if times:
        print_ratios(times)
    if "messages" in options.only and "large" in options.only:
        print_growth(times)
    if "large" in options.only:
        print_memory(options.build)
    if "counts" in options.only:
        print_counts(options.build)


if __name__ == "__main__":
    main()
