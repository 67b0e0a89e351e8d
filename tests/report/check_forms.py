"""Reads reports of several forms back and holds them against the JSON form.

check_forms.py HIERFIT SOURCES FORM...: SOURCES is the root of the sources, whose examples and test
documents are rendered. A reader gives what each table of a form holds, by the number of the table.
Office documents are also printed by an office program, and read as pages.
"""
import collections
import csv
import decimal
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unicodedata
import zipfile

CAPTION = re.compile(r"^\s*Table (\d+)( \(continued\))?\s*$")


class Found:
    """What a form holds of a table: numbers as doubles, where the form has them, and its text."""

    def __init__(self, digits=16, whole=True):
        self.values, self.text = None, []
        self.digits = digits  # of the numbers; workbooks keep sixteen
        self.whole = whole  # with what belongs to no cell: titles of dimensions, notes, caption


def plain(text):
    """One kind of minus and of letters, and no marks of pages and joints."""
    text = unicodedata.normalize("NFKC", str(text).replace("\u2212", "-"))
    return text.replace("\u200b", "").replace("\x0c", " ")


# Readers: a file to {number of a table: Found}; what stands ahead of the first table is number 0.


def read_xlsx(path):
    import openpyxl
    book = openpyxl.load_workbook(path)
    tables = {0: Found()}
    tables[0].text = [str(cell.value) for row in book.worksheets[0].iter_rows() for cell in row]
    for sheet in book.worksheets[1:]:
        caption = CAPTION.match(str(sheet["A1"].value))
        if not caption:
            continue
        found = tables.setdefault(int(caption[1]), Found())
        found.values = found.values or []
        for row in sheet.iter_rows():
            for cell in row:
                if cell.data_type == "f":
                    raise AssertionError(f"{sheet.title}!{cell.coordinate} is a formula")
                if cell.data_type == "n" and cell.value is not None:
                    found.values.append(float(cell.value))
                elif cell.value is not None:
                    found.text.append(str(cell.value))
    return tables


def lost_chart_data(path, reference):
    """The numbers of labelled variables that are not on the sheet of their chart."""
    import openpyxl
    book = openpyxl.load_workbook(path)
    sheets = [sheet for sheet in book.worksheets[1:] if not CAPTION.match(str(sheet["A1"].value))]
    for sheet, chart in zip(sheets, charts_of(reference["content"]), strict=True):
        have = {cell.value for row in sheet.iter_rows() for cell in row if cell.data_type == "n"}
        lost = {float(f"{value:.16g}") for value in labelled_numbers(chart)} - have
        if lost:
            yield f"{path}, {sheet.title}: lost {lost}"


def labelled_numbers(chart):
    """Those of the graph itself: a histogram within it is drawn, not listed."""
    inner = "".join(re.findall(r"<embedded.*?</embedded>", chart["document"], re.S))
    for source in chart["sources"]:
        if f'<source name="{source["name"]}"' in inner:
            continue
        for variable in source["variables"]:
            if variable.get("label") and not variable.get("valueLabels"):
                yield from (value for value in variable["values"]
                            if isinstance(value, (int, float)))


def read_docx(path):
    import docx
    from docx.table import Table
    from docx.text.paragraph import Paragraph
    document = docx.Document(path)
    current = Found()
    tables = {0: current}
    for element in document.element.body:
        if element.tag.endswith("}p"):
            paragraph = Paragraph(element, document)
            text = "".join(node.text or "\n" for node in element.iter()
                           if node.tag.endswith(("}t", "}br")))
            caption = CAPTION.match(text.split("\n")[0])
            if caption:
                current = tables.setdefault(int(caption[1]), Found())
            elif paragraph.style.name not in ("Table Note", "Table End") and len(tables) > 1:
                current = None
            if current is not None:
                current.text.append(text)
        elif element.tag.endswith("}tbl"):
            read_cells(Table(element, document), current)
    return tables


