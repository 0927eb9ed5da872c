#!/usr/bin/env python3
"""Compares what a shared library exports with what the public headers declare.

usage: check_exports.py LIBRARY EXPORT_MACRO HEADER...

Each function and constant that a header marks with the macro must be exported under exactly its name; nothing else may
be. Names that
stand for two overloads, and exported classes, have C++ linkage: they are compared by their demangled names.
"""

import pathlib
import re
import subprocess
import sys


def declared(macro, headers):
    names = set()
    for header in headers:
        text = re.sub(r"/\*.*?\*/|//[^\n]*", "", pathlib.Path(header).read_text(), flags=re.DOTALL)
        text = re.sub(r"^\s*#.*$", "", text, flags=re.MULTILINE)
        names |= set(re.findall(macro + r"\s[^;({]*?(\w+)\s*\(", text))
        names |= set(re.findall(macro + r"\s+extern\s[^;({]*?(\w+)\s*;", text))
        names |= set(re.findall(r"class\s+" + macro + r"\s+(\w+)", text))
    return names


def exported(library):
    lines = subprocess.run(["nm", "-D", "-C", "--defined-only", library], check=True, capture_output=True, text=True).stdout
    symbols = [line.split(" ", 2)[2] for line in lines.splitlines() if " A " not in line]
    return {re.split(r"[(:]", symbol.removeprefix("vtable for ").removeprefix("typeinfo for "))[0] for symbol in symbols}


if __name__ == "__main__":
    library, macro, *headers = sys.argv[1:]
    want, got = declared(macro, headers), exported(library)
    if not want:
        sys.exit("the headers declare nothing")
    soname = subprocess.run(["readelf", "-d", library], check=True, capture_output=True, text=True).stdout
    if not re.search(r"SONAME.*\[" + re.escape(pathlib.Path(library).name) + r"\.1\]", soname):
        sys.exit(f"{library}: the SONAME is not version 1")
    for name in sorted(want - got):
        print(f"{name}: declared, not exported")
    for name in sorted(got - want):
        print(f"{name}: exported, not declared in a public header")
    sys.exit(1 if want != got else 0)
