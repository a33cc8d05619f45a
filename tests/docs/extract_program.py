"""Writes the one C++ program of a page to a file: extract_program.py PAGE OUTPUT"""

import pathlib
import re
import sys

page, output = map(pathlib.Path, sys.argv[1:])
programs = re.findall(r"^```cpp\n(.*?)^```$", page.read_text(encoding="utf-8"), re.MULTILINE | re.DOTALL)
if len(programs) != 1:
    sys.exit(f"{page}: {len(programs)} C++ programs where one is expected")
output.write_text(programs[0], encoding="utf-8")
