"""What each work of the library costs in allocations and instructions: figures that repeat, unlike times."""

import os
import re
import subprocess
import tempfile
from pathlib import Path


def allocations(build: Path) -> dict[str, float]:
    """Allocations per operation of each work."""
    output = subprocess.run([build / "bench/zelk-bench-driver"], check=True, capture_output=True, text=True).stdout
    counts = {}
    for line in output.splitlines():
        name, operations, blocks = line.split()
        counts[name] = int(blocks) / int(operations)
    return counts


def instructions(build: Path) -> dict[str, float]:
    """Instructions per operation of each work, counted by callgrind."""
    # The string functions of the C library differ from processor to processor; without its extensions they are
    # the same on all.
    environment = dict(os.environ, GLIBC_TUNABLES="glibc.cpu.hwcaps=-AVX2,-AVX512F,-AVX512VL,-ERMS,-FSRM")
    with tempfile.TemporaryDirectory() as folder:
        run = subprocess.run(
            ["valgrind", "--tool=callgrind", "--instr-atstart=no",
             f"--callgrind-out-file={folder}/callgrind", build / "bench/zelk-bench-driver"],
            capture_output=True, text=True, env=environment)
        if run.returncode != 0:
            raise RuntimeError(run.stderr)
        operations = {name: int(count) for name, count, _ in (line.split() for line in run.stdout.splitlines())}
        totals = {}
        for path in Path(folder).iterdir():
            dump = path.read_text()
            work = re.search(r"^desc: Trigger: Client Request: (.*)$", dump, re.MULTILINE)
            total = re.search(r"^(?:totals|summary): (\d+)", dump, re.MULTILINE)
            if work and total:
                totals[work[1]] = int(total[1])
    return {name: totals[name] / operations[name] for name in operations}