def read_cells(table, found):
    widths = {sum(cell.grid_span for cell in line._tr.tc_lst) for line in table.rows}
    if len(widths) != 1:
        raise AssertionError(f"a table has rows of unequal width: {widths}")
    for cell in table._tbl.iter_tcs():
        runs = [(run, "".join(node.text or "" for node in run.iter() if node.tag.endswith("}t")))
                for run in cell.iter() if run.tag.endswith("}r")]
        raised = "".join(text for run, text in runs if run.xpath(".//w:vertAlign"))
        text = "".join(text for run, text in runs if not run.xpath(".//w:vertAlign"))
        found.text += [text, raised]


def read_pdf(path):
    text = subprocess.run(["pdftotext", "-layout", path, "-"], check=True, capture_output=True,
                          text=True).stdout
    current = Found()
    tables = {0: current}
    for line in text.replace("\x0c", "\n").split("\n"):
        caption = CAPTION.match(line)
        if caption:
            current = tables.setdefault(int(caption[1]), Found())
        elif re.match(r"^\s*Figure \d+\s*$", line):
            current = None
        if current is not None:
            current.text.append(line)
    return tables


def read_csv(path):
    tables = {}
    with open(path, encoding="utf-8", newline="") as file:
        for line in csv.DictReader(file):
            found = tables.setdefault(int(line["table"]), Found(digits=17, whole=False))
            found.values = found.values or []
            if line["value"]:
                found.values.append(float(line["value"]))
            found.text += [line[column].removeprefix("'")
                           for column in ("title", "row", "column", "shown")]
    return tables


def read_markdown(path):
    """As pandoc reads it."""
    parsed = subprocess.run(["pandoc", "--from=markdown", "--to=json", path], check=True,
                            capture_output=True).stdout
    current = Found()
    tables = {0: current}
    for block in json.loads(parsed)["blocks"]:
        words = "\n".join(pandoc_cells(block))
        caption = CAPTION.match(words.split("\n")[0])
        if caption:
            current = tables.setdefault(int(caption[1]), Found())
        elif len(tables) > 1 and (block["t"] == "Header" or re.match(r"Figure \d+", words)):
            current = None
        if current is not None:
            current.text += words.split("\n")
    return tables


def pandoc_cells(node):
    """The text of each cell, or of a paragraph; raised letters by themselves."""
    if isinstance(node, dict) and node.get("t") in ("Plain", "Para", "Header"):
        inlines = node["c"][2] if node["t"] == "Header" else node["c"]
        text = "".join({"Str": lambda part: part["c"], "LineBreak": lambda part: "\n"}.get(
            part["t"], lambda part: " ")(part) for part in pandoc_inlines(inlines))
        yield re.sub("([\u1d43-\u1dbf\u02b0-\u02e3\u2071\u207f\u02d2]+)", r" \1 ", text)
    elif isinstance(node, (dict, list)):
        for part in node.values() if isinstance(node, dict) else node:
            yield from pandoc_cells(part)


def pandoc_inlines(parts):
    for part in parts:
        yield from pandoc_inlines(part["c"]) if part["t"] in ("Emph", "Strong") else [part]


# What LaTeX writes for what a reader sees, in the order in which it is replaced.
GROUP = r"\{((?:[^{}]|\{[^{}]*\})*)\}"
LATEX = [
    (r"\\tabletitle\{\d+\}", ""),
    (r"\\multicolumn\{\d+\}\{(?:@\{\})?>\{[^{}]*\}p\{[^{}]*\}\}", ""),
    (r"\\textsuperscript\{[a-z,]*\}", " "),
    (r"\\(?:lead|trail)" + GROUP + GROUP, r"\2"),
    (r"\\rlap\{\s*\}", ""),
    (r"\$([<>-])\$", r"\1"),
    (r"\$\\leq\$", "\u2264"),
    (r"\\newline\s|\\hspace\*\{\d+em\}", "\n"),
    (r"\{\\textquotedbl\}", '"'),
    (r"\{\\textbar\}", "|"),
    (r"\{\\textasciicircum\}", "^"),
    (r"\{\\textasciitilde\}", "~"),
    (r"\\text(?:bf|it)\{([^{}]*)\}", r"\1"),
    (r"\{([\[\]])\}", r"\1"),
    (r"\{\}", ""),
    (r"\\([#$%&_{}])", r"\1"),
]
# Where a cell, a note or something else ends.
LATEX_END = r"(?<!\\)&|\n\n|\\\\\*?(?:\[\w+\])?\n|\\par\n|\\(?:begin|end)\{\w+\}"


