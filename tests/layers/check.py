#!/usr/bin/env python3
"""Checks the sources' includes against the layer table of docs/architecture.md.

usage: check.py ROOT     prints each arrow that is not in the table and exits 1
       check.py --self   checks that the check itself finds faults
"""

import pathlib
import re
import sys
import tempfile

ROW = re.compile(r"^\| ([\w/]+) \| ([\w/ ]*)\| ([\w/* ]*)\|$")
INCLUDE = re.compile(r'^\s*#\s*include\s+(["<])([^">]+)[">]')
# Language, compiler and library headers that any module may use; the rest of <...> is the system's.
SYSTEM = re.compile(r"^(sys/|linux/|net|arpa/|unicode/|(unistd|fcntl|dlfcn|pthread|sched|signal|poll|dirent|pwd|spawn|"
                    r"sqlite3|semaphore|termios|time|locale|langinfo|iconv|features|ucontext|execinfo)\.h$)")
OS_CONDITION = re.compile(r"^\s*#\s*(if|ifdef|ifndef|elif).*\b(__linux__|_WIN32|_WIN64|__APPLE__|__unix__)\b")


class Layers:
    """The table: who may include whom, and whose each exported header is."""

    def __init__(self, text):
        self.may = {}
        self.owner = {}
        table = re.search(r"^\| module \|.*?(?:\n\n|\Z)", text, re.MULTILINE | re.DOTALL)
        for row in map(ROW.match, table[0].strip().splitlines()[2:] if table else []):
            if not row:
                raise SystemExit("a row of the layer table cannot be read")
            self.may[row[1]] = set(row[2].split()) | {row[1]}
            for header in row[3].split():
                self.owner[header] = row[1]
        unknown = {name for names in self.may.values() for name in names} - set(self.may)
        if not self.may or unknown:
            raise SystemExit(f"the layer table is missing or names unknown modules: {sorted(unknown)}")

    def module_of(self, included):
        """The module that a project include belongs to, or None for another library's header."""
        if included.startswith("vx/platform/"):
            return "platform"
        if included.startswith("vx/"):
            return self.owner.get(included[3:].removesuffix(".h"), f"nobody ({included} is not in the table)")
        return self.module_of_source(included)

    def module_of_source(self, path):
        """The module of a file below src: a row "folder/stem" of the table takes the files that begin so."""
        folder = path.split("/")[0]
        narrow = [name for name in self.may if "/" in name and path.startswith(name)]
        return max(narrow, key=len) if narrow else folder if folder in self.may else None


def faults_of(root):
    layers = Layers((root / "docs/architecture.md").read_text())
    headers = {str(p.relative_to(root / "include/vx")).removesuffix(".h") for p in (root / "include/vx").glob("*.h")}
    for header in sorted(headers - set(layers.owner) - {"vxkernel"}):
        yield f"include/vx/{header}.h: no module of the table owns it"
    files = sorted(p for folder in ("src", "include/vx") for p in (root / folder).rglob("*") if p.suffix in (".h", ".cpp"))
    for path in files:
        name = path.relative_to(root)
        if name.parts[0] == "src":
            module = layers.module_of_source(str(name.relative_to("src")))
            if module is None:
                yield f"{name}: its folder is not in the table"
                continue
        else:
            module = layers.module_of(str(name.relative_to("include")))
        if name.name == "vxkernel.h":
            continue
        for number, line in enumerate(path.read_text().splitlines(), 1):
            if module != "platform" and OS_CONDITION.match(line):
                yield f"{name}:{number}: a condition on the operating system outside platform"
            include = INCLUDE.match(line)
            if not include:
                continue
            target = layers.module_of(include[2])
            if include[1] == "<" and module != "platform" and SYSTEM.match(include[2]):
                yield f"{name}:{number}: <{include[2]}> is for platform only"
            elif target and target not in layers.may.get(module, ()):
                yield f"{name}:{number}: {module} may not include {target} ({include[2]})"


def self_check():
    """A tree with one fault of each kind: every one must be found, and nothing else."""
    table = "| module | may include | exported headers |\n|---|---|---|\n| platform | | platform/* |\n"
    table += "| low | platform | types |\n| high/base | low | |\n| high | high/base low platform | high |\n"
    sources = {
        "docs/architecture.md": table,
        "include/vx/types.h": "",
        "include/vx/high.h": '#include "vx/types.h"\n',
        "include/vx/stray.h": "",
        "src/high/fine.cpp": '#include "low/a.h"\n#include "vx/high.h"\n#include <vector>\n',
        "src/high/base.cpp": '#include "low/a.h"\n',
        "src/high/base_up.cpp": '#include "high/b.h"\n',
        "src/low/up.cpp": '#include "high/b.h"\n',
        "src/low/interface.cpp": '#include "vx/high.h"\n',
        "src/low/system.cpp": "#include <unistd.h>\n#ifdef __linux__\n",
        "src/other/x.cpp": "",
        "src/platform/os.cpp": "#include <unistd.h>\n#ifdef __linux__\n",
    }
    want = {"include/vx/stray.h", "src/high/base_up.cpp:1", "src/low/up.cpp:1", "src/low/interface.cpp:1", "src/low/system.cpp:1",
            "src/low/system.cpp:2", "src/other/x.cpp"}
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        for name, text in sources.items():
            (root / name).parent.mkdir(parents=True, exist_ok=True)
            (root / name).write_text(text)
        found = {fault.split(": ")[0] for fault in faults_of(root)}
    if found != want:
        raise SystemExit(f"missed {sorted(want - found)}, invented {sorted(found - want)}")


if __name__ == "__main__":
    if sys.argv[1] == "--self":
        self_check()
    else:
        faults = list(faults_of(pathlib.Path(sys.argv[1])))
        print("\n".join(faults))
        sys.exit(1 if faults else 0)
