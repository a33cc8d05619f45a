#!/usr/bin/env python3
"""Fails when a work takes more than 3 % more instructions or allocations than recorded in bench/record.json.

    bench/check.py BUILD            compare
    bench/check.py BUILD --record   write the record anew, to be committed with the change that explains it

BUILD is the build directory of the preset "release" with ZELK_BUILD_BENCHMARKS=ON.
"""

import argparse
import json
import sys
from pathlib import Path

import counts

RECORD = Path(__file__).with_name("record.json")
TOLERANCE = 1.03


def measured(build: Path) -> dict:
    instructions = counts.instructions(build)
    allocations = counts.allocations(build)
    return {"compiler": counts.compiler(build),
            "works": {name: {"instructions": round(instructions[name]), "allocations": round(allocations[name], 2)}
                      for name in sorted(instructions)}}


def differences(now: dict, record: dict) -> tuple[list[str], list[str]]:
    """What has grown too much or is not in both, and what has shrunk enough to be recorded."""
    worse = [f"{name}: measured, but not in the record" for name in now.keys() - record.keys()]
    worse += [f"{name}: in the record, but not measured" for name in record.keys() - now.keys()]
    better = []
    for name in sorted(now.keys() & record.keys()):
        for kind, before in record[name].items():
            after = now[name][kind]
            change = f"{name}: {kind} {before:,} -> {after:,}"
            if after > before * TOLERANCE:
                worse.append(change)
            elif after * TOLERANCE < before:
                better.append(change)
    return worse, better


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build", type=Path)
    parser.add_argument("--record", action="store_true")
    options = parser.parse_args()
    now = measured(options.build)
    if options.record:
        RECORD.write_text(json.dumps(now, indent=2) + "\n")
        return 0
    record = json.loads(RECORD.read_text())
    if now["compiler"] != record["compiler"]:
        print(f"the record is of {record['compiler']}, this build is of {now['compiler']}: not comparable")
        return 1
    worse, better = differences(now["works"], record["works"])
    for change in better:
        print(f"better  {change}")
    for change in worse:
        print(f"WORSE   {change}")
    if better and not worse:
        print("record the gain with --record, so that it is kept")
    return 1 if worse else 0


if __name__ == "__main__":
    sys.exit(main())