def read_latex(path):
    text = pathlib.Path(path).read_text(encoding="utf-8").split("\\begin{document}")[1]
    current = Found()
    tables = {0: current}
    # Heads stand twice, for the first page and for the others.
    text = re.sub(r"(?s)\\endfirsthead.*?\\endlastfoot", "", text)
    text = re.sub(r"\{\\small\n\\begin\{longtable\}\{(?:>\{[^{}]*\}p\{[^{}]*\})*\}", "", text)
    for cell in re.split(LATEX_END, text):
        for pattern, replacement in LATEX:
            cell = re.sub(pattern, replacement, cell)
        caption = re.match(r"\W*Table (\d+)", cell)
        if caption:
            current = tables.setdefault(int(caption[1]), Found())
        elif re.match(r"\W*Figure \d+", cell):
            current = None
        if current is not None:
            current.text.append(cell)
    return tables


READERS = {"xlsx": read_xlsx, "docx": read_docx, "pdf": read_pdf, "csv": read_csv,
           "md": read_markdown, "tex": read_latex}

# All that a form shows, for what stands in no table.


def all_of_xlsx(path):
    import openpyxl
    return [str(cell.value) for sheet in openpyxl.load_workbook(path).worksheets
            for row in sheet.iter_rows() for cell in row if cell.value is not None]


def all_of_docx(path):
    import docx
    return [node.text or "" for node in docx.Document(path).element.iter()
            if node.tag.endswith("}t")]


def all_of_pdf(path):
    return [subprocess.run(["pdftotext", path, "-"], check=True, capture_output=True,
                           text=True).stdout]


def all_of_markdown(path):
    return [subprocess.run(["pandoc", "--from=markdown", "--to=plain", "--wrap=none", path],
                           check=True, capture_output=True, text=True).stdout]


def all_of_latex(path):
    text = pathlib.Path(path).read_text(encoding="utf-8")
    for pattern, replacement in LATEX:
        text = re.sub(pattern, replacement, text)
    return [text]


ALL = {"xlsx": all_of_xlsx, "docx": all_of_docx, "pdf": all_of_pdf, "md": all_of_markdown,
       "tex": all_of_latex}


def described_pictures(path):
    """How many pictures of an office document have an alternative text."""
    with zipfile.ZipFile(path) as archive:
        parts = [name for name in archive.namelist()
                 if re.search(r"drawings/[^/]*\.xml$|word/document\.xml$", name)]
        drawn = "".join(archive.read(name).decode() for name in parts)
    return len(re.findall(r'<(?:xdr:cNvPr|wp:docPr) [^>]*descr="[^"]{20,}"', drawn))


# Forms that an office program turns into pages, which then are read as such.
OFFICE_FORMS = ("xlsx", "docx")


# The reference.


def tables_of(content):
    for part in content:
        if part["kind"] == "table":
            yield part
        yield from tables_of(part.get("items", []))


def shown(text):
    return text["shown"] if isinstance(text, dict) else text


