"""The fixed part of a model: its columns, effects and factors.

All that this package knows of patsy stands in this file and in `formula.py`; a `Design` is plain
arrays and names.
"""

from __future__ import annotations

import itertools
from dataclasses import dataclass, field
from typing import Any, Callable, Dict, List, Mapping, Optional, Sequence, Tuple

import numpy as np
import pandas as pd

from .errors import Unsupported
from .linear import same_span

#: Combinations of levels beyond which no means are made.
MOST_CELLS = 100_000


#: Gives design rows for cells: positions of levels by factor, values by covariate.
CellRows = Callable[[Mapping[str, np.ndarray], Mapping[str, float]], np.ndarray]


@dataclass(frozen=True)
class Effect:
    """A product of variables, each to a power."""

    fields: Tuple[str, ...]
    powers: Tuple[int, ...]

    def member(self) -> Dict[str, Any]:
        """The effect as a fit document has it."""
        member: Dict[str, Any] = {"fields": list(self.fields)}
        if any(power != 1 for power in self.powers):
            member["powers"] = list(self.powers)
        return member


@dataclass(frozen=True)
class Column:
    """A column of the fixed design, which a coefficient belongs to.

    Attributes
    ----------
    name : str
        What the engine calls it.
    effect : int or None
        The position of its effect; None for the intercept.
    levels : dict or None
        The level of each factor of its effect; None when a factor is coded otherwise.
    columns : dict
        The column of its coding that each factor stands at.
    """

    name: str
    effect: Optional[int] = None
    levels: Optional[Dict[str, Any]] = None
    columns: Dict[str, int] = field(default_factory=dict)


def plain(value: Any) -> Any:
    """A value as JSON has it: a number, a text, or null for a missing one."""
    if value is None or value is pd.NA or value is pd.NaT:
        return None
    if isinstance(value, np.generic):
        value = value.item()
    if isinstance(value, bool):
        return str(bool(value))
    if isinstance(value, int):
        return value
    if isinstance(value, float):
        if not np.isfinite(value):
            return None
        return int(value) if value.is_integer() and abs(value) < 2**53 else value
    return str(value)


def plain_list(values: Any) -> List[Any]:
    """The values of a column as JSON has them."""
    return [plain(value) for value in np.asarray(values, dtype=object)]


