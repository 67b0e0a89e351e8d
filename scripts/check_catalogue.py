#!/usr/bin/env python3
"""Checks the string tables: check_catalogue.py [CATALOGUE.po ...]

The keys are those of locale/en.po. English is held against its keys, any other language against
English: the same keys, places (^n), list forms ([first:further:]n) and escapes. A key of English is
asked for somewhere in the sources, and the report's words are those of its list. Without arguments it checks all of locale/. Each fault is one line, "file:line: message"; the status is 1 then, and 2
for a catalogue that cannot be read.
"""
import ast
import re
import sys
from collections import Counter
from dataclasses import dataclass
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
LOCALE = ROOT / "locale"

# Where keys are asked for. The list of the report's words only repeats what it asks for.
SOURCES = ("backend", "embedded", "report", "templates")
SUFFIXES = (".cpp", ".h", ".xml", ".glyphtemplate")
REPORT = "report"
LIST_OF_WORDS = ROOT / "report/words.h"

# Keys that the engine's documents bring.
KEYS_OF_DOCUMENTS = re.compile(r"kGLMM_C\d+|Dispersion|Var\(\^1\)|Cov\(\^1,\^2\)")

# Keys that do not show all places of their text: a pattern that does.
PLACES_OF_KEYS = {
    "EffectVar1": "[%1%2:^1^2:]1",
    "EffectVar2": "[%1%2:^1^2:]1",
    "Covariance Structure ^1 ...": "^1[%1:^1:]2",
    "Covariance Structure ^1 Subject Specification ^2 ...": "^1^2[%1:^1:]3",
    "VarOfEffect": "^1",
    "Simple Higher": "^1^2^3",
    "Simple Lower": "^1^2^3",
    "Simple Same": "^1^2^3",
    "Deviation Higher": "^1^2",
    "Deviation Lower": "^1^2",
    "Deviation Same": "^1^2",
    "Horizontal Line Deviation": "^1^2",
    "Horizontal Line Simple": "^1^2^3",
}

# A chart cuts the list form out of this text and so looks for it letter for letter.
FIXED_LIST_FORM = "Continuous predictors fixed at [%1=%2:,^1=^2:]1"

# A chart fills the places of this text from left to right.
PLACES_IN_ORDER = "Probability Distribution ^1, Link Function ^2 ..."

# How the language writes: fields of the header and their values.
MARKS = {
    "X-Decimal-Mark": r"\S",
    "X-Decimal-Point-In": r"|[A-Z]{2}( [A-Z]{2})*",
    "X-Percent-Space": r"none|no-break|narrow",
    "X-Direction": r"left-to-right|right-to-left",
}

LIST_FORM = re.compile(r"\[((?:[^\\\[\]:]|\\.)*):((?:[^\\\[\]:]|\\.)*):\]([1-9])", re.DOTALL)
PLACE = re.compile(r"\\.|\^([1-9])", re.DOTALL)
ESCAPE = re.compile(r"\\(.?)", re.DOTALL)
WORD_ASKED_FOR = re.compile(r'\bword\("((?:[^"\\\n]|\\.)*)"\)')
LITERAL = re.compile(r'"((?:[^"\\\n]|\\.)*)"')
PO_LINE = re.compile(r'(?:(msgid|msgstr)\s+)?("(?:[^"\\]|\\[nt"\\])*")\s*')


class Unreadable(Exception):
    """A catalogue that is no PO file, or a file that cannot be opened."""


@dataclass
class Entry:
    """One entry of a catalogue, and the line of its msgid."""

    line: int = 0
    key: str = ""
    text: str = ""
    fuzzy: bool = False


