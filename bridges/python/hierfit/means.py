"""Estimated means and their contrasts: linear functions of the fixed coefficients, on the scale of
the link, or on that of the target by the delta method."""

from __future__ import annotations

import re
from dataclasses import dataclass
from typing import Any, Dict, List, Mapping, Optional, Sequence, Tuple

import numpy as np

from . import linear
from .design import plain
from .errors import Unsupported
from .parts import IDENTITY, Parts

#: Contrasts in a block beyond which nobody reads on.
MOST_CONTRASTS = 1000
#: Values of a covariate that the chart of its means shows.
MOST_VALUES = 20


@dataclass(frozen=True)
class Wishes:
    """What was asked for.

    Attributes
    ----------
    means : tuple of str
        "a", "a | b" or "a | b, c".
    contrasts : str or None
        The kind of all contrasts.
    reference : dict
        The reference level of simple contrasts, by factor.
    adjust : str
    level : float
        Of all intervals.
    scale : {"response", "link"}
    at : dict
        Where covariates are held.
    df : float or None
        Degrees of freedom of t; None for z.
    """

    means: Tuple[str, ...] = ()
    contrasts: Optional[str] = None
    reference: Mapping[str, Any] = None  # type: ignore[assignment]
    adjust: str = "none"
    level: float = 0.95
    scale: str = "response"
    at: Mapping[str, float] = None  # type: ignore[assignment]
    df: Optional[float] = None


@dataclass
class Estimated:
    """Means of some cells, with their covariance on the scale that they are on."""

    values: np.ndarray
    covariance: Optional[np.ndarray]
    low: Optional[np.ndarray]
    high: Optional[np.ndarray]


def estimated(parts: Parts, rows: np.ndarray, wishes: Wishes) -> Estimated:
    """The means that linear functions give.

    On the scale of the target a mean is the inverse link of the linear predictor, and its bounds
    are those of the predictor, brought over likewise.

    Parameters
    ----------
    rows : (means, p) array
    """
    predictor = rows @ parts.estimates
    covariance = None
    if parts.covariance is not None:
        covariance = rows @ parts.covariance @ rows.T
    to_target = wishes.scale == "response"
    inverse = parts.link.inverse if to_target else IDENTITY.inverse
    low = high = None
    if covariance is not None:
        distance = linear.reach(wishes.level, wishes.df) * linear.standard_errors(covariance)
        ends = inverse(predictor - distance), inverse(predictor + distance)
        low, high = np.minimum(*ends), np.maximum(*ends)
        if to_target:
            slopes = parts.link.slope(predictor)
            covariance = covariance * np.outer(slopes, slopes)
    return Estimated(inverse(predictor), covariance, low, high)


def _rows_of(parts: Parts, means: Estimated, levels: Sequence[Dict[str, Any]],
             wishes: Wishes) -> List[Dict[str, Any]]:
    rows = []
    errors = None if means.covariance is None else linear.standard_errors(means.covariance)
    for at, at_levels in enumerate(levels):
        row = {"levels": at_levels, "estimate": linear.finite(means.values[at])}
        if errors is not None and parts.has_errors:
            row["std.error"] = linear.finite(errors[at])
            if wishes.df is not None:
                row["df"] = wishes.df
        if means.low is not None and means.high is not None:
            row["conf.low"] = linear.finite(means.low[at])
            row["conf.high"] = linear.finite(means.high[at])
        rows.append(row)
    return rows


def parse_request(request: str, parts: Parts) -> Tuple[List[str], List[str]]:
    """The compared factors and the others of "a | b, c".

    Raises
    ------
    Unsupported
        For a name that is no factor of the model.
    """
    left, _, right = request.replace("~", "").partition("|")
    compared, others = ([name.strip() for name in re.split(r"[,:*+]", side) if name.strip()]
                        for side in (left, right))
    for name in compared + others:
        if name not in parts.design.factors:
            known = ", ".join(parts.design.factors) or "none"
            raise Unsupported(
                f"means asks for {name!r}, which is no factor of the model; its factors: {known}."
            )
    if not compared or len(set(compared + others)) < len(compared + others):
        raise Unsupported(f"means is {request!r}; it may be 'a', 'a | b' or 'a | b, c'.")
    return compared, others


def _compared(parts: Parts, name: str, wishes: Wishes) -> List[linear.Comparison]:
    levels = parts.design.factors[name]
    reference = None
    if name in (wishes.reference or {}):
        wanted = plain(wishes.reference[name])
        if wanted not in levels:
            raise Unsupported(
                f"reference is {wanted!r}, which is no level of {name}; it has "
                + ", ".join(map(str, levels)) + "."
            )
        reference = levels.index(wanted)
    assert wishes.contrasts is not None
    return linear.comparisons(wishes.contrasts, len(levels), reference)


def _contrast_matrix(
    parts: Parts, compare: str, cells: Sequence[Dict[str, Any]],
    comparisons: Sequence[linear.Comparison], families: Sequence[Dict[str, Any]]
) -> Tuple[np.ndarray, List[Dict[str, Any]]]:
    """Contrasts as linear functions of the means of all cells, family by family."""
    levels = parts.design.factors[compare]
    place = {tuple(cell.values()): at for at, cell in enumerate(cells)}
    names = list(cells[0])
    functions, rows = [], []
    for family in families:
        for comparison in comparisons:
            function = np.zeros(len(cells))
            for level, weight in zip(levels, comparison.weights):
                whole = {**family, compare: level}
                function[place[tuple(whole[name] for name in names)]] = weight
            row: Dict[str, Any] = {"levels": family} if family else {}
            row["level"] = levels[comparison.level]
            if comparison.against is not None:
                row["against"] = levels[comparison.against]
            functions.append(function)
            rows.append(row)
    return np.array(functions), rows


