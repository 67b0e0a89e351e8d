"""Discrete models of one likelihood each: Logit, Probit, Poisson, NegativeBinomial."""

from __future__ import annotations

from typing import Any, Dict, List

import numpy as np
from scipy import special, stats

from . import reads, unknown
from .linear_models import covariance_notes
from .records import (
    binary_predicted, binary_target, design_of, formula_of, numeric_target, offset_notes, order_of,
    version,
)
from ..design import plain_list
from ..errors import Unsupported
from ..parts import Link, Parts, information_criteria

_LOGIT = Link("logit", special.expit, lambda eta: special.expit(eta) * special.expit(-eta))
_PROBIT = Link("probit", stats.norm.cdf, stats.norm.pdf)
_LOG = Link("log", np.exp, np.exp)

#: Distribution and link, by the class of the model.
MODELS = {
    "Logit": ("binomial", _LOGIT),
    "Probit": ("binomial", _PROBIT),
    "Poisson": ("poisson", _LOG),
    "NegativeBinomial": ("negative binomial", _LOG),
}


def _dispersion(result: Any, width: int, covariance: np.ndarray) -> List[Dict[str, Any]]:
    """The dispersion of a negative binomial model: the variance of a count with mean mu is
    mu + mu^2 * dispersion."""
    estimate, variance = float(result.params[width]), float(covariance[width, width])
    error = float(np.sqrt(variance))
    return [{"parameter": "dispersion", "estimate": estimate, "std.error": error}]


@reads("statsmodels.discrete.discrete_model.DiscreteResults")
def discrete(result: Any, level: float) -> Parts:
    """The parts of a discrete model. Its tests are of z."""
    model = result.model
    name = type(model).__name__
    if name not in MODELS or getattr(model, "loglike_method", "nb2") != "nb2":
        raise unknown(result)
    distribution, link = MODELS[name]
    is_binary = distribution == "binomial"
    if is_binary and not np.isin(model.endog, (0, 1)).all():
        raise Unsupported(f"The target of a {name} model has to be 0 or 1 to be reported.")
    target = binary_target(model) if is_binary else numeric_target(model)
    mean = np.asarray(result.predict(), dtype=float)
    covariance = np.asarray(result.cov_params(), dtype=float)
    design = design_of(model)
    width = design.matrix.shape[1]
    parameters = len(np.asarray(result.params))
    scale: List[Dict[str, Any]] = [{"parameter": "variance", "estimate": 1, "fixed": True}]
    if distribution == "negative binomial":
        scale = _dispersion(result, width, covariance)
    notes = [
        *covariance_notes(result),
        *offset_notes(getattr(model, "offset", None), getattr(model, "exposure", None)),
        f"AICc and BIC count {parameters} parameters and {len(model.endog)} records.",
        f"Tests are of z and chi-square, as {name} has them.",
    ]
    converged = bool(result.mle_retvals.get("converged", True))
    return Parts(
        call=f"{name}.fit()",
        version=version(),
        formula=formula_of(model),
        design=design,
        target=target,
        distribution=distribution,
        link=link,
        estimates=np.asarray(result.params, dtype=float)[:width],
        covariance=covariance[:width, :width],
        residual={"structure": "identity", "parameters": scale},
        order=order_of(model),
        statistics=information_criteria(float(result.llf), parameters, len(model.endog)),
        predicted=binary_predicted(target, mean) if is_binary else plain_list(mean),
        notes=notes,
        conditions=[] if converged else ["not converged"],
    )
