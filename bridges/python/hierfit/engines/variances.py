"""Standard errors of the variances of a linear mixed model, from the observed information.

The covariance of the target is linear in the parameters: V = sum of theta_i G_i. The observed
information of theta_i and theta_j is y' P G_i P G_j P y - 1/2 tr(P G_i P G_j), with
P = V^-1 - V^-1 X (X' V^-1 X)^-1 X' V^-1, and V^-1 in place of P in the trace for maximum likelihood
(Searle, Casella and McCulloch, Variance Components, 1992, chapter 6). At the optimum it does not
depend on the parametrisation, so it is what the delta method gives from Cholesky factors.
"""

from __future__ import annotations

from dataclasses import dataclass
from typing import Any, List, Optional, Tuple

import numpy as np


@dataclass
class Group:
    """A group of records, independent of the others."""

    target: np.ndarray
    fixed: np.ndarray
    random: np.ndarray


@dataclass
class Structure:
    """The random part: V = scale I + Z Psi Z', Psi the sum of theta_i D_i.

    Attributes
    ----------
    groups : list of Group
    patterns : list of lists of (q, q) arrays
        D_i of each group, by parameter.
    values : list of float
        theta.
    scale : float
        The residual variance.
    coefficients : (p,) array
        The fixed coefficients.
    """

    groups: List[Group]
    patterns: List[List[np.ndarray]]
    values: List[float]
    scale: float
    coefficients: np.ndarray


def structure_of(result: Any) -> Structure:
    """The random part of a MixedLM result; its parameters are the lower triangle of the covariance
    of the random coefficients by rows, then the variance components."""
    model = result.model
    triangle = [(row, column) for row in range(model.k_re) for column in range(row + 1)]
    groups, patterns = [], []
    for at in range(model.n_groups):
        blocks = [] if model.k_re == 0 else [np.asarray(model.exog_re_li[at], dtype=float)]
        blocks += [_dense(mats[at]) for mats in model.exog_vc.mats]
        groups.append(Group(model.endog_li[at], model.exog_li[at], np.hstack(blocks)))
        patterns.append(_patterns(triangle, [block.shape[1] for block in blocks], model.k_re))
    psi = np.asarray(result.cov_re, dtype=float).reshape(model.k_re, model.k_re)
    values = [float(psi[place]) for place in triangle]
    values += [float(value) for value in np.atleast_1d(result.vcomp)[: model.k_vc]]
    return Structure(groups, patterns, values, float(result.scale),
                     np.asarray(result.fe_params, dtype=float))


def _dense(matrix: Any) -> np.ndarray:
    return np.asarray(matrix.todense() if hasattr(matrix, "todense") else matrix, dtype=float)


def _patterns(
    triangle: List[Tuple[int, int]], widths: List[int], k_re: int
) -> List[np.ndarray]:
    size = sum(widths)
    patterns = []
    for row, column in triangle:
        pattern = np.zeros((size, size))
        pattern[row, column] = pattern[column, row] = 1
        patterns.append(pattern)
    start = k_re
    for width in widths[1 if k_re else 0:]:
        pattern = np.zeros((size, size))
        pattern[range(start, start + width), range(start, start + width)] = 1
        patterns.append(pattern)
        start += width
    return patterns


def _root(matrix: np.ndarray) -> np.ndarray:
    values, vectors = np.linalg.eigh(matrix)
    return vectors * np.sqrt(np.clip(values, 0, None))


class _Sums:
    """X' V^-1 X, Z' V^-1 Z and their kin, without a matrix of the size of the records."""

    def __init__(self, structure: Structure) -> None:
        width = len(structure.coefficients)
        self.fixed = np.zeros((width, width))
        self.quadratic = 0.0
        self.records = 0
        self.log_determinant = 0.0
        self.inner: List[np.ndarray] = []
        self.across: List[np.ndarray] = []
        self.residual: List[np.ndarray] = []
        for group, patterns in zip(structure.groups, structure.patterns):
            self._add(group, patterns, structure)

    def _add(self, group: Group, patterns: List[np.ndarray], structure: Structure) -> None:
        psi = np.zeros((group.random.shape[1],) * 2)
        for value, pattern in zip(structure.values, patterns):
            psi += value * pattern
        random = group.random @ _root(psi)
        scale = structure.scale
        middle = np.linalg.cholesky(scale * np.eye(random.shape[1]) + random.T @ random)

        def inverse(matrix: np.ndarray) -> np.ndarray:
            half = np.linalg.solve(middle, random.T @ matrix)
            return (matrix - random @ np.linalg.solve(middle.T, half)) / scale

        rest = group.target - group.fixed @ structure.coefficients
        solved_fixed, solved_random, solved_rest = map(inverse, (group.fixed, group.random, rest))
        self.fixed += group.fixed.T @ solved_fixed
        self.quadratic += float(rest @ solved_rest)
        count, width = random.shape
        self.records += count
        self.log_determinant += 2 * np.log(np.diag(middle)).sum() + (count - width) * np.log(scale)
        self.inner.append(group.random.T @ solved_random)
        self.across.append(group.fixed.T @ solved_random)
        self.residual.append(group.random.T @ solved_rest)


