"""The report of a fit, in a terminal, in a notebook, in files and as a frame."""

from __future__ import annotations

import contextlib
import copy
import hashlib
import itertools
import json
import os
import warnings
from dataclasses import dataclass, replace
from typing import TYPE_CHECKING, Any, Dict, Iterator, List, Mapping, Optional, Sequence, Tuple

from . import command
from .errors import CommandMissing, HierfitWarning

if TYPE_CHECKING:
    import pandas as pd

_displays = itertools.count(1)


@dataclass(frozen=True)
class Look:
    """How a report is shown.

    Attributes
    ----------
    style : str, optional
        The house style: "default", "apa", "jama" or "lancet".
    language : str, optional
        The tag of its language; that of the surroundings when it is not told.
    tables : tuple of str
        The kinds of table and figure that are shown, as `Report.cells` names tables; all when it is
        empty.
    """

    style: Optional[str] = None
    language: Optional[str] = None
    tables: Tuple[str, ...] = ()

    def arguments(self) -> List[str]:
        arguments = []
        if self.style:
            arguments.append(f"--style={self.style}")
        if self.language:
            arguments.append(f"--language={self.language}")
        if self.tables:
            arguments.append(f"--tables={','.join(self.tables)}")
        return arguments


class Report:
    """The report of a fit document.

    Nothing is written before `save` or `documents`; what is shown is made in memory.

    Parameters
    ----------
    document : mapping
        A fit document, as docs/fit.md tells.
    look : Look, optional

    Attributes
    ----------
    document : dict
        The fit document.
    """

    def __init__(self, document: Mapping[str, Any], look: Optional[Look] = None) -> None:
        self.document: Dict[str, Any] = copy.deepcopy(dict(document))
        self._look = look or Look()
        self._text: Optional[str] = None

    @property
    def notes(self) -> List[str]:
        """What readers of the fit should know, a sentence each."""
        return list(self.document.get("engine", {}).get("notes", []))

    def json(self) -> str:
        """The fit document as text."""
        return json.dumps(self.document, ensure_ascii=False, allow_nan=False)

    def show(
        self,
        *,
        style: Optional[str] = None,
        language: Optional[str] = None,
        tables: Sequence[str] = (),
    ) -> "Report":
        """The same report in another look.

        Parameters
        ----------
        style : {"default", "apa", "jama", "lancet"}, optional
        language : str, optional
            "de", "en", "es", "fr", "ja", "pt" or "zh-Hans".
        tables : list of str
            Only these kinds of table and figure, as `cells` names tables: "FixedCoefficients", ...

        Returns
        -------
        Report
        """
        look = replace(
            self._look,
            style=style or self._look.style,
            language=language or self._look.language,
            tables=tuple(tables) or self._look.tables,
        )
        return Report(self.document, look)

    def render(self, form: str, *arguments: str) -> bytes:
        """The report in a form of the command: "html", "text", "json", "markdown", "latex", ...

        Raises
        ------
        CommandMissing, CommandFailed
        """
        return command.run(
            ["-", f"--format={form}", "--output=-", *self._look.arguments(), *arguments],
            self.json(),
        )

    def text(self, width: Optional[int] = None) -> str:
        """The text form, as wide as the terminal or as many columns as are given."""
        if width is not None:
            return self.render("text", f"--width={width}").decode()
        if self._text is None:
            columns = os.environ.get("COLUMNS")
            self._text = self.render("text", *([f"--width={columns}"] if columns else [])).decode()
        return self._text

    def save(
        self, *files: command.Pathlike, style: Optional[str] = None, language: Optional[str] = None
    ) -> None:
        """Writes the report; the ending of each file picks its form.

        Parameters
        ----------
        *files : path
            For example "report.html", "paper.docx", "tables.xlsx".
        style, language : str, optional
            As in `show`.

        Raises
        ------
        CommandMissing, CommandFailed
        """
        look = self.show(style=style, language=language)._look
        outputs = [f"--output={os.fspath(file)}" for file in files]
        if not outputs:
            raise TypeError("save wants the name of a file, or more.")
        command.run(["-", *outputs, *look.arguments()], self.json())

    def documents(self, folder: command.Pathlike, data: bool = False) -> List[str]:
        """Writes the model document, the result document and the fit document.

        Parameters
        ----------
        folder : path
            Made when it is not there.
        data : bool
            Whether the fit document holds the records of the target and of the subjects, which
            charts of records need. The other two have bins, counts and pairs of them, and the
            first ten of the first subject.

        Returns
        -------
        list of str
            The files.
        """
        place = os.fspath(folder)
        os.makedirs(place, exist_ok=True)
        command.run(["import", f"--output={place}", "-"], self.json())
        document = self.document
        if not data:
            document = {key: value for key, value in document.items() if key != "data"}
        with open(os.path.join(place, "fit.json"), "w", encoding="utf-8") as file:
            json.dump(document, file, ensure_ascii=False, allow_nan=False)
            file.write("\n")
        return sorted(os.path.join(place, name) for name in os.listdir(place)
                      if name in ("model.pmml", "result.xml", "dictionary.json", "fit.json"))

    def cells(self) -> "pd.DataFrame":
        """Every cell of every table.

        Returns
        -------
        DataFrame
            table : the kind of table, never translated; number : which of the report's tables it
            is; title; row, column : the labels that the cell stands at, joined by " / "; value :
            the exact number, missing for a text; shown : what the report shows; notes : the notes
            of the cell.
        """
        import pandas as pd

        rows = [
            cell
            for number, table in enumerate(_tables(json.loads(self.render("json"))["content"]), 1)
            for cell in _cells(table, number)
        ]
        columns = ["table", "number", "title", "row", "column", "value", "shown", "notes"]
        return pd.DataFrame(rows, columns=columns)

    def __str__(self) -> str:
        return self.text()

    def __repr__(self) -> str:
        try:
            with _without_warnings():
                return self.text()
        except CommandMissing as reason:
            return str(reason)

    def _repr_html_(self) -> Optional[str]:
        return self._shown("html", "--fragment", f"--id-prefix={self._prefix()}")

    def _repr_markdown_(self) -> Optional[str]:
        return self._shown("markdown")

    def _repr_latex_(self) -> Optional[str]:
        return self._shown("latex", "--fragment")

    def _shown(self, form: str, *arguments: str) -> Optional[str]:
        """The report in a form for notebooks, which ask for several; None without the command."""
        try:
            with _without_warnings():
                return self.render(form, *arguments).decode()
        except CommandMissing:
            return None

    def _prefix(self) -> str:
        """What the ids of a page start with: the same in each run, and another one each time that
        a page shows the report."""
        digest = hashlib.sha256(self.json().encode()).hexdigest()[:8]
        return f"h{digest}-{next(_displays)}-"


