#!/usr/bin/env python3
"""Holds golden files to a size that people still read when they change.

Usage: check_golden.py SOURCE_DIR
"""
import pathlib
import sys

MOST_LINES_OF_A_FILE = 500
MOST_LINES = 6000


def faults(folder):
    lines = {path: path.read_bytes().count(b"\n") for path in folder.rglob("*") if path.is_file()}
    for path, count in sorted(lines.items()):
        if count > MOST_LINES_OF_A_FILE:
            yield f"{path}: {count} lines, more than {MOST_LINES_OF_A_FILE}"
    if sum(lines.values()) > MOST_LINES:
        yield f"{folder}: {sum(lines.values())} lines, more than {MOST_LINES}"


if __name__ == "__main__":
    found = list(faults(pathlib.Path(sys.argv[1]) / "tests" / "golden"))
    print("\n".join(found) or "golden files are of a size to read")
    sys.exit(1 if found else 0)
