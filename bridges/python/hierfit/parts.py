"""What an engine's result gives, in the words of the field: the neutral ground between the readers
of results and the fit document."""

from __future__ import annotations

from dataclasses import dataclass, field
from typing import Any, Callable, Dict, List, Optional, Tuple

import numpy as np

from .design import Design


def _same(values: np.ndarray) -> np.ndarray:
    return np.asarray(values, dtype=float)


def _ones(values: np.ndarray) -> np.ndarray:
    return np.ones_like(np.asarray(values, dtype=float))


@dataclass(frozen=True)
class Link:
    """A link function.

    Attributes
    ----------
    name : str
        Its word in fit documents.
    inverse : callable
        The mean of a linear predictor.
    slope : callable
        The derivative of `inverse`.
    parameter : float, optional
        The exponent of a power.
    """

    name: str
    inverse: Callable[[np.ndarray], np.ndarray]
    slope: Callable[[np.ndarray], np.ndarray]
    parameter: Optional[float] = None


IDENTITY = Link("identity", _same, _ones)


@dataclass
class Target:
    """The target and its records.

    Attributes
    ----------
    variable : str
    values : list
        A value for each record, as a fit document has it.
    categories : list, optional
        Of a categorical target, in their order.
    reference : optional
        The category that the others are held against.
    trials : str, optional
        The variable that counts the trials.
    trials_values : list, optional
    trials_constant : int, optional
    """

    variable: str
    values: List[Any]
    categories: Optional[List[Any]] = None
    reference: Any = None
    trials: Optional[str] = None
    trials_values: Optional[List[Any]] = None
    trials_constant: Optional[int] = None


@dataclass
class Parts:
    """A fitted model, as the reader of an engine's result hands it over.

    Attributes
    ----------
    call : str
        What fitted it.
    design : Design
    target : Target
    distribution : str
        A word of fit documents.
    link : Link
    estimates : (p,) array
        The fixed coefficients, one for each column of the design.
    covariance : (p, p) array or None
        Their covariance; None where the engine has none.
    has_errors : bool
        Whether the roots of the covariance are standard errors. The standard deviations of a
        posterior are none: intervals are made from them, and no tests.
    spreads : (p,) array, optional
        Standard deviations, where there is no covariance.
    thresholds : list of (category, estimate) and covariance
        Of an ordinal target; their covariance is with the coefficients behind them.
    df : float or None
        Degrees of freedom of t; None for z.
    df_method : str
    random, residual : as in a fit document
    extra : dict of str to list
        Values of variables that stand in blocks of random effects, by variable.
    nominal : list of str
        Those of them that are factors, whatever their values.
    statistics : dict
        logLik, AICc, BIC.
    predicted : list
        What the model predicts for each record.
    has_records : bool
        Whether the records are each one record, so that charts of them tell the truth.
    formula, engine, version : str
        As in a fit document. A formula that leaves the random part out is not told: the report then
        writes the whole of it from the effects and the blocks.
    order : list of str
        The variables in the order of the data, others among them.
    notes, warnings, conditions : lists of str
        As in a fit document.
    """

    call: str
    design: Design
    target: Target
    distribution: str
    link: Link
    estimates: np.ndarray
    covariance: Optional[np.ndarray]
    df: Optional[float] = None
    df_method: str = "asymptotic"
    has_errors: bool = True
    spreads: Optional[np.ndarray] = None
    thresholds: List[Tuple[Any, float]] = field(default_factory=list)
    threshold_covariance: Optional[np.ndarray] = None
    formula: Optional[str] = None
    random: List[Dict[str, Any]] = field(default_factory=list)
    residual: Dict[str, Any] = field(default_factory=dict)
    extra: Dict[str, List[Any]] = field(default_factory=dict)
    nominal: List[str] = field(default_factory=list)
    statistics: Dict[str, Any] = field(default_factory=dict)
    predicted: Optional[List[Any]] = None
    has_records: bool = True
    engine: str = "statsmodels"
    version: str = ""
    order: List[str] = field(default_factory=list)
    notes: List[str] = field(default_factory=list)
    warnings: List[str] = field(default_factory=list)
    conditions: List[str] = field(default_factory=list)


def information_criteria(
    log_likelihood: float, parameters: int, records: int
) -> Dict[str, Optional[float]]:
    """AICc (Hurvich and Tsai, Biometrika 76, 1989) and BIC (Schwarz, Annals of Statistics 6, 1978).

    Both count all estimated parameters, those of the covariance too, and all records, with the
    restricted likelihood as with the full one, as R's AIC and BIC do.
    """
    deviance = -2 * log_likelihood
    room = records - parameters - 1
    corrected = None
    if room > 0:
        corrected = deviance + 2 * parameters + 2 * parameters * (parameters + 1) / room
    return {
        "logLik": float(log_likelihood),
        "AICc": corrected,
        "BIC": float(deviance + parameters * np.log(records)),
    }