@dataclass
class Design:
    """The fixed part of a model on its records.

    Attributes
    ----------
    matrix : (n, p) array
    columns : list of Column
        One for each column of the matrix.
    effects : list of Effect
    factors : dict of str to list
        The levels of each factor, as values of a fit document.
    codes : dict of str to (n,) array of int
        The position of each record's level.
    covariates : dict of str to (n,) array
        The covariates that stand in effects.
    averages : dict of str to float
        What the means hold the covariates of the data at.
    codings : dict of str to array
        The coding of factors that have no level rows, where it is the same in all effects.
    cell_rows : CellRows, optional
    sum_coded : (n, p) array or None
        The same columns with each factor coded by sums to zero.
    has_intercept : bool
    has_thresholds : bool
        Whether thresholds stand in place of an intercept.
    """

    matrix: np.ndarray
    columns: List[Column]
    effects: List[Effect]
    factors: Dict[str, List[Any]] = field(default_factory=dict)
    codes: Dict[str, np.ndarray] = field(default_factory=dict)
    covariates: Dict[str, np.ndarray] = field(default_factory=dict)
    averages: Dict[str, float] = field(default_factory=dict)
    codings: Dict[str, np.ndarray] = field(default_factory=dict)
    cell_rows: Optional[CellRows] = None
    sum_coded: Optional[np.ndarray] = None
    has_intercept: bool = True
    has_thresholds: bool = False

    def __post_init__(self) -> None:
        self._rank = -1
        self._grids: Dict[Tuple[Tuple[str, float], ...], np.ndarray] = {}

    def cells(self) -> Dict[str, np.ndarray]:
        """All combinations of levels, as positions by factor; the last factor runs fastest."""
        sizes = [len(levels) for levels in self.factors.values()]
        if np.prod(sizes, dtype=float) > MOST_CELLS:
            raise Unsupported(
                f"The factors have {np.prod(sizes, dtype=float):.0f} combinations of levels, "
                "too many to average over."
            )
        combinations = list(itertools.product(*map(range, sizes)))
        places = np.array(combinations, dtype=int).reshape(len(combinations), len(sizes))
        return {name: places[:, at] for at, name in enumerate(self.factors)}

    def require_full_rank(self) -> None:
        """Means and tests of a design whose columns depend on one another are not unique.

        Raises
        ------
        Unsupported
        """
        width = self.matrix.shape[1]
        if self._rank < 0:
            self._rank = int(np.linalg.matrix_rank(self.matrix))
        if self._rank < width:
            raise Unsupported(
                f"The fixed design has {width} columns and the rank {self._rank}, so tests and "
                "means are not unique; drop the terms that depend on others, or the empty "
                "combinations of levels."
            )

    def grid(self, at: Mapping[str, float]) -> np.ndarray:
        """A row of the design for each cell, with the covariates at their averages or at `at`."""
        if self.cell_rows is None:
            raise Unsupported("Means need a model that was written as a formula.")
        held = {**self.averages, **at}
        key = tuple(sorted(held.items()))
        if key not in self._grids:
            self._grids[key] = self.cell_rows(self.cells(), held)
        return self._grids[key]

    def mean_rows(self, fields: Sequence[str], at: Mapping[str, float]) -> np.ndarray:
        """Linear functions that give the means of all combinations of the levels of some factors,
        over the levels of the others with equal weights (population marginal means: Searle, Speed
        and Milliken, The American Statistician 34, 1980).

        Returns
        -------
        (combinations, p) array
            The last of the fields runs fastest.
        """
        cells, grid = self.cells(), self.grid(at)
        place = np.zeros(len(grid), dtype=int)
        for name in fields:
            place = place * len(self.factors[name]) + cells[name]
        count = int(np.prod([len(self.factors[name]) for name in fields], dtype=int))
        rows = np.zeros((count, grid.shape[1]))
        np.add.at(rows, place, grid)
        return rows / (len(grid) / count)

    def combinations(self, fields: Sequence[str]) -> List[Dict[str, Any]]:
        """The levels of each row of `mean_rows`."""
        levels = (self.factors[name] for name in fields)
        return [dict(zip(fields, combination)) for combination in itertools.product(*levels)]

    def hypotheses(self) -> Tuple[np.ndarray, List[np.ndarray]]:
        """The type III hypotheses: of all effects together, and of each effect.

        Those of an effect say that its coefficients are 0 where every factor is coded by sums to
        zero, in the coefficients of this design. Covariates are taken as they are, not centred.

        Returns
        -------
        model : (q, p) array
        effects : list of arrays with p columns

        Raises
        ------
        Unsupported
            For a design whose columns depend on one another.
        """
        self.require_full_rank()
        width = self.matrix.shape[1]
        change = np.eye(width)
        if self.sum_coded is not None:
            change = self._in_sums()
        slopes = [at for at, column in enumerate(self.columns) if column.effect is not None]
        effects = [
            change[[at for at, column in enumerate(self.columns) if column.effect == effect]]
            for effect in range(len(self.effects))
        ]
        return change[slopes], effects

    def _in_sums(self) -> np.ndarray:
        """The matrix that turns the coefficients into those of the columns coded by sums. A
        constant that the thresholds take up may differ."""
        assert self.sum_coded is not None
        left, right = self.matrix, self.sum_coded
        if self.has_thresholds:
            ones = np.ones((len(left), 1))
            left, right = np.hstack([ones, left]), np.hstack([ones, right])
        change = same_span(left, right)
        if change is None:
            raise Unsupported(
                "The factors are coded so that no type III tests can be made of their coefficients."
            )
        turned = np.linalg.inv(change)
        return turned[1:, 1:] if self.has_thresholds else turned

    def records_of(self, name: str) -> List[Any]:
        """The values of a factor or a covariate of the design."""
        if name in self.factors:
            levels = self.factors[name]
            return [levels[code] for code in self.codes[name]]
        return plain_list(self.covariates[name])


def design_of_columns(
    matrix: np.ndarray, names: Sequence[str], has_thresholds: bool = False
) -> Design:
    """A design of which nothing is known but the names of its columns: a constant is the intercept,
    each other column a covariate."""
    matrix = np.asarray(matrix, dtype=float)
    columns: List[Column] = []
    effects: List[Effect] = []
    covariates: Dict[str, np.ndarray] = {}
    has_intercept = False
    for values, name in zip(matrix.T, map(str, names)):
        if not has_intercept and np.all(values == 1):
            has_intercept = True
            columns.append(Column(name))
            continue
        columns.append(Column(name, len(effects), {}))
        effects.append(Effect((name,), (1,)))
        covariates[name] = values
    return Design(
        matrix, columns, effects, covariates=covariates, has_intercept=has_intercept,
        has_thresholds=has_thresholds,
    )
