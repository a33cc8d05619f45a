#!/usr/bin/env python3
"""Compares the names that a library hands out, or needs from its siblings, with a reviewed list.

    symbols_test.py exports LIST LIBRARY
    symbols_test.py imports LIST LIBRARY --sibling LIBRARY...
    symbols_test.py name SONAME LIBRARY

A list has one readable name a line. A name after "? " depends on the compiler and its optimisation: it may be
there or not. Constructors and destructors stand once, whatever their variants; what follows from a class being
there (its VTT, thunks, construction tables, name of its type) does not stand at all.

With --record and the library from each kind of build, the list is written anew; look at the difference before it
goes in. The head of the list, its lines that begin with "#", stays.
"""

import argparse
import re
import sys

from shared_object import dynamic_entries, exported, imported, readable

FOLLOWS_FROM_CLASS = re.compile(
    r"^(VTT for|construction vtable for|typeinfo name for|virtual thunk to|non-virtual thunk to) "
)
# The libraries of the language and the system, by the versions of their names and by their own names.
RUNTIME_VERSION = re.compile(r"^@?(GLIBC|GLIBCXX|CXXABI|GCC)_[0-9]")
RUNTIME_LIBRARY = re.compile(r"^(libstdc\+\+|libgcc_s|libm|libc|ld-linux[-a-z0-9_]*)\.so\.[0-9]+$")


def listed_names(mangled):
    return {name for name in readable(mangled) if not FOLLOWS_FROM_CLASS.match(name)}


def exported_names(library):
    return listed_names(exported(library))


def names_from_siblings(library, siblings):
    given = {name for sibling in siblings for name in exported(sibling)}
    return listed_names([name for name, _, _ in imported(library) if name in given])


def foreign_needs(library, siblings):
    """What the library needs that neither a sibling nor the language gives."""
    given = {name for sibling in siblings for name in exported(sibling)}
    own = {name for sibling in siblings for name in dynamic_entries(sibling, "SONAME")}
    for name, version, may_be_missing in imported(library):
        if name not in given and not RUNTIME_VERSION.match(version) and not may_be_missing:
            yield f"the name {readable([name])[0]}"
    for needed in dynamic_entries(library, "NEEDED"):
        if needed not in own and not RUNTIME_LIBRARY.match(needed):
            yield f"the library {needed}"


def read_list(path):
    always, sometimes = set(), set()
    with open(path, encoding="utf-8") as file:
        for line in file.read().splitlines():
            if line.startswith("? "):
                sometimes.add(line[2:])
            elif line and not line.startswith("#"):
                always.add(line)
    return always, sometimes


def compare(found, path):
    always, sometimes = read_list(path)
    for name in sorted(found - always - sometimes):
        yield f"not in the list: {name}"
    for name in sorted(always - found):
        yield f"in the list, but not there: {name}"


def record(path, sets):
    with open(path, encoding="utf-8") as file:
        head = [line for line in file.read().splitlines() if line.startswith("#")]
    always = set.intersection(*sets)
    names = [name if name in always else "? " + name for name in sorted(set.union(*sets))]
    with open(path, "w", encoding="utf-8") as file:
        file.write("\n".join(head + names) + "\n")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("what", choices=["exports", "imports", "name"])
    parser.add_argument("expected")
    parser.add_argument("library", nargs="+")
    parser.add_argument("--sibling", nargs="+", default=[])
    parser.add_argument("--any-runtime", action="store_true", help="the build adds a runtime of its own")
    parser.add_argument("--record", action="store_true")
    options = parser.parse_args()

    if options.what == "name":
        found = dynamic_entries(options.library[0], "SONAME")
        problems = [] if found == [options.expected] else [f"the name is {found}, not {options.expected}"]
    elif options.record:
        sets = [
            exported_names(library)
            if options.what == "exports"
            else names_from_siblings(library, options.sibling)
            for library in options.library
        ]
        record(options.expected, sets)
        return 0
    elif options.what == "exports":
        found = exported_names(options.library[0])
        problems = list(compare(found, options.expected))
        problems += [f"internal, but exported: {name}" for name in sorted(found) if "Detail::" in name]
    else:
        found = names_from_siblings(options.library[0], options.sibling)
        problems = list(compare(found, options.expected))
        if not options.any_runtime:
            problems += [f"needed from elsewhere: {need}" for need in foreign_needs(options.library[0], options.sibling)]

    for problem in problems:
        print(f"{options.library[0]}: {problem}", file=sys.stderr)
    if not problems and options.what != "name":
        print(f"{options.library[0]}: {len(found)} names as listed")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
