"""The design of a model that was written as a formula: the adapter to patsy."""

from __future__ import annotations

import ast
import itertools
from collections import OrderedDict
from typing import Any, Dict, Iterator, List, Mapping, Optional, Tuple

import numpy as np
import pandas as pd
from patsy import ContrastMatrix, DesignInfo, build_design_matrices
from patsy.contrasts import Sum
from patsy.design_info import SubtermInfo
from patsy.desc import Term

from .design import Column, Design, Effect, plain
from .errors import Unsupported


def _expression(code: str) -> Optional[ast.expr]:
    try:
        return ast.parse(code.strip(), mode="eval").body
    except SyntaxError:
        return None


def _called(tree: Optional[ast.expr], name: str) -> Optional[ast.expr]:
    """The first argument of a call of this function."""
    if isinstance(tree, ast.Call) and isinstance(tree.func, ast.Name) and tree.func.id == name:
        return tree.args[0] if tree.args else None
    return None


def _quoted(tree: Optional[ast.expr]) -> Optional[str]:
    inner = _called(tree, "Q")
    if isinstance(inner, ast.Constant) and isinstance(inner.value, str):
        return inner.value
    return None


def variable_of(code: str, frame: pd.DataFrame) -> Optional[str]:
    """The variable of the data that a factor of a formula stands for as it is: a of ``a``,
    ``C(a, Sum)`` and ``Q("a")``; None for anything else."""
    tree = _expression(code)
    tree = _called(tree, "C") or tree
    name = tree.id if isinstance(tree, ast.Name) else _quoted(tree)
    return name if name in frame.columns else None


def power_of(code: str, frame: pd.DataFrame) -> Optional[Tuple[str, int]]:
    """x and 2 of ``I(x**2)``."""
    tree = _called(_expression(code), "I")
    if not (isinstance(tree, ast.BinOp) and isinstance(tree.op, ast.Pow)):
        return None
    name = variable_of(ast.unparse(tree.left), frame)
    power = tree.right.value if isinstance(tree.right, ast.Constant) else None
    if name is None or not isinstance(power, int) or not 1 <= power <= 20:
        return None
    return name, power


def variables_in(code: str, frame: pd.DataFrame) -> List[str]:
    """The variables of the data that an expression mentions."""
    found: List[str] = []
    for node in ast.walk(_expression(code) or ast.Constant(None)):
        name = node.id if isinstance(node, ast.Name) else None
        name = name or (_quoted(node) if isinstance(node, ast.Call) else None)
        if name in frame.columns and name not in found:
            found.append(str(name))
    return found


def _build(info: DesignInfo, frame: pd.DataFrame) -> np.ndarray:
    return np.asarray(build_design_matrices([info], frame, NA_action="raise")[0], dtype=float)


def _single(info: DesignInfo, factor: Any, frame: pd.DataFrame) -> np.ndarray:
    """The columns of one factor alone: an indicator of each category, or its numbers."""
    about = info.factor_infos[factor]
    if about.type == "categorical":
        count = len(about.categories)
        names = [f"[{at}]" for at in range(count)]
        contrasts = {factor: ContrastMatrix(np.eye(count), names)}
    else:
        count, contrasts = about.num_columns, {}
    alone = DesignInfo(
        [f"{factor.name()}{at}" for at in range(count)],
        {factor: about},
        OrderedDict([(Term([factor]), [SubtermInfo([factor], contrasts, count)])]),
    )
    return _build(alone, frame)


def _sum_coded(info: DesignInfo) -> DesignInfo:
    """The same design with each factor coded by sums to zero; one with a column for each level
    keeps them."""
    codings: OrderedDict = OrderedDict()
    for term, subterms in info.term_codings.items():
        codings[term] = [
            SubtermInfo(
                subterm.factors,
                {
                    factor: _sums(len(info.factor_infos[factor].categories), contrast)
                    for factor, contrast in subterm.contrast_matrices.items()
                },
                subterm.num_columns,
            )
            for subterm in subterms
        ]
    return DesignInfo(info.column_names, info.factor_infos, codings)


