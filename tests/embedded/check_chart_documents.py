"""Holds templates and chart documents to the schema.

Usage: check_chart_documents.py SOURCE_DIR HIERFIT

Checks the templates; then every text that becomes a chart document in a run over the examples, what
the editor gave, and the chart documents of the reports.
"""
import json
import pathlib
import subprocess
import sys
import tempfile

CALLS = {
    "XDocument::XDocument": lambda line: line["args"][0],
    "XDocument::AsUTF8": lambda line: line["result"],
    "GlyphEditor::EmbedHistogramInGraph": lambda line: line["result"],
}


def charts(items):
    for item in items:
        if item["kind"] == "section":
            yield from charts(item["items"])
        elif item["kind"] == "chart":
            yield item


def documents(command, example, folder):
    """Runs an example; gives each chart document with a name."""
    journal, report = folder / "journal", folder / "report.json"
    dictionary = example / "dictionary.json"
    options = ["-d", dictionary] if dictionary.exists() else []
    subprocess.run(
        [command, "-q", *options, "--journal", journal, "-o", report]
        + [example / "model.pmml", example / "result.xml"], check=True)
    with open(journal, encoding="utf-8") as lines:
        for number, line in enumerate(map(json.loads, lines), 1):
            if line["call"] in CALLS:
                yield f"{example.name}, journal line {number}", CALLS[line["call"]](line)
    for chart in charts(json.loads(report.read_text(encoding="utf-8"))["content"]):
        yield f"{example.name}, {chart['subtype']} as sent", chart["document"]


def main(source, command, folder):
    files, names = [], {}
    for template in sorted((source / "templates").glob("GLMM*")):
        files.append(template)
    for example in sorted((source / "examples").iterdir()):
        if not (example / "model.pmml").exists():
            continue
        found = list(documents(command, example, folder))
        if not found:
            return f"{example.name} has no chart"
        for name, text in found:
            if name.endswith("as sent") and "<values>" in text:
                return f"{name}: values are left in the document"
            files.append(folder / f"{len(files)}.xml")
            files[-1].write_text(text, encoding="utf-8")
            names[str(files[-1])] = name
    check = subprocess.run(
        ["xmllint", "--noout", "--relaxng", source / "docs/chart.rng", *files],
        capture_output=True, text=True)
    print(len(files), "documents")
    faults = [line for line in check.stderr.splitlines() if not line.endswith(" validates")]
    for name, described in names.items():
        faults = [line.replace(name, described) for line in faults]
    return "\n".join(faults) if check.returncode else None


if __name__ == "__main__":
    with tempfile.TemporaryDirectory() as temporary:
        sys.exit(main(pathlib.Path(sys.argv[1]), sys.argv[2], pathlib.Path(temporary)))
