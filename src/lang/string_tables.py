#!/usr/bin/env python3
"""Turns the message files (strings/*.po) into the library's built-in string tables.

usage: string_tables.py FOLDER HEADER SOURCE    writes a C++ header and source from FOLDER/*.po
       string_tables.py --missing FOLDER        shows how much each language has, and what it lacks

The files are .po files as translators' tools write them, read strictly: whatever is wrong ends the run
with FILE:LINE and a sentence. en.po names the tables and their order; a text that a language does not have,
or marks as fuzzy, is the English one. A translation must hold the format fields of the English text: those
of the print engine in the same order, numbered inserts (%1, %2!d!) in any. Entries flagged no-c-format in
en.po are plain text, and "%" and "$" are only characters there.
"""

import dataclasses
import pathlib
import re
import sys

# In the order of the slots: a file's name without .po, and the number by which the system knows the language.
LANGUAGES = [("en", 0x0409), ("ja", 0x0411), ("de", 0x0407), ("es", 0x040A), ("fr", 0x040C), ("zh_CN", 0x0804),
             ("zh_TW", 0x0404), ("da", 0x0406), ("fi", 0x040B), ("it", 0x0410), ("ko", 0x0412), ("nl", 0x0413),
             ("nb", 0x0414), ("pt_BR", 0x0416), ("pt_PT", 0x0816), ("ru", 0x0419), ("sv", 0x041D), ("pl", 0x0415)]

LINE = re.compile(r'(?:(msgctxt|msgid|msgstr)[ \t]+)?"((?:[^"\\]|\\.)*)"[ \t]*')
ESCAPE = re.compile(r"\\(.)")
ESCAPES = {"n": "\n", "t": "\t", "r": "\r", '"': '"', "\\": "\\"}
NAME = re.compile(r"[A-Z][A-Za-z0-9]*")
INSERT = r"%[1-9][0-9]?(?:![^!]*!|(?![0-9A-Za-z]|\.[0-9]))"
FIELD = re.compile(INSERT + r"|%%|\$[$%]|\$\(\w[\w.]*\)|\$[*,:]|\$[!&][:.,]"
                   r"|[%$][-+# 0]*[0-9]*(?:\.[0-9]+)?(?:I64|I32|I|hh|h|ll|l)?[EGXcdefgiosuxz]")


class Fault(Exception):
    """What is wrong, with its place."""

    def __init__(self, path, line, sentence):
        super().__init__(f"{path}:{line}: {sentence}")


@dataclasses.dataclass
class Entry:
    """One message. The text of a part is None where the part is absent."""

    line: int
    flags: set
    msgctxt: str | None = None
    msgid: str | None = None
    msgstr: str | None = None


def unescaped(path, line, text):
    def one(match):
        if match[1] not in ESCAPES:
            raise Fault(path, line, f"there is no escape \\{match[1]}")
        return ESCAPES[match[1]]
    return ESCAPE.sub(one, text)


class Reader:
    """Reads a file's entries: comments, msgctxt, msgid, msgstr, in this order."""

    ORDER = {"msgctxt": (None,), "msgid": (None, "msgctxt"), "msgstr": ("msgid",)}

    def __init__(self, path):
        self.path = path
        self.entries = []
        self.part = None  # the last one that was begun in the current entry
        self.flags = set()

    def read(self):
        try:
            content = self.path.read_bytes().decode("utf-8")
        except UnicodeDecodeError as error:
            before = self.path.read_bytes()[:error.start]
            raise Fault(self.path, before.count(b"\n") + 1, "this is not UTF-8") from None
        number = 0
        for number, line in enumerate(content.split("\n"), 1):
            if line.startswith("#"):
                self.end_entry(number)
                if line.startswith("#,"):
                    self.flags |= {flag.strip() for flag in line[2:].split(",")}
            elif line.strip():
                self.text_line(number, line)
        self.end_entry(number)
        return self.entries

    def text_line(self, number, line):
        match = LINE.fullmatch(line)
        if not match:
            raise Fault(self.path, number, "expected msgctxt, msgid or msgstr and a text in quotes, or a comment; "
                        "plural forms are not known here")
        if match[1]:
            self.begin_part(number, match[1])
        elif self.part is None:
            raise Fault(self.path, number, "a text that belongs to nothing")
        entry = self.entries[-1]
        setattr(entry, self.part, getattr(entry, self.part) + unescaped(self.path, number, match[2]))

    def begin_part(self, number, part):
        if self.part == "msgstr":
            self.end_entry(number)
        if self.part not in self.ORDER[part]:
            raise Fault(self.path, number, f"{part} behind {self.part or 'nothing'}")
        if self.part is None:
            self.entries.append(Entry(number, self.flags))
            self.flags = set()
        self.part = part
        setattr(self.entries[-1], part, "")

    def end_entry(self, number):
        if self.part not in (None, "msgstr"):
            raise Fault(self.path, number, f"{self.part} without msgstr")
        self.part = None


def check_header(path, language, entries):
    """The first entry says the file's language and how it is encoded."""
    header = entries[0].msgstr if entries and entries[0].msgid == "" else ""
    for wanted in (f"Language: {language}\n", "Content-Type: text/plain; charset=UTF-8\n"):
        if wanted not in header:
            raise Fault(path, 1, f"the header lacks \"{wanted.strip()}\"")


def read_language(folder, language):
    """The entries of a language by their English texts, without the header."""
    path = folder / f"{language}.po"
    if not path.exists():
        raise Fault(path, 1, "there is no such file")
    entries = Reader(path).read()
    check_header(path, language, entries)
    messages = {}
    for entry in entries[1:]:
        if not entry.msgid:
            raise Fault(path, entry.line, "an empty msgid, which only the header has")
        if entry.msgid in messages:
            raise Fault(path, entry.line, f"this text stands in line {messages[entry.msgid].line} already")
        if "\0" in entry.msgid + entry.msgstr:
            raise Fault(path, entry.line, "a zero character would end the text")
        messages[entry.msgid] = entry
    return messages