def texts_of(table, whole):
    """All that has to be read somewhere: labels that cells stand at, cells, notes and caption."""
    yield shown(table["title"])
    for place, dimension in enumerate(table["dimensions"]):
        if not dimension["labelsShown"]:
            continue
        if dimension["titleShown"] and whole:
            yield shown(dimension["title"])
        yield from labels_of(dimension, {cell["at"][place] for cell in table["cells"]})
    yield from (shown(cell["text"]) for cell in table["cells"] if "text" in cell)
    if not whole:
        return
    yield from map(shown, table["notes"])
    if table.get("caption"):
        yield shown(table["caption"])


def labels_of(dimension, categories):
    nodes = dimension["nodes"]
    for node in nodes:
        if node.get("category") in categories and "category" in node:
            while node is not None:
                yield shown(node["label"])
                node = nodes[node["parent"]] if node.get("parent") is not None else None


def charts_of(content):
    for part in content:
        if part["kind"] == "chart":
            yield part
        yield from charts_of(part.get("items", []))


def other_texts(content):
    """Headings, messages and titles of charts."""
    for part in content:
        if part["kind"] == "message":
            yield shown(part["text"])
        elif part["kind"] != "table" and part.get("title"):
            yield shown(part["title"])
        yield from other_texts(part.get("items", []))


def is_number(cell):
    return cell.get("value") is not None


def as_spreadsheets_show(cell):
    """They round the decimal digits, halves away from zero."""
    text = plain(cell["shown"])
    if not re.fullmatch(r"-?\d+(\.\d+)?", text):
        return text
    unit = decimal.Decimal(1).scaleb(-len(text.partition(".")[2]))
    value = decimal.Decimal(repr(cell["value"])).quantize(unit, decimal.ROUND_HALF_UP)
    return f"{value:f}"


def faults_of(table, found, shown_as, most=None):
    numbers = [cell for cell in table["cells"] if is_number(cell)]
    if found.values is not None:
        lost = collections.Counter(float(f"{cell['value']:.{found.digits}g}") for cell in numbers)
        lost -= collections.Counter(found.values)
    else:
        have = collections.Counter(re.sub(r"(?<=[\d%])[a-z,]+$", "", word)
                                   for text in found.text for word in plain(text).split())
        lost = collections.Counter(map(shown_as, numbers)) - have
    if lost:
        yield f"lost the numbers {dict(lost)}"
    yield from lost_texts(texts_of(table, found.whole), found.text, most)


def lost_texts(texts, found, most=None):
    joined = re.sub(r"\s+", "", "".join(map(plain, found)))
    for text in texts:
        # A longer word is divided, also behind a sign, with parts of other cells in between.
        if not all(part in joined for word in plain(text)[:most].split()
                   for part in re.split(r"(?<=[-*])", word[:20])):
            yield f"lost the text {text[:200]!r}"


def about_of(reference):
    """What a report says ahead of its tables."""
    yield reference["title"]
    for fact in reference["about"]["facts"].values():
        yield shown(fact["label"])
        yield from map(shown, fact["values"])
    yield from (shown(message["text"]) for message in reference["about"]["messages"])


def check(name, reference, tables, shown_as=lambda cell: plain(cell["shown"]), most=None):
    expected = list(tables_of(reference["content"]))
    opening = tables.pop(0, None)
    joined = re.sub(r"\s+", "", "".join(map(plain, opening.text))) if opening else None
    for text in about_of(reference):
        if opening and not all(word[:20] in joined for word in plain(text).split()):
            yield f"{name} lost the text {text!r} about the result"
    if len(tables) != len(expected):
        yield f"{name} has {len(tables)} tables of {len(expected)}"
    for number, table in enumerate(expected, 1):
        for fault in faults_of(table, tables.get(number, Found()), shown_as, most):
            yield f"{name}, table {number}: {fault}"


# The run.


def pairs(sources):
    for example in sorted((sources / "examples").iterdir()):
        if example.is_dir():
            yield example.name, example / "model.pmml", example / "result.xml"
    documents = sources / "tests" / "documents"
    for result in sorted(documents.glob("*.xml")):
        yield result.stem, documents / "model.pmml", result


