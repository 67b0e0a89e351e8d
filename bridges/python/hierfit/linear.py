"""Linear functions of estimates: standard errors, Wald tests, adjustments."""

from __future__ import annotations

import itertools
from dataclasses import dataclass
from typing import List, Optional, Tuple

import numpy as np
from scipy import stats

from .errors import Unsupported


def reach(level: float, df: Optional[float]) -> float:
    """The quantile that an interval at `level` reaches to, in standard errors: of t with `df`
    degrees of freedom, of the normal distribution when there are none."""
    tail = (1 - level) / 2
    return float(stats.norm.isf(tail) if df is None else stats.t.isf(tail, df))


def two_sided_p(statistic: np.ndarray, df: Optional[float]) -> np.ndarray:
    """Two-sided p values of t statistics, or of z when there are no degrees of freedom."""
    size = np.abs(statistic)
    return 2 * (stats.norm.sf(size) if df is None else stats.t.sf(size, df))


def wald_f(
    function: np.ndarray, estimates: np.ndarray, covariance: np.ndarray
) -> Tuple[float, int]:
    """The Wald statistic that a linear function of the estimates is 0, over its rank.

    Parameters
    ----------
    function : (q, p) array
    estimates : (p,) array
    covariance : (p, p) array

    Returns
    -------
    statistic : float
        F; chi-square over the rank where there are no degrees of freedom below.
    rank : int
        The degrees of freedom above: rows that are free of one another.
    """
    values = function @ estimates
    spread = function @ covariance @ function.T
    scale = np.sqrt(np.clip(np.diag(spread), np.finfo(float).tiny, None))
    eigenvalues, vectors = np.linalg.eigh(spread / np.outer(scale, scale))
    kept = eigenvalues > 1e-10 * max(1.0, eigenvalues.max(initial=0))
    rank = int(kept.sum())
    if rank == 0:
        return float("nan"), 0
    turned = vectors[:, kept].T @ (values / scale)
    return float(np.sum(turned**2 / eigenvalues[kept]) / rank), rank


def adjusted(p_values: np.ndarray, method: str) -> np.ndarray:
    """Single-step adjustments of a family of p values: "bonferroni" or "sidak"
    (Šidák, Z., Journal of the American Statistical Association 62, 1967)."""
    count = len(p_values)
    if method == "bonferroni":
        return np.minimum(1.0, count * p_values)
    if method == "sidak":
        return -np.expm1(count * np.log1p(-p_values))
    raise ValueError(method)


def adjusted_level(level: float, count: int, method: str) -> float:
    """The level of each of `count` intervals that hold together at `level`."""
    return 1 - (1 - level) / count if method == "bonferroni" else level ** (1 / count)


@dataclass(frozen=True)
class Comparison:
    """One contrast of the levels of a factor.

    Attributes
    ----------
    level : int
        The position of the level that is compared.
    against : int or None
        That of the level it is compared with; None for the mean of all.
    weights : (levels,) array
    """

    level: int
    against: Optional[int]
    weights: np.ndarray


def _difference(count: int, level: int, against: int) -> Comparison:
    weights = np.zeros(count)
    weights[level], weights[against] = 1, -1
    return Comparison(level, against, weights)


def comparisons(kind: str, count: int, reference: Optional[int] = None) -> List[Comparison]:
    """The contrasts of a kind.

    Parameters
    ----------
    kind : {"pairwise", "deviation", "simple"}
        Each level with each later one, with the mean of all, or with the reference.
    count : int
        Levels.
    reference : int, optional
        The position of the reference; the first level when it is not told.
    """
    if kind == "pairwise":
        pairs = itertools.combinations(range(count), 2)
        return [_difference(count, level, against) for level, against in pairs]
    if kind == "deviation":
        rows = np.eye(count) - 1 / count
        return [Comparison(level, None, row) for level, row in enumerate(rows)]
    if kind == "simple":
        held = reference or 0
        return [_difference(count, level, held) for level in range(count) if level != held]
    raise Unsupported(f"contrasts is {kind!r}; it may be 'pairwise', 'deviation' or 'simple'.")


def lower_triangle(matrix: np.ndarray) -> List[List[float]]:
    """The rows of a symmetric matrix, each up to its diagonal."""
    return [[float(value) for value in row[: at + 1]] for at, row in enumerate(matrix)]


def finite(value: Optional[float]) -> Optional[float]:
    """The number as JSON has it: null for one that does not exist."""
    return None if value is None or not np.isfinite(value) else float(value)


def standard_errors(covariance: np.ndarray) -> np.ndarray:
    """The roots of the diagonal; not a number where that is below 0."""
    diagonal = np.diag(covariance)
    return np.sqrt(np.where(diagonal >= 0, diagonal, np.nan))


def same_span(left: np.ndarray, right: np.ndarray) -> Optional[np.ndarray]:
    """The matrix that turns the columns on the left into those on the right, or None when the two
    do not span the same space."""
    change, _, rank, _ = np.linalg.lstsq(left, right, rcond=None)
    scale = np.abs(right).max(axis=0, initial=1e-300)
    if rank < left.shape[1] or left.shape[1] != right.shape[1]:
        return None
    if np.any(np.abs(left @ change - right).max(axis=0) > 1e-7 * scale):
        return None
    if np.linalg.matrix_rank(change) < len(change):
        return None
    return change
