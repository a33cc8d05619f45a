"""What each work of the library costs in allocations and instructions: figures that repeat, unlike times."""

import os
import re
import subprocess
import tempfile
from pathlib import Path


def _run(command: list, **options) -> tuple[str, list[list[str]]]:
    """The compiler, and name, operations and allocations of each work."""
    run = subprocess.run(command, capture_output=True, text=True, **options)
    if run.returncode != 0:
        raise RuntimeError(run.stderr)
    compiler_line, *works = run.stdout.splitlines()
    return compiler_line, [line.split() for line in works]


def compiler(build: Path) -> str:
    """Name and major version of the compiler that made the build."""
    return _run([build / "bench/zelk-bench-driver"])[0]


def allocations(build: Path) -> dict[str, float]:
    """Allocations per operation of each work."""
    _, works = _run([build / "bench/zelk-bench-driver"])
    return {name: int(blocks) / int(operations) for name, operations, blocks in works}


def instructions(build: Path) -> dict[str, float]:
    """Instructions per operation of each work, counted by callgrind."""
    # The string functions of the C library differ from processor to processor; without its extensions they are
    # the same on all.
    environment = dict(os.environ, GLIBC_TUNABLES="glibc.cpu.hwcaps=-AVX2,-AVX512F,-AVX512VL,-ERMS,-FSRM")
    with tempfile.TemporaryDirectory() as folder:
        _, works = _run(["valgrind", "--tool=callgrind", "--instr-atstart=no",
                         f"--callgrind-out-file={folder}/callgrind", build / "bench/zelk-bench-driver"],
                        env=environment)
        totals = {}
        for path in Path(folder).iterdir():
            dump = path.read_text()
            work = re.search(r"^desc: Trigger: Client Request: (.*)$", dump, re.MULTILINE)
            total = re.search(r"^(?:totals|summary): (\d+)", dump, re.MULTILINE)
            if work and total:
                totals[work[1]] = int(total[1])
    return {name: totals[name] / int(operations) for name, operations, _ in works}
