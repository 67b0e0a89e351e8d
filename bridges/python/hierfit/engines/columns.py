"""Reads the columns of random designs by their names, and holds them against the data."""

from __future__ import annotations

import re
from dataclasses import dataclass
from typing import Dict, List, Optional, Sequence, Tuple

import numpy as np
import pandas as pd

from ..design import plain
from ..formula import variable_of

_PIECE = re.compile(r"^(?P<code>.+?)\[(?:[TS]\.)?(?P<level>[^\[\]]*)\]$")


@dataclass(frozen=True)
class RandomColumn:
    """A column of a random design: covariates, where some factors have these levels.

    Attributes
    ----------
    levels : tuple of (factor, level)
    covariates : tuple of str
    """

    levels: Tuple[Tuple[str, str], ...]
    covariates: Tuple[str, ...]

    @property
    def factors(self) -> Tuple[str, ...]:
        return tuple(name for name, _ in self.levels)


def _pieces(name: str) -> List[str]:
    """The factors of a column's name: what stands between colons outside of brackets."""
    pieces, depth, start = [], 0, 0
    for at, letter in enumerate(name):
        depth += (letter in "([") - (letter in ")]")
        if letter == ":" and depth == 0:
            pieces.append(name[start:at])
            start = at + 1
    return [*pieces, name[start:]]


def read_column(name: str, frame: pd.DataFrame) -> Optional[RandomColumn]:
    """What the name of a column says; None where it mentions more than variables of the data."""
    levels: List[Tuple[str, str]] = []
    covariates: List[str] = []
    for piece in _pieces(name):
        if piece in ("Intercept", "1"):
            continue
        found = _PIECE.match(piece)
        variable = variable_of(found["code"] if found else piece, frame)
        if variable is None:
            return None
        if found:
            levels.append((variable, found["level"]))
        else:
            covariates.append(variable)
    return RandomColumn(tuple(levels), tuple(covariates))


def values_of(column: RandomColumn, frame: pd.DataFrame) -> Optional[np.ndarray]:
    """The column as its name says it."""
    values = np.ones(len(frame))
    for factor, level in column.levels:
        values = values * np.array([str(value) == level for value in frame[factor]], dtype=float)
    for name in column.covariates:
        try:
            values = values * np.asarray(frame[name], dtype=float)
        except (TypeError, ValueError):
            return None
    return values


def level_of(column: RandomColumn, frame: pd.DataFrame) -> Dict[str, object]:
    """The levels as values of a fit document."""
    found = {}
    for factor, level in column.levels:
        found[factor] = next(
            (plain(value) for value in frame[factor].unique() if str(value) == level), level)
    return found


def read_columns(
    names: Sequence[str], frame: Optional[pd.DataFrame]
) -> Optional[List[RandomColumn]]:
    if frame is None:
        return None
    columns = [read_column(name, frame) for name in names]
    return None if any(column is None for column in columns) else list(columns)  # type: ignore