def log_likelihood(structure: Structure, reml: bool) -> float:
    """The (restricted) log likelihood at the values of a structure."""
    sums = _Sums(structure)
    width = len(sums.fixed)
    value = sums.log_determinant + sums.quadratic
    count = sums.records - (width if reml else 0)
    if reml:
        value += np.linalg.slogdet(sums.fixed)[1]
    return float(-(value + count * np.log(2 * np.pi)) / 2)


def information(structure: Structure, reml: bool) -> np.ndarray:
    """The observed information of the parameters, the residual variance last."""
    sums = _Sums(structure)
    count = len(structure.values)
    inverse = np.linalg.inv(sums.fixed)
    width = len(sums.fixed)
    traces = np.zeros((count, count))
    single = np.zeros(count)
    quadratics = np.zeros((count, count))
    linear = np.zeros(count)
    crossed = np.zeros((count, width))
    moved = np.zeros((count, width, width))
    by_group = zip(sums.inner, sums.across, sums.residual, structure.patterns)
    for inner, across, rest, patterns in by_group:
        turned = [pattern @ inner for pattern in patterns]
        for i, left in enumerate(turned):
            fixed_left = across @ patterns[i]
            single[i] += np.trace(left)
            moved[i] += fixed_left @ across.T
            crossed[i] += fixed_left @ rest
            linear[i] += rest @ patterns[i] @ rest
            for j in range(i + 1):
                right = turned[j]
                traces[i, j] += np.sum(left * right.T)
                quadratics[i, j] += rest @ patterns[i] @ inner @ patterns[j] @ rest
                if reml:
                    traces[i, j] -= 2 * np.sum(
                        inverse * (fixed_left @ inner @ patterns[j] @ across.T))
    result = np.zeros((count + 1, count + 1))
    for i in range(count):
        for j in range(i + 1):
            trace = traces[i, j]
            if reml:
                trace += np.sum((inverse @ moved[i]) * (inverse @ moved[j]).T)
            quadratic = quadratics[i, j] - crossed[i] @ inverse @ crossed[j]
            result[i, j] = result[j, i] = quadratic - trace / 2
    # The residual variance stands for I = (V - sum theta G) / scale.
    theta = np.asarray(structure.values)
    trace_of = single - (np.einsum("kl,ilk->i", inverse, moved) if reml else 0)
    with_whole = linear - trace_of / 2
    whole = sums.quadratic - (sums.records - (width if reml else 0)) / 2
    block = result[:count, :count]
    last = (with_whole - block @ theta) / structure.scale
    result[count, :count] = result[:count, count] = last
    result[count, count] = (
        whole - 2 * theta @ with_whole + theta @ block @ theta
    ) / structure.scale**2
    return result


def covariance(structure: Structure, reml: bool, free: np.ndarray) -> Optional[np.ndarray]:
    """The covariance of the parameters that were estimated, 0 for the others; None where the
    information is not positive definite.

    Parameters
    ----------
    free : array of bool
        Which of the parameters were estimated, the residual variance last.
    """
    whole = information(structure, reml)
    kept = np.flatnonzero(free)
    part = whole[np.ix_(kept, kept)]
    scale = np.sqrt(np.abs(np.diag(part)))
    if not np.all(np.isfinite(part)) or np.any(scale == 0):
        return None
    if np.linalg.eigvalsh(part / np.outer(scale, scale)).min() < 1e-8:
        return None
    result = np.zeros_like(whole)
    result[np.ix_(kept, kept)] = np.linalg.inv(part)
    return result