def _contrasts(parts: Parts, compare: str, others: Sequence[str], cells: List[Dict[str, Any]],
               means: Estimated, wishes: Wishes) -> Dict[str, Any]:
    comparisons = _compared(parts, compare, wishes)
    families = parts.design.combinations(others)
    count = len(comparisons) * len(families)
    if count > MOST_CONTRASTS:
        raise Unsupported(
            f"{count} contrasts of {compare} are more than the {MOST_CONTRASTS} that a report "
            "holds; ask for simple or deviation contrasts."
        )
    functions, rows = _contrast_matrix(parts, compare, cells, comparisons, families)
    values = functions @ means.values
    block: Dict[str, Any] = {"compare": compare, "type": wishes.contrasts, "rows": rows}
    if wishes.contrasts == "simple":
        block["reference"] = rows[0]["against"] if rows else parts.design.factors[compare][-1]
    for row, value in zip(rows, values):
        row["estimate"] = linear.finite(value)
    if means.covariance is None:
        return block
    covariance = functions @ means.covariance @ functions.T
    errors = linear.standard_errors(covariance)
    if parts.has_errors:
        for row, error in zip(rows, errors):
            row["std.error"] = linear.finite(error)
            if wishes.df is not None:
                row["df"] = wishes.df
        block["vcov"] = linear.lower_triangle(covariance)
    size = len(comparisons)
    for start in range(0, len(rows), size):
        family = slice(start, start + size)
        _adjust(rows[family], values[family], errors[family], parts, wishes)
    return block


def _adjust(rows: List[Dict[str, Any]], values: np.ndarray, errors: np.ndarray, parts: Parts,
            wishes: Wishes) -> None:
    """Adds what the fit document has no word for: single-step adjustments, and the bounds of a
    posterior. All else follows from the estimates."""
    is_own = wishes.adjust in ("bonferroni", "sidak")
    if parts.has_errors and not is_own:
        return
    level = wishes.level
    if is_own and parts.has_errors:
        level = linear.adjusted_level(level, len(rows), wishes.adjust)
        p_values = linear.two_sided_p(values / errors, wishes.df)
        for row, p_value in zip(rows, linear.adjusted(p_values, wishes.adjust)):
            row["adj.p.value"] = linear.finite(p_value)
    distance = linear.reach(level, wishes.df) * errors
    for row, low, high in zip(rows, values - distance, values + distance):
        row["conf.low"], row["conf.high"] = linear.finite(low), linear.finite(high)


def means_block(parts: Parts, request: str, wishes: Wishes) -> Dict[str, Any]:
    """A block of means of a fit document.

    Raises
    ------
    Unsupported
    """
    compared, others = parse_request(request, parts)
    if wishes.contrasts is not None and len(compared) > 1:
        raise Unsupported(
            f"means is {request!r}: contrasts compare the levels of one factor; put the others "
            "behind a bar, as in 'a | b'."
        )
    fields = compared + others
    at = dict(wishes.at or {})
    cells = parts.design.combinations(fields)
    means = estimated(parts, parts.design.mean_rows(fields, at), wishes)
    block: Dict[str, Any] = {
        "fields": fields,
        "scale": wishes.scale,
        "rows": _rows_of(parts, means, cells, wishes),
    }
    held = {name: value for name, value in {**parts.design.averages, **at}.items()
            if name in parts.design.covariates}
    if held:
        block["at"] = held
    if wishes.contrasts is not None:
        block["contrasts"] = _contrasts(parts, compared[0], others, cells, means, wishes)
    return block


def grand_mean(parts: Parts, wishes: Wishes) -> Optional[Dict[str, Any]]:
    """The mean over all cells, on the scale of the target."""
    response = Wishes(level=wishes.level, df=wishes.df, at=wishes.at)
    means = estimated(parts, parts.design.mean_rows([], dict(wishes.at or {})), response)
    row = _rows_of(parts, means, [{}], response)[0]
    del row["levels"]
    return row


def _shown_values(parts: Parts, name: str) -> np.ndarray:
    values = np.unique(parts.design.covariates[name])
    if len(values) <= MOST_VALUES:
        return values
    return np.linspace(values[0], values[-1], 11)


def effect_means(parts: Parts, wishes: Wishes) -> List[Dict[str, Any]]:
    """The means of each effect of factors alone, and of each single covariate, for their charts."""
    response = Wishes(level=wishes.level, df=wishes.df, at=wishes.at)
    at = dict(wishes.at or {})
    blocks = []
    for effect in parts.design.effects:
        fields = list(effect.fields)
        if all(name in parts.design.factors for name in fields):
            levels = parts.design.combinations(fields)
            rows = parts.design.mean_rows(fields, at)
        elif len(fields) == 1 and effect.powers == (1,) and fields[0] in parts.design.averages:
            values = _shown_values(parts, fields[0])
            levels = [{fields[0]: float(value)} for value in values]
            rows = np.vstack([parts.design.mean_rows([], {**at, fields[0]: value})
                              for value in values])
        else:
            continue
        means = estimated(parts, rows, response)
        blocks.append({"fields": fields, "rows": _rows_of(parts, means, levels, response)})
    return blocks