def read_entries(path):
    """The entries of a PO file in their order, the header (an empty key) first."""
    try:
        lines = path.read_text(encoding="utf-8").split("\n")
    except (OSError, UnicodeDecodeError) as error:
        raise Unreadable(f"{path}: {error}") from error
    entries, field, fuzzy = [], None, False
    for number, line in enumerate(lines, 1):
        if not line.strip() or line.startswith("#"):
            fuzzy = fuzzy or line.startswith("#,") and "fuzzy" in line
            field = None
            continue
        match = PO_LINE.fullmatch(line)
        if match and match[1] == "msgid":
            entries.append(Entry(number, fuzzy=fuzzy))
            fuzzy = False
        field = match and (match[1] or field)
        if not field or not entries:
            raise Unreadable(f"{path}:{number}: this is no line of a catalogue")
        if field == "msgid":
            entries[-1].key += ast.literal_eval(match[2])
        else:
            entries[-1].text += ast.literal_eval(match[2])
    return entries


@dataclass
class Pattern:
    """What a translation must keep of a text."""

    places: list  # ^n outside list forms, from left to right
    lists: Counter  # (argument, items of the first round, items of a further round)
    list_forms: list  # as they stand
    escapes: set  # the characters behind a backslash, outside list forms
    faults: list


def items_of_round(text, sign):
    """How many items one round of a list form takes: the highest number behind the sign."""
    return max((int(n) for n in re.findall(r"[%s]([1-9])" % re.escape(sign), text)), default=0)


def analyse(text):
    """Takes a pattern apart and notes what is wrong with it on its own."""
    faults, lists = [], Counter()
    for first, further, argument in LIST_FORM.findall(text):
        lists[argument, items_of_round(first, "%"), items_of_round(further, "^")] += 1
        if items_of_round(first, "^") or items_of_round(further, "%"):
            faults.append("a list form has %n in its first part and ^n in its second")
    rest = LIST_FORM.sub("", text)
    places = [n for n in PLACE.findall(rest) if n]
    if re.search(r"[\[\]]", rest):
        faults.append("a bracket belongs to no list form [first:further:]n")
    if re.search(r"%[1-9]", rest):
        faults.append("%n stands outside a list form")
    if any(escaped not in ("n", ":", "\\", "^") for escaped in ESCAPE.findall(text)):
        faults.append(r"a backslash stands ahead of none of n : \ ^")
    if re.search(r"[&<]", text):
        faults.append("& and < would be read as markup in a chart")
    return Pattern(places, lists, LIST_FORM.findall(text), set(ESCAPE.findall(rest)), faults)


def compare(key, reference, text, is_english):
    """What is wrong with the text of a key that must keep the places of the reference."""
    wanted, got = analyse(reference), analyse(text)
    faults = list(got.faults)
    if Counter(wanted.places) != Counter(got.places):
        faults.append(f"has the places {shown(got.places)}, not {shown(wanted.places)}")
    if wanted.lists != got.lists:
        faults.append("its list forms take other items than those of the original")
    if (":" in wanted.escapes) != (":" in got.escapes):
        faults.append(r'only one of text and original has "\:"')
    if not is_english and not got.escapes <= wanted.escapes:
        faults.append("has an escape that the original lacks")
    if key == FIXED_LIST_FORM and got.list_forms != analyse(key).list_forms:
        faults.append("its list form must stay letter for letter")
    if key == PLACES_IN_ORDER and got.places != sorted(got.places):
        faults.append("its places must stay in the order ^1, ^2")
    return faults


def shown(places):
    return " ".join("^" + n for n in sorted(places)) or "none"


def check_header(path, header):
    """The header names UTF-8, the language that the file is named after, and its marks."""
    if "charset=UTF-8" not in header.text:
        yield header.line, "the header does not say charset=UTF-8"
    language = re.search(r"^Language: (\S+)$", header.text, re.MULTILINE)
    if not language or language[1].replace("_", "-") != path.stem.replace("_", "-"):
        yield header.line, f'the header does not say "Language: {path.stem}"'
    for name, value in MARKS.items():
        field = re.search(rf"^{name}: (.*)$", header.text, re.MULTILINE)
        if not re.fullmatch(value, field[1] if field else ""):
            yield header.line, f"the header does not state {name} as docs/strings.md tells"