def _sums(count: int, contrast: Any) -> Any:
    width = contrast.matrix.shape[1]
    if width == count - 1:
        return Sum().code_without_intercept(list(range(count)))
    return contrast


def _numeric_name(code: str, column: int, columns: int, frame: pd.DataFrame) -> Tuple[str, int]:
    """The name of a column of a numeric factor, and its power."""
    power = power_of(code, frame)
    if columns == 1 and power is not None:
        return power
    name = variable_of(code, frame) or code
    return (name if columns == 1 else f"{name}[{column}]"), 1


class _Reader:
    """Reads the design of a formula, factor by factor and term by term."""

    def __init__(self, info: DesignInfo, frame: pd.DataFrame) -> None:
        self.info, self.frame = info, frame
        self.names: Dict[Any, str] = {}
        self.factors: Dict[str, List[Any]] = {}
        self.codes: Dict[str, np.ndarray] = {}
        self.covariates: Dict[str, np.ndarray] = {}
        self.sources: Dict[str, List[str]] = {}
        self.effects: List[Effect] = []
        self.columns: List[Column] = []
        self.codings: Dict[str, np.ndarray] = {}
        self.uneven: set = set()
        for factor in info.factor_infos:
            self._read_factor(factor)
        for term, subterms in info.term_codings.items():
            self._read_term(term, subterms)

    def _read_factor(self, factor: Any) -> None:
        about = self.info.factor_infos[factor]
        values = _single(self.info, factor, self.frame)
        if about.type == "categorical":
            name = variable_of(factor.code, self.frame) or factor.code
            if name in self.averages():
                name = factor.code
            self.names[factor] = name
            self.factors[name] = [plain(level) for level in about.categories]
            self.codes[name] = values.argmax(axis=1)
            self.sources[name] = variables_in(factor.code, self.frame)
            return
        for column, numbers in enumerate(values.T):
            name, power = _numeric_name(factor.code, column, about.num_columns, self.frame)
            if power == 1:
                self.covariates[name] = numbers
            elif name not in self.covariates:
                self.covariates[name] = np.asarray(self.frame[name], dtype=float)

    def _read_term(self, term: Any, subterms: List[Any]) -> None:
        if not term.factors:
            self.columns.append(Column("Intercept"))
            return
        factors = [self.names[factor] for factor in term.factors if factor in self.names]
        found = [
            (subterm, places)
            for subterm in subterms
            for places in self._places(subterm)
        ]
        have_levels = all(self._levels_at(subterm, places, factors) is not None
                          for subterm, places in found)
        for subterm, places in found:
            name = self.info.column_names[len(self.columns)]
            effect = self._effect_of(term, subterm, places)
            if have_levels:
                levels = self._levels_at(subterm, places, factors)
                self.columns.append(Column(name, effect, levels))
            else:
                self._add_coded(name, effect, subterm, places)

    def _places(self, subterm: Any) -> Iterator[Dict[Any, int]]:
        """The column of each factor that the columns of a subterm are products of."""
        widths = []
        for factor in subterm.factors:
            contrast = subterm.contrast_matrices.get(factor)
            if contrast is None:
                widths.append(self.info.factor_infos[factor].num_columns)
            else:
                widths.append(contrast.matrix.shape[1])
        for place in itertools.product(*map(range, reversed(widths))):
            yield dict(zip(subterm.factors, reversed(place)))

    def _effect_of(self, term: Any, subterm: Any, places: Mapping[Any, int]) -> int:
        powers: Dict[str, int] = {}
        for factor in term.factors:
            name, power = self.names.get(factor), 1
            if name is None:
                columns = self.info.factor_infos[factor].num_columns
                name, power = _numeric_name(factor.code, places[factor], columns, self.frame)
            powers[name] = powers.get(name, 0) + power
        effect = Effect(tuple(powers), tuple(powers.values()))
        if effect not in self.effects:
            self.effects.append(effect)
        return self.effects.index(effect)

    def _levels_at(
        self, subterm: Any, places: Mapping[Any, int], factors: List[str]
    ) -> Optional[Dict[str, Any]]:
        """The levels that the column indicates, one of each factor; None when it does not."""
        levels: Dict[str, Any] = {}
        for factor, contrast in subterm.contrast_matrices.items():
            numbers = contrast.matrix[:, places[factor]]
            if not (np.isin(numbers, (0, 1)).all() and numbers.sum() == 1):
                return None
            levels[self.names[factor]] = self.factors[self.names[factor]][int(numbers.argmax())]
        return levels if set(levels) == set(factors) else None

    def _add_coded(self, name: str, effect: int, subterm: Any, places: Mapping[Any, int]) -> None:
        columns: Dict[str, int] = {}
        for factor, contrast in subterm.contrast_matrices.items():
            variable = self.names[factor]
            coding = self.codings.setdefault(variable, contrast.matrix)
            if coding.shape != contrast.matrix.shape or not np.allclose(coding, contrast.matrix):
                self.uneven.add(variable)
            columns[variable] = places[factor]
        self.columns.append(Column(name, effect, None, columns))

    def averages(self) -> Dict[str, float]:
        """The mean of each variable of the data that a covariate is made from."""
        averages: Dict[str, float] = {}
        for factor, about in self.info.factor_infos.items():
            if about.type == "categorical":
                continue
            for name in variables_in(factor.code, self.frame):
                averages[name] = float(np.mean(np.asarray(self.frame[name], dtype=float)))
        return averages

    def cell_rows(
        self, cells: Mapping[str, np.ndarray], at: Mapping[str, float]
    ) -> np.ndarray:
        """Rows of the design for combinations of levels. The variables that a factor is made from
        take the values of a record with that level."""
        used: Dict[str, str] = {}
        count = len(next(iter(cells.values()))) if cells else 1
        frame = pd.DataFrame(index=range(count))
        for name, codes in cells.items():
            records = self._records_with_levels(name)[codes]
            for source in self.sources[name]:
                if source in at or used.get(source, name) != name:
                    raise Unsupported(
                        f"{source} enters the model in more than one way, so no means are made."
                    )
                used[source] = name
                frame[source] = self.frame[source].iloc[records].array
        for name, value in at.items():
            frame[name] = float(value)
        return _build(self.info, frame)

    def _records_with_levels(self, name: str) -> np.ndarray:
        levels, first = np.unique(self.codes[name], return_index=True)
        if len(levels) < len(self.factors[name]):
            missing = sorted(set(range(len(self.factors[name]))) - set(levels))
            raise Unsupported(
                f"{name} has no record with the level {self.factors[name][missing[0]]!r}, "
                "so no means are made."
            )
        return first


