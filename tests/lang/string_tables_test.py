#!/usr/bin/env python3
"""Checks that the maker of string tables refuses every fault at its line, and makes what the files say.

usage: string_tables_test.py string_tables.py
"""
import pathlib
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(sys.argv[1]).parent))
sys.dont_write_bytecode = True
import string_tables as maker

HEADER = 'msgid ""\nmsgstr ""\n"Content-Type: text/plain; charset=UTF-8\\n"\n"Language: {}\\n"\n\n'  # 5 lines
ENGLISH = 'msgctxt "Used"\nmsgid "%s uses $.1f of $(App)\\n"\nmsgstr ""\n#, no-c-format\nmsgctxt "Plain"\n'
ENGLISH += 'msgid "50 % sure"\nmsgstr ""\nmsgctxt "Size"\nmsgid "%1 of %2!d! bytes"\nmsgstr ""\n'

# A file's text behind its header, the line of the fault (6 is the first behind the header), and what is said of it.
FAULTS = [
    ("de", 'msgctxt "Used"\nmsgid "gone"\nmsgstr "weg"\n', 6, "no such text"),
    ("de", 'msgctxt "Use"\nmsgid "50 % sure"\nmsgstr "weg"\n', 6, "is Plain, not Use"),
    ("de", 'msgctxt "Size"\nmsgid "%1 of %2!d! bytes"\nmsgstr "%2 von %1"\n', 6, "%1 %2, those"),
    ("de", '\nmsgctxt "Used"\nmsgid "%s uses $.1f "\n"of $(App)\\n"\nmsgstr "$.1f %s $(App)"\n', 7, "$.1f %s $(App), those"),
    ("de", 'msgctxt "Used"\nmsgid_plural "x"\n', 7, "plural"),
    ("de", 'msgctxt "Used"\nmsgstr "x"\n', 7, "msgstr behind msgctxt"),
    ("de", 'msgid "x"\n\n# end\n', 8, "without msgstr"),
    ("de", '"x"\n', 0, ""),  # goes on with the header
    ("de", '# c\n"x"\n', 7, "belongs to nothing"),
    ("de", 'msgid "a" b"\nmsgstr ""\n', 6, "expected"),
    ("de", 'msgid "\\q"\nmsgstr ""\n', 6, "no escape"),
    ("de", 'msgid "50 % sure"\n# \udcff\n', 7, "not UTF-8"),
    ("en", 'msgctxt "Again"\nmsgid "50 % sure"\nmsgstr ""\n', 16, "stands in line 10 already"),
    ("en", 'msgctxt "Used"\nmsgid "other"\nmsgstr ""\n', 16, "name Used stands in line 6"),
    ("en", 'msgctxt "use"\nmsgid "other"\nmsgstr ""\n', 16, "capital"),
    ("en", 'msgctxt "Other"\nmsgid "other"\nmsgstr "others"\n', 16, "changed in msgid"),
    ("xx", "", 1, "no slot"),
]


def write(folder, texts):
    for language in {name for name, _ in maker.LANGUAGES} | set(texts):
        text = HEADER.format(language) + (ENGLISH if language == "en" else "") + texts.get(language, "")
        (folder / f"{language}.po").write_bytes(text.encode("utf-8", "surrogateescape"))


def run(folder):
    command = [sys.executable, sys.argv[1], folder, folder / "strings.h", folder / "strings.cpp"]
    return subprocess.run([str(word) for word in command], capture_output=True, text=True, check=False)


def check(condition, what):
    if not condition:
        sys.exit(f"failed: {what}")


for language, text, line, said in FAULTS:
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        write(folder, {language: text})
        result = run(folder)
        if line == 0:
            check(result.returncode == 0, f"{text!r} is no fault, but: {result.stderr}")
            continue
        check(result.returncode == 1 and f"{language}.po:{line}: " in result.stderr and said in result.stderr,
              f"{text!r} gave {result.stderr!r}")
        check(not (folder / "strings.h").exists(), f"{text!r} made a header")

with tempfile.TemporaryDirectory() as name:
    folder = pathlib.Path(name)
    write(folder, {"pl": 'msgctxt "Plain"\nmsgid "50 % sure"\nmsgstr "50 % d\\"\\\\"\n\n#, fuzzy\nmsgctxt "Used"\n'
                         'msgid "%s uses $.1f of $(App)\\n"\nmsgstr "other"\n'
                         'msgctxt "Size"\nmsgid "%1 of %2!d! bytes"\nmsgstr "%2!d!: %1"\n'})
    (folder / "da.po").write_text(HEADER.format("sv"))
    check("da.po:1" in run(folder).stderr, "a header of another language")
    (folder / "da.po").unlink()
    check("no such file" in run(folder).stderr, "a file that is missing")
    (folder / "da.po").write_text(HEADER.format("da"))
    languages = maker.read_all(folder)
    polish = [maker.translation(languages[-1], text) for text in languages[0]]
    check(polish == [None, '50 % d"\\', "%2!d!: %1"], f"a fuzzy text stays English: {polish}")
    check(run(folder).returncode == 0, "good files")
    source = (folder / "strings.cpp").read_text(encoding="utf-8")
    check('u"50 % d\\"\\\\"' in source and source.count("kPlainText") == 18, "17 languages and the text itself")
    check("kSize = &g_tables[2]" in (folder / "strings.h").read_text(encoding="utf-8"), "tables in the order of en.po")