def check_entries(entries, english, is_english):
    """The faults of the entries, each with its line."""
    seen = set()
    for entry in entries:
        name = f'"{entry.key}"'.replace("\n", "\\n")
        if entry.key in seen:
            yield entry.line, f"{name} stands twice"
        elif entry.key not in english:
            yield entry.line, f"{name} is no key of the string table"
        elif not entry.text or entry.fuzzy:
            yield entry.line, f"{name} is not translated"
        else:
            key = entry.key
            reference = PLACES_OF_KEYS.get(key, key) if is_english else english[key]
            for fault in compare(key, reference, entry.text, is_english):
                yield entry.line, f"{name}: {fault}"
        seen.add(entry.key)
    for key in english:
        if key not in seen:
            yield 1, f'"{key}" is missing'.replace("\n", "\\n")


def plain(literal):
    """What a text between quotation marks in a source says."""
    return literal.replace("\\n", "\n").replace('\\"', '"').replace("\\\\", "\\")


def source(path):
    """A source in which texts between quotation marks that stand side by side are one."""
    return re.sub(r'"\s*\n\s*"', "", path.read_text(encoding="utf-8"))


def literals(folders, pattern=LITERAL):
    """The texts between quotation marks in the sources of some folders, without the word list."""
    return {plain(text) for folder in folders for path in (ROOT / folder).rglob("*")
            if path.suffix in SUFFIXES and path != LIST_OF_WORDS
            for text in pattern.findall(source(path))}


def check_use(entries):
    """The keys that nothing asks for."""
    asked = literals(SOURCES)
    for entry in entries:
        if entry.key not in asked and not KEYS_OF_DOCUMENTS.fullmatch(entry.key):
            yield entry.line, f'"{entry.key}" is asked for nowhere'.replace("\n", "\\n")


def check_words(english):
    """The report's words that its list lacks, and those of the list that are not asked for."""
    listed = {plain(text) for text in LITERAL.findall(LIST_OF_WORDS.read_text(encoding="utf-8"))}
    in_report = literals([REPORT])
    elsewhere = literals(folder for folder in SOURCES if folder != REPORT)
    asked = literals([REPORT], WORD_ASKED_FOR) | (english.keys() & in_report - elsewhere)
    for word in sorted(asked - listed - {""}):
        yield 1, f'"{word}" is not in the list of words'
    for word in sorted(listed - in_report):
        yield 1, f'"{word}" is asked for nowhere in {REPORT}/'
    for word in sorted(listed - english.keys()):
        yield 1, f'"{word}" is no key of the string table'


def check_catalogue(path, english):
    """All faults of one catalogue, each with its line."""
    entries = read_entries(path)
    if not entries or entries[0].key:
        return [(1, "the header is missing")]
    is_english = path.stem == "en"
    faults = list(check_header(path, entries[0]))
    if is_english:
        absent = PLACES_OF_KEYS.keys() | {FIXED_LIST_FORM, PLACES_IN_ORDER}
        faults += [(1, f'"{key}" is missing') for key in sorted(absent - english.keys())]
        faults += check_use(entries[1:])
    return faults + list(check_entries(entries[1:], english, is_english))


def main(arguments):
    try:
        english = {e.key: e.text for e in read_entries(LOCALE / "en.po") if e.key}
        paths = [Path(a) for a in arguments] or sorted(LOCALE.glob("*.po"))
        found = [(path, *fault) for path in paths for fault in check_catalogue(path, english)]
        found += [(LIST_OF_WORDS, *fault) for fault in check_words(english)]
    except Unreadable as error:
        print(error, file=sys.stderr)
        return 2
    for path, line, message in found:
        print(f"{path}:{line}: {message}", file=sys.stderr)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
