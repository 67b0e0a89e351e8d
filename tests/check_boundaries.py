#!/usr/bin/env python3
"""Holds who may include what, and that every header compiles the same wherever it stands.

Usage: check_boundaries.py SOURCE_DIR
"""
import pathlib
import re
import sys

# A folder, and what its files may include of ours. What stands in angle brackets must be the
# standard library where the last column says so.
RULES = [
    ("host", ("host/",), True),
    ("backend", ("host/", "backend/"), True),
    ("output", ("output/",), False),
    ("embedded", ("host/", "output/", "embedded/"), False),
    ("report", ("output/", "report/"), False),
    ("import", ("import/",), False),
    ("app", ("host/", "output/", "embedded/", "report/", "import/", "app/"), False),
    ("tests/tiny_host", ("host/", "tests/tiny_host/"), False),
]
STANDARD = re.compile(r"^[a-z_0-9]+$")
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')


def faults(root):
    for folder, allowed, only_standard in RULES:
        for path in sorted((root / folder).rglob("*")):
            if path.suffix not in (".h", ".cpp"):
                continue
            for number, line in enumerate(path.read_text().splitlines(), 1):
                found = INCLUDE.match(line)
                if not found:
                    continue
                bracket, name = found.groups()
                if bracket == '"' and not name.startswith(allowed):
                    yield f"{path}:{number}: {folder}/ must not include {name}"
                if bracket == "<" and only_standard and not STANDARD.match(name):
                    yield f"{path}:{number}: {folder}/ includes <{name}>, not of the standard library"


if __name__ == "__main__":
    found = list(faults(pathlib.Path(sys.argv[1])))
    print("\n".join(found) or "the boundaries hold")
    sys.exit(1 if found else 0)
