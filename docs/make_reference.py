"""Runs Doxygen and fails on any warning: make_reference.py DOXYGEN DOXYFILE WARNINGS_FILE

Doxygen asks for a comment on every member. Left out are the members that the class says all about: what copies, moves,
compares and destroys it, constructors that take its members, plain accessors, names of types, macros, overrides, and the
vocabulary of std::vector in Json::Array.
"""

import pathlib
import re
import subprocess
import sys

SPEAKS_FOR_ITSELF = re.compile("|".join((
    r"operator(=|==|!=)\(",
    r" override|=default",
    r"\((typedef|macro definition)\)",
    r"^(get|set)?\w+\(\) ?(const)? ?(noexcept|&noexcept|&&noexcept)? \(function\)",
    r"^set[A-Z]\w*\([^,]*\) \(function\)",
    r"^(?P<name>[A-Z]\w*)\(.*\) .*of class .*\b(?P=name)(< .* >)? is",
    r"^[GS]etAs< ",
    r"of class Zelk::Json::Array ",
)))

doxygen, doxyfile, warnings_file = sys.argv[1:]
run = subprocess.run([doxygen, doxyfile])
warnings = pathlib.Path(warnings_file).read_text(encoding="utf-8").splitlines()
remaining = []
for warning in warnings:
    member = re.search(r"Member (.*) is not documented", warning)
    if not member or not SPEAKS_FOR_ITSELF.search(member.group(1) + " is"):
        remaining.append(warning)
print("\n".join(remaining))
sys.exit(1 if remaining or (run.returncode != 0 and not warnings) else 0)