def long_pairs(sources, folder):
    """Documents whose labels are as long as a page, or have no blank to break at."""
    documents = sources / "tests" / "documents"
    words = " ".join(f"word{number}" for number in range(700))
    model = (documents / "model.pmml").read_text(encoding="utf-8")
    for label, text in (("Hits on target", words), ("Site", "unbroken" * 80),
                        ("North", words[:3000]), ("Female", "&lt;&amp;" * 200)):
        model = model.replace(f'displayName="{label}"', f'displayName="{text}"')
        model = model.replace(f'displayValue="{label}"', f'displayValue="{text}"')
    changed = pathlib.Path(folder, "long.pmml")
    changed.write_text(model, encoding="utf-8")
    for name in ("events", "grouped"):
        yield "long_" + name, changed, documents / f"{name}.xml"


def faults_of_long_documents(hierfit, sources, folder, forms):
    """Their tables are wide, so that columns of text stand beside titles: forms are read whole."""
    for name, model, result in long_pairs(sources, folder):
        base = os.path.join(folder, name)
        render(hierfit, model, result, [f"{base}.{form}" for form in ["json", *forms]])
        with open(base + ".json", encoding="utf-8") as file:
            content = json.load(file)["content"]
        texts = [text for table in tables_of(content) for text in texts_of(table, True)]
        texts += other_texts(content)
        for form in (form for form in forms if form in ALL):
            for fault in lost_texts(texts, ALL[form](f"{base}.{form}")):
                yield f"{name}.{form}: {fault}"


def render(hierfit, model, result, outputs):
    command = [hierfit, str(model), str(result)]
    subprocess.run(command + [f"--output={path}" for path in outputs], check=True,
                   env={**os.environ, "LC_ALL": "C"})


def pages_of(files, folder):
    """The files as an office program prints them."""
    profile = f"-env:UserInstallation=file://{folder}/profile"
    subprocess.run(["soffice", profile, "--headless", "--convert-to", "pdf", "--outdir", folder,
                    *files], check=True, capture_output=True, timeout=300)


def main():
    hierfit, sources, forms = sys.argv[1], pathlib.Path(sys.argv[2]), sys.argv[3:]
    faults = []
    with tempfile.TemporaryDirectory() as folder:
        references = {}
        for name, model, result in pairs(sources):
            base = os.path.join(folder, name)
            render(hierfit, model, result, [f"{base}.{form}" for form in ["json", *forms]])
            with open(base + ".json", encoding="utf-8") as file:
                references[name] = json.load(file)
            for form in forms:
                faults += check(f"{name}.{form}", references[name],
                                READERS[form](f"{base}.{form}"))
                if form in ALL:
                    faults += [f"{name}.{form}: {fault}" for fault in lost_texts(
                        other_texts(references[name]["content"]), ALL[form](f"{base}.{form}"))]
                if form == "xlsx":
                    faults += lost_chart_data(f"{base}.{form}", references[name])
                if form in OFFICE_FORMS:
                    charts = len(list(charts_of(references[name]["content"])))
                    pictures = described_pictures(f"{base}.{form}")
                    if charts != pictures:
                        faults.append(f"{name}.{form} describes {pictures} charts of {charts}")
        faults += faults_of_long_documents(hierfit, sources, folder, forms)
        for form in (form for form in forms if form in OFFICE_FORMS):
            into = os.path.join(folder, "pages-" + form)
            pages_of([os.path.join(folder, f"{name}.{form}") for name in references], into)
            for name, reference in references.items():
                pages = read_pdf(os.path.join(into, name + ".pdf"))
                # A row of a spreadsheet has a greatest height.
                rounds = {"shown_as": as_spreadsheets_show, "most": 300} if form == "xlsx" else {}
                faults += check(f"{name}.{form}, printed", reference, pages, **rounds)
    print("\n".join(faults))
    return 1 if faults else 0


sys.exit(main())
