"""Ordinal targets: OrderedModel."""

from __future__ import annotations

from typing import Any, Tuple

import numpy as np

from . import reads
from .linear_models import covariance_notes
from .records import design_of, formula_of, offset_notes, order_of, target_name, version
from ..design import plain
from ..errors import Unsupported
from ..parts import IDENTITY, Link, Parts, Target, information_criteria

#: Words for links, by the distribution of the latent variable.
LINKS = {"norm": "probit", "logistic": "logit", "cauchy": "cauchit"}


def thresholds_of(result: Any) -> Tuple[np.ndarray, np.ndarray]:
    """The thresholds, and the covariance of the thresholds and the coefficients behind them.

    OrderedModel estimates the lowest threshold and the logarithms of the steps to the next ones,
    and prints these with their standard errors. A threshold is the sum of the first and the steps;
    its covariance follows by the delta method.

    Returns
    -------
    thresholds : (k - 1,) array
    covariance : (k - 1 + p, k - 1 + p) array
    """
    params = np.asarray(result.params, dtype=float)
    count = result.model.k_levels - 1
    width = len(params) - count
    steps = params[width:]
    thresholds = np.concatenate([steps[:1], np.exp(steps[1:])]).cumsum()
    slopes = np.tril(np.ones((count, count))) * np.concatenate([[1.0], np.exp(steps[1:])])
    change = np.zeros((len(params), len(params)))
    change[:count, width:] = slopes
    change[count:, :width] = np.eye(width)
    covariance = np.asarray(result.cov_params(), dtype=float)
    return thresholds, change @ covariance @ change.T


@reads("statsmodels.miscmodels.ordinal_model.OrderedResults")
def ordered(result: Any, level: float) -> Parts:
    """The parts of an OrderedModel. Its tests are of z."""
    model = result.model
    name = getattr(model.distr, "name", type(model.distr).__name__)
    if name not in LINKS:
        raise Unsupported(
            f"The latent distribution {name} is no link that reports know; logistic, normal and "
            "Cauchy ones are."
        )
    categories = [plain(label) for label in model.labels]
    codes = np.asarray(model.endog, dtype=int)
    thresholds, covariance = thresholds_of(result)
    count = len(thresholds)
    likeliest = np.asarray(result.predict()).argmax(axis=1)
    parameters = len(covariance)
    converged = bool(result.mle_retvals.get("converged", True))
    return Parts(
        call=f"OrderedModel.fit(distr='{name}')",
        version=version(),
        formula=formula_of(model),
        design=design_of(model, has_thresholds=True),
        target=Target(target_name(model), [categories[code] for code in codes], categories),
        distribution="ordinal",
        link=Link(LINKS[name], IDENTITY.inverse, IDENTITY.slope),
        estimates=np.asarray(result.params, dtype=float)[: parameters - count],
        covariance=covariance[count:, count:],
        thresholds=list(zip(categories[:-1], map(float, thresholds))),
        threshold_covariance=covariance,
        order=order_of(model),
        statistics=information_criteria(float(result.llf), parameters, len(codes)),
        predicted=[categories[code] for code in likeliest],
        notes=[
            *covariance_notes(result),
            *offset_notes(getattr(model, "offset", None)),
            "Thresholds are summed from the steps that OrderedModel estimates, their standard "
            "errors by the delta method.",
            f"AICc and BIC count {parameters} parameters and {len(codes)} records.",
            "Tests are of z and chi-square, as OrderedModel has them.",
        ],
        conditions=[] if converged else ["not converged"],
    )
