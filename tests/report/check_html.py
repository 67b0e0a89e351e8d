"""Checks a report page for what its form promises: check_html.py PAGE"""
import base64
import hashlib
import sys
from html.parser import HTMLParser

VOID = {"meta", "br", "col", "link", "img", "input", "hr", "wbr"}


class Page(HTMLParser):
    """Collects what the checks need, and complains about tags that do not nest."""

    def __init__(self):
        super().__init__()
        self.faults, self.open, self.ids, self.links, self.references = [], [], [], [], []
        self.policy, self.embedded, self.headings, self.tables = "", {}, [], []

    def handle_starttag(self, tag, attrs):
        values = dict(attrs)
        if tag not in VOID:
            self.open.append(tag)
        for name in values:
            if name == "style" or name.startswith("on") or name == "src":
                self.faults.append(f"<{tag}> has the attribute {name}")
        if "id" in values:
            self.ids.append(values["id"])
        if tag == "a":
            self.links.append(values["href"])
        self.references += values.get("headers", "").split() + values.get("aria-labelledby", "").split()
        if tag == "meta" and values.get("http-equiv") == "Content-Security-Policy":
            self.policy = values["content"]
        if tag[0] == "h" and tag[1:].isdigit():
            self.headings.append(int(tag[1:]))
        if tag == "th" and "scope" not in values:
            self.faults.append("a th without scope")
        self.lay_out(tag, values)

    def lay_out(self, tag, values):
        """Counts the columns of each row, with what cells of earlier rows reach down into it."""
        if tag == "table":
            self.tables.append({"row": -1, "widths": {}})
        if tag == "tr":
            self.tables[-1]["row"] += 1
        if tag in ("td", "th"):
            table = self.tables[-1]
            for row in range(table["row"], table["row"] + int(values.get("rowspan", 1))):
                width = table["widths"].get(row, 0) + int(values.get("colspan", 1))
                table["widths"][row] = width

    def handle_endtag(self, tag):
        if not self.open or self.open.pop() != tag:
            self.faults.append(f"</{tag}> closes nothing")

    def handle_data(self, data):
        if self.open and self.open[-1] in ("style", "script"):
            self.embedded.setdefault(self.open[-1], []).append(data)


def faults(text):
    page = Page()
    page.feed(text)
    yield from page.faults
    if page.open:
        yield f"left open: {page.open}"
    for kind in ("style", "script"):
        for content in page.embedded[kind]:
            digest = base64.b64encode(hashlib.sha256(content.encode()).digest()).decode()
            if f"{kind}-src 'sha256-{digest}'" not in page.policy:
                yield f"the policy does not let the {kind} through"
        if len(page.embedded[kind]) != 1:
            yield f"more than one {kind}"
    for number, table in enumerate(page.tables, 1):
        if len(set(table["widths"].values())) > 1:
            yield f"table {number} has rows of unequal width: {table['widths']}"
    if len(set(page.ids)) != len(page.ids):
        yield "an id stands twice"
    known = set(page.ids)
    for link in page.links:
        if not link.startswith("#") or link[1:] not in known:
            yield f"a link to {link}"
    for reference in page.references:
        if reference not in known:
            yield f"a reference to {reference}"
    if page.headings.count(1) != 1 or any(b > a + 1 for a, b in zip(page.headings, page.headings[1:])):
        yield f"headings out of order: {page.headings}"


def main():
    with open(sys.argv[1], encoding="utf-8", newline="") as file:
        found = list(faults(file.read()))
    print("\n".join(found))
    return 1 if found else 0


sys.exit(main())
