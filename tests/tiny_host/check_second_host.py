#!/usr/bin/env python3
"""Runs the module on the tiny host and on the embedded one: both must have been asked the same.

Usage: check_second_host.py TINY_HOST_RUN MODULE HIERFIT EXAMPLE...
An example is a folder with model.pmml and result.xml, or a result beside its model.pmml.
"""
import collections
import json
import pathlib
import subprocess
import sys
import tempfile

run, module, hierfit, *examples = sys.argv[1:]


def calls_of_tiny_host(documents):
    """The pivot calls in their order, and how often each operation was called."""
    done = subprocess.run([run, module, *documents], check=True, stdout=subprocess.PIPE,
                          text=True)
    pivot, counts = done.stdout.rsplit("\n\n", 1)
    numbers = (line.split() for line in counts.splitlines())
    return ([line.split()[0] for line in pivot.splitlines()],
            {operation: int(number) for number, operation in numbers})


def calls_of_embedded_host(documents):
    with tempfile.TemporaryDirectory() as directory:
        journal = pathlib.Path(directory, "journal")
        subprocess.run([hierfit, *documents, "--format", "json", "--journal", journal], check=True,
                       stdout=subprocess.DEVNULL)
        lines = [json.loads(line) for line in journal.read_text().splitlines()]
    pivot = [line["call"] for line in lines
             if line["call"].startswith("Bp") or line.get("on", "").startswith("Bp")]
    return pivot, dict(collections.Counter(line["call"] for line in lines))


def faults(example):
    result = pathlib.Path(example)
    if result.is_dir():
        result = result / "result.xml"
    documents = [result.with_name("model.pmml"), result]
    tiny_order, tiny = calls_of_tiny_host(documents)
    embedded_order, embedded = calls_of_embedded_host(documents)
    for operation in sorted(tiny.keys() | embedded.keys()):
        numbers = tiny.get(operation, 0), embedded.get(operation, 0)
        if numbers[0] != numbers[1]:
            yield "%s: %s: %d calls of the tiny host, %d of the embedded one" % (
                example, operation, *numbers)
    if tiny_order != embedded_order:
        yield f"{example}: the order of the pivot calls differs"
    for operation in ("BpCategory::Cell", "XDocument::SendChart"):
        if operation not in tiny:
            yield f"{example}: {operation} was never called"
    print(f"{example}: {sum(tiny.values())} calls of {len(tiny)} operations")


found = [fault for example in examples for fault in faults(example)]
print("\n".join(found) or "both hosts were asked the same")
sys.exit(1 if found else 0)
