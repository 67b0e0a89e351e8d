"""What the models of statsmodels have in common: their data, design and target."""

from __future__ import annotations

from typing import Any, Dict, List, Optional, Tuple

import numpy as np
import pandas as pd

from ..design import Design, design_of_columns, plain_list
from ..errors import Unsupported
from ..formula import design_of_formula, is_design, variable_of
from ..parts import Link, Target


def version() -> str:
    import statsmodels

    return str(statsmodels.__version__)


def frame_of(model: Any) -> Optional[pd.DataFrame]:
    """The records that a model was fitted to, in their order; None without a formula.

    Raises
    ------
    Unsupported
        When they cannot be told any more.
    """
    frame = getattr(model.data, "frame", None)
    if frame is None:
        return None
    frame = pd.DataFrame(frame)
    dropped = getattr(model.data, "missing_row_idx", None)
    missing = np.asarray([] if dropped is None else dropped, dtype=int)
    count = len(np.asarray(model.endog))
    labels = getattr(model.data, "row_labels", None)
    if len(missing) and len(frame) == count + len(missing):
        frame = frame[~np.isin(np.arange(len(frame)), missing)]
    elif len(frame) != count and labels is not None and frame.index.is_unique:
        frame = frame.reindex(labels)
    if len(frame) != count:
        raise Unsupported(
            f"The model has {count} records and its data have {len(frame)}: they were changed "
            "since the fit."
        )
    return frame


def design_of(model: Any, has_thresholds: bool = False) -> Design:
    """The fixed design of a model, by its formula where it has one."""
    frame = frame_of(model)
    exog = np.asarray(model.exog, dtype=float)
    info = getattr(model.data, "design_info", None)
    if frame is None or not is_design(info):
        return design_of_columns(exog, model.exog_names[: exog.shape[1]], has_thresholds)
    return design_of_formula(info, frame, exog, has_thresholds)


def order_of(model: Any) -> List[str]:
    frame = getattr(model.data, "frame", None)
    return [] if frame is None else [str(name) for name in pd.DataFrame(frame).columns]


def target_name(model: Any) -> str:
    """The name of the target: the left side of the formula, a variable of the data if it is one."""
    formula = formula_of(model)
    if formula is None:
        names = model.endog_names
        return str(names if isinstance(names, str) else names[0])
    left = formula.split("~")[0].strip()
    frame = frame_of(model)
    return (variable_of(left, frame) if frame is not None else None) or left


def formula_of(model: Any) -> Optional[str]:
    formula = getattr(model, "formula", None)
    return None if formula is None else str(formula)


def numeric_target(model: Any) -> Target:
    """A target that holds numbers."""
    return Target(target_name(model), plain_list(np.asarray(model.endog, dtype=float)))


def binary_target(model: Any, success: Any = 1, failure: Any = 0) -> Target:
    """A target with two categories, of which the second is modelled."""
    events = np.asarray(model.endog) > 0.5
    values = [success if event else failure for event in events]
    return Target(target_name(model), values, [failure, success], reference=failure)


def binary_predicted(target: Target, mean: np.ndarray) -> List[Any]:
    """The likelier category of each record."""
    assert target.categories is not None
    failure, success = target.categories
    return [success if value > 0.5 else failure for value in np.asarray(mean)]


#: The words of fit documents for families, by class name.
DISTRIBUTIONS = {
    "gaussian": "normal",
    "binomial": "binomial",
    "poisson": "poisson",
    "negativebinomial": "negative binomial",
    "gamma": "gamma",
    "inversegaussian": "inverse gaussian",
}

#: Those for links, by class name; of a class that is not here, that of its nearest base.
LINKS = {
    "identity": "identity",
    "log": "log",
    "logc": "log complement",
    "logit": "logit",
    "probit": "probit",
    "cauchy": "cauchit",
    "cdflink": "other",
    "cloglog": "cloglog",
    "loglog": "loglog",
    "negativebinomial": "other",
    "power": "power",
}


def link_of(link: Any) -> Link:
    """A link of statsmodels."""
    names = [base.__name__.lower() for base in type(link).__mro__]
    name = next((LINKS[name] for name in names if name in LINKS), "other")
    parameter = None
    if name == "power":
        parameter = float(link.power)
        if parameter == 1:
            name, parameter = "identity", None
    return Link(name, link.inverse, link.inverse_deriv, parameter)


def distribution_of(family: Any) -> Tuple[str, List[str]]:
    """The word for a family, and a note for one that has none."""
    name = type(family).__name__
    word = DISTRIBUTIONS.get(name.lower())
    if word is not None:
        return word, []
    return "other", [f"The distribution is {name}."]


def column_like(frame: pd.DataFrame, values: Any) -> Optional[str]:
    """The column of the data that holds exactly these values."""
    wanted = plain_list(values)
    for name in frame.columns:
        if len(frame[name]) == len(wanted) and plain_list(frame[name]) == wanted:
            return str(name)
    return None


def named_column(
    frame: Optional[pd.DataFrame], name: Optional[str], values: Any, otherwise: str
) -> Tuple[str, List[Any]]:
    """The name of a column and its values: `name` if the data have it so, else a column that holds
    the values, else `otherwise`."""
    column = plain_list(values)
    if frame is not None:
        if name in frame.columns and plain_list(frame[name]) == column:
            return str(name), column
        found = column_like(frame, values)
        if found is not None:
            return found, column
    return otherwise, column


def offset_notes(*offsets: Any) -> List[str]:
    """A note where the linear predictor has a part that is not estimated."""
    for offset in offsets:
        if offset is not None and np.any(np.asarray(offset, dtype=float) != 0):
            return [
                "The linear predictor has an offset, or an exposure; means are for an offset of 0."
            ]
    return []


def as_frame_values(frame: Optional[pd.DataFrame], names: List[str]) -> Dict[str, List[Any]]:
    """The values of some columns of the data."""
    if frame is None:
        return {}
    return {name: plain_list(frame[name]) for name in names if name in frame.columns}