def is_design(info: Any) -> bool:
    """Whether this is a design that patsy made; another maker of designs is not known here."""
    return isinstance(info, DesignInfo)


def design_of_formula(
    info: DesignInfo, frame: pd.DataFrame, matrix: np.ndarray, has_thresholds: bool = False
) -> Design:
    """The design of a formula on its records.

    Parameters
    ----------
    info : patsy.DesignInfo
    frame : DataFrame
        The records that the model was fitted to, in their order.
    matrix : (n, p) array
        The design that it was fitted with.

    Raises
    ------
    Unsupported
        When the records do not give that design again.
    """
    matrix = np.asarray(matrix, dtype=float)
    again = _build(info, frame)
    if again.shape != matrix.shape or not np.allclose(again, matrix, rtol=1e-8, atol=1e-12):
        raise Unsupported(
            "The data give another design than the one that was fitted: they were changed since."
        )
    read = _Reader(info, frame)
    codings = {name: coding for name, coding in read.codings.items() if name not in read.uneven}
    return Design(
        matrix=matrix,
        columns=read.columns,
        effects=read.effects,
        factors=read.factors,
        codes=read.codes,
        covariates=read.covariates,
        averages=read.averages(),
        codings=codings,
        cell_rows=read.cell_rows,
        sum_coded=_build(_sum_coded(info), frame),
        has_intercept=any(column.effect is None for column in read.columns),
        has_thresholds=has_thresholds,
    )