def check_english(path, messages):
    """Every text has a name of its own, and is its own translation."""
    lines = {}
    for entry in messages.values():
        if not NAME.fullmatch(entry.msgctxt or ""):
            raise Fault(path, entry.line, "msgctxt must be a name: a capital, then letters and digits")
        if entry.msgctxt in lines:
            raise Fault(path, entry.line, f"the name {entry.msgctxt} stands in line {lines[entry.msgctxt]} already")
        if entry.msgstr not in ("", entry.msgid):
            raise Fault(path, entry.line, "English texts are changed in msgid, in all files")
        lines[entry.msgctxt] = entry.line


def fields_of(text):
    """Fields in their order, and inserts, whose order is free, sorted behind them."""
    found = FIELD.findall(text)
    inserts = [field for field in found if re.fullmatch(INSERT, field)]
    return [field for field in found if field not in inserts] + sorted(inserts)


def is_used(entry):
    return entry.msgstr and "fuzzy" not in entry.flags


def check_translation(path, messages, english):
    for entry in messages.values():
        original = english.get(entry.msgid)
        if original is None:
            raise Fault(path, entry.line, "en.po has no such text")
        if entry.msgctxt != original.msgctxt:
            raise Fault(path, entry.line, f"the name of this text is {original.msgctxt}, not {entry.msgctxt}")
        if not is_used(entry) or "no-c-format" in original.flags:
            continue
        wanted, found = fields_of(entry.msgid), fields_of(entry.msgstr)
        if wanted != found:
            raise Fault(path, entry.line, f"the format fields are {' '.join(found) or 'none'}, those of the English "
                        f"text {' '.join(wanted) or 'none'}")


def read_all(folder):
    """All languages, in the order of the slots: the messages of each by their English texts."""
    known = {language for language, _ in LANGUAGES}
    for path in sorted(folder.glob("*.po")):
        if path.stem not in known:
            raise Fault(path, 1, "no slot takes this language")
    languages = [read_language(folder, language) for language, _ in LANGUAGES]
    check_english(folder / "en.po", languages[0])
    for (language, _), messages in zip(LANGUAGES[1:], languages[1:]):
        check_translation(folder / f"{language}.po", messages, languages[0])
    return languages


def translation(messages, english):
    """The text of a language, None where the English one serves."""
    entry = messages.get(english)
    return entry.msgstr if entry and is_used(entry) else None


def literal(text):
    names = {value: "\\" + key for key, value in ESCAPES.items()}
    return 'u"' + "".join(names.get(c, c if c >= " " else f"\\{ord(c):03o}") for c in text) + '"'


def header_of(english):
    names = "\n".join(f"inline constexpr vxlang_t* k{entry.msgctxt} = &g_tables[{index}];"
                      for index, entry in enumerate(english.values()))
    lcids = ", ".join(f"0x{lcid:04X}" for _, lcid in LANGUAGES)
    languages = ", ".join(f'"{language}"' for language, _ in LANGUAGES)
    names_as_text = ", ".join(f'"{entry.msgctxt}"' for entry in english.values())
    return f"""// Made from strings/*.po by string_tables.py: change those.
#pragma once

#include "vx/lang.h"

namespace vx::strings {{

inline constexpr uint16_t kSlotLcids[VXLANG_SLOTS] = {{{lcids}}};
inline constexpr const char* kSlotLanguages[VXLANG_SLOTS] = {{{languages}}};
inline constexpr int kCount = {len(english)};
inline constexpr const char* kNames[kCount] = {{{names_as_text}}};

// Lookups write to tables that hold numbers of resources; these hold texts only.
extern vxlang_t g_tables[kCount];

{names}

}} // namespace vx::strings
"""


def source_of(languages):
    texts, tables = [], []
    for text, entry in languages[0].items():
        english = f"k{entry.msgctxt}Text"
        translations = [translation(messages, text) for messages in languages]
        slots = ", ".join(english if slot is None else literal(slot) for slot in translations)
        texts.append(f"constexpr char16_t {english}[] = {literal(text)};\n")
        tables.append(f"    {{VXLANG_MARK, VXLANG_SLOTS, 0, {{{slots}}}, 0}},\n")
    return f"""// Made from strings/*.po by string_tables.py: change those.
#include "lang/strings.h"

namespace vx::strings {{
namespace {{

{"".join(texts)}
}} // namespace

vxlang_t g_tables[kCount] = {{
{"".join(tables)}}};

}} // namespace vx::strings
"""


def show_missing(folder):
    languages = read_all(folder)
    english = languages[0]
    for (language, _), messages in zip(LANGUAGES[1:], languages[1:]):
        missing = [entry.msgctxt for text, entry in english.items() if translation(messages, text) is None]
        print(f"{language}: {len(english) - len(missing)} of {len(english)}; lacks {' '.join(missing) or 'none'}")


def main(arguments):
    if len(arguments) == 2 and arguments[0] == "--missing":
        show_missing(pathlib.Path(arguments[1]))
        return
    if len(arguments) != 3:
        sys.exit(__doc__)
    languages = read_all(pathlib.Path(arguments[0]))
    pathlib.Path(arguments[1]).write_text(header_of(languages[0]), encoding="utf-8")
    pathlib.Path(arguments[2]).write_text(source_of(languages), encoding="utf-8")


if __name__ == "__main__":
    try:
        main(sys.argv[1:])
    except Fault as fault:
        sys.exit(str(fault))
