#!/usr/bin/env python3
"""Compiles every public header alone, and all of them together in both orders.

    headers_test.py COMPILER STANDARD ROOT HEADER...
"""

import concurrent.futures
import os
import subprocess
import sys

WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Wshadow", "-Wconversion", "-Wsign-conversion", "-Wnon-virtual-dtor",
            "-Woverloaded-virtual", "-Wold-style-cast", "-Wcast-qual", "-Werror"]  # fmt: skip


def main():
    compiler, standard, root = sys.argv[1:4]
    headers = [os.path.relpath(header, root) for header in sys.argv[4:]]

    def errors_of(included):
        source = "".join(f'#include "{header}"\n' for header in included)
        command = [compiler, f"-std={standard}", "-fsyntax-only", "-I", root, *WARNINGS, "-x", "c++", "-"]
        return subprocess.run(command, input=source, capture_output=True, text=True, check=False).stderr

    # Twice in a row, so that a header without a guard is found as well.
    groups = [[header, header] for header in headers] + [headers, headers[::-1]]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        errors = [text for text in pool.map(errors_of, groups) if text]
    print("\n".join(errors), file=sys.stderr)
    print(f"{len(groups)} sources, {len(errors)} of them with errors")
    return 1 if errors or not headers else 0


if __name__ == "__main__":
    sys.exit(main())