@contextlib.contextmanager
def _without_warnings() -> Iterator[None]:
    """Where a report is shown, it says itself what speaks against it."""
    with warnings.catch_warnings():
        warnings.simplefilter("ignore", HierfitWarning)
        yield


def _tables(items: List[Dict[str, Any]]) -> Iterator[Dict[str, Any]]:
    for item in items:
        if item["kind"] == "table":
            yield item
        elif item["kind"] == "section":
            yield from _tables(item["items"])


def _shown(text: Any) -> str:
    if isinstance(text, dict):
        return str(text["shown"])
    return "" if text is None else str(text)


def _label_paths(dimension: Mapping[str, Any]) -> Dict[int, str]:
    """The labels of each category with those of its groups ahead of it."""
    nodes = dimension["nodes"]
    paths: Dict[int, str] = {}
    for node in nodes:
        if "category" not in node:
            continue
        labels = [_shown(node["label"])]
        at = node
        while "parent" in at:
            at = nodes[at["parent"]]
            labels.insert(0, _shown(at["label"]))
        paths[node["category"]] = " / ".join(labels)
    return paths


def _cells(table: Mapping[str, Any], number: int) -> Iterator[Dict[str, Any]]:
    """The cells of a table, each with the labels of the outermost dimension first."""
    dimensions = table["dimensions"]
    paths = [_label_paths(dimension) for dimension in dimensions]
    places: Dict[str, List[int]] = {
        place: sorted((at for at, dimension in enumerate(dimensions)
                       if dimension["place"] == place),
                      key=lambda at: -dimensions[at]["level"])
        for place in ("rows", "columns")
    }
    notes = [_shown(note) for note in table["notes"]]
    for cell in table["cells"]:
        labels = {
            place: " / ".join(paths[at][cell["at"][at]] for at in order
                              if cell["at"][at] is not None)
            for place, order in places.items()
        }
        value = cell.get("value")
        yield {
            "table": table["subtype"],
            "number": number,
            "title": _shown(table["title"]),
            "row": labels["rows"],
            "column": labels["columns"],
            "value": float("nan") if value is None else float(value),
            "shown": cell["shown"] if "shown" in cell else _shown(cell["text"]),
            "notes": " ".join(notes[note] for note in cell.get("notes", [])),
        }
