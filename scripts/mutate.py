#!/usr/bin/env python3
"""Changes one line at a time and asks the tests whether they notice.

Usage: mutate.py FOLDER [--mutants 40] [--seed 1] [--build build]

Works in a source tree that is as committed and already configured with tests. Each mutant is one
line of a source of FOLDER, chosen by chance and changed by a rule of RULES; it is built, the unit
tests run, and when those pass, all other tests. What nobody noticed is printed with its change;
a mutant that does not compile is replaced by another one.
"""
import argparse
import pathlib
import random
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
SECONDS = 900
# Tests that ran already, or that sweep over faults for minutes.
SLOW = "^(unit|faults|host_faults)$"

# What is changed into what; a rule holds for each place that it matches.
RULES = [
    (r" == ", " != "), (r" != ", " == "), (r" < ", " <= "), (r" <= ", " < "), (r" > ", " >= "),
    (r" >= ", " > "), (r" && ", " || "), (r" \|\| ", " && "), (r" \+ ", " - "), (r" - ", " + "),
    (r" \+= ", " -= "), (r" \* ", " / "), (r" / ", " * "), (r"\btrue\b", "false"),
    (r"\bfalse\b", "true"), (r"\bstd::min\b", "std::max"), (r"\bstd::max\b", "std::min"),
    (r"if \(!", "if ("), (r"if \((?!!|const|auto)", "if (!("), (r"\b0\b", "1"), (r"\b1\b", "0"),
    (r"\b2\b", "3"), (r"\breturn (\w+);", "return {};"), (r"^(\s+)[\w.>:-]+\(.*\);$", r"\1;"),
    (r"^(\s+)\w+_ \+= .*;$", r"\1;"), (r"\bbegin\b", "end"), (r"\bfirst\b", "second"),
    (r"\.empty\(\)", ".size()"), (r"\bbreak;", "continue;"), (r"\+\+(\w+)", r"--\1"),
]
NO_CODE = re.compile(r"^\s*(//|#|\*|using |namespace |static_assert|case |default:|public:|private:|$)")


def candidates(folder):
    for path in sorted((ROOT / folder).rglob("*.cpp")):
        for number, line in enumerate(path.read_text(encoding="utf-8").split("\n")):
            if NO_CODE.match(line) or '"' in line and "(" not in line:
                continue
            for pattern, replacement in RULES:
                for match in re.finditer(pattern, line):
                    yield path, number, line, match, replacement


def changed(line, match, replacement):
    new = line[: match.start()] + match.expand(replacement) + line[match.end():]
    if replacement == "if (!(":  # close what was opened
        depth, place = 0, new.find("if (!(") + 5
        for place in range(place, len(new)):
            depth += {"(": 1, ")": -1}.get(new[place], 0)
            if depth < 0 or depth == 0 and new[place] == ")":
                break
        new = new[:place] + ")" + new[place:]
    return new


def passes(command):
    try:
        return subprocess.run(command, cwd=ROOT, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL, timeout=SECONDS).returncode == 0
    except subprocess.TimeoutExpired:
        return False


def fate(build):
    """None for a mutant that does not compile, else who noticed it; "" for nobody."""
    if not passes(["cmake", "--build", build, "--target", "hierfit_tests"]):
        return None
    if not passes([f"{build}/bin/hierfit_tests", "-sfe=*robustness*,*tests/app/*"]):
        return "unit"
    if not passes(["cmake", "--build", build]) or not passes(["ctest", "--test-dir", build, "-E", SLOW]):
        return "others"
    return ""


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("folder")
    parser.add_argument("--mutants", type=int, default=40)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--build", default="build")
    wanted = parser.parse_args()
    places = list(candidates(wanted.folder))
    random.Random(wanted.seed).shuffle(places)
    seen, tried = set(), []
    for path, number, line, match, replacement in places:
        if len(tried) == wanted.mutants:
            break
        new = changed(line, match, replacement)
        if (path, number) in seen or new == line:
            continue
        seen.add((path, number))
        old_text = path.read_text(encoding="utf-8")
        lines = old_text.split("\n")
        lines[number] = new
        try:
            path.write_text("\n".join(lines), encoding="utf-8")
            by = fate(wanted.build)
        finally:
            path.write_text(old_text, encoding="utf-8")
        if by is None:
            continue
        tried.append(by)
        place = f"{path.relative_to(ROOT)}:{number + 1}"
        print(f"{len(tried):3} {by or 'NOBODY':7} {place}\n      - {line.strip()}\n      + {new.strip()}",
              flush=True)
    caught = sum(by != "" for by in tried)
    print(f"{caught} of {len(tried)} noticed")
    return 0 if tried else 2


if __name__ == "__main__":
    sys.exit(main())
