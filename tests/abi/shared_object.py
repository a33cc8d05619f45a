"""What the tests of the binary interface read out of a shared library, by the tools of binutils."""

import re
import subprocess


def lines_of(*command, text=None):
    return subprocess.run(command, input=text, capture_output=True, text=True, check=True).stdout.splitlines()


def readable(names):
    """The C++ names of mangled ones, with the standard string and the vector of strings by their short names."""
    long_string = "std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >"
    result = []
    for name in lines_of("c++filt", text="\n".join(names) + "\n"):
        name = name.replace("[abi:cxx11]", "").replace(long_string, "std::string")
        name = re.sub(r"std::vector<std::string, std::allocator<std::string ?> ?>", "std::vector<std::string>", name)
        name = name.replace("std::string >", "std::string>")
        result.append(name)
    return result


def dynamic_entries(library, tag):
    """The names in square brackets of the dynamic section: those of NEEDED or SONAME."""
    entries = []
    for line in lines_of("readelf", "-dW", library):
        if f"({tag})" in line:
            entries.append(line[line.index("[") + 1 : line.index("]")])
    return entries


def exported(library):
    """The mangled names that the library defines for others."""
    lines = lines_of("nm", "--dynamic", "--defined-only", "--format=posix", "--without-symbol-versions", library)
    return [line.split()[0] for line in lines]


def imported(library):
    """The names that the library needs from others, as (mangled name, version or "", whether it may be missing)."""
    result = []
    for line in lines_of("nm", "--dynamic", "--undefined-only", "--format=posix", "--with-symbol-versions", library):
        name, kind = line.split()[:2]
        name, _, version = name.partition("@")
        result.append((name, version, kind in "wv"))
    return result
