"""Linear models: OLS, WLS and their kin."""

from __future__ import annotations

from typing import Any, Dict, List

import numpy as np

from . import reads, unknown
from .records import design_of, formula_of, numeric_target, order_of, version
from ..design import plain_list
from ..parts import IDENTITY, Parts, information_criteria


#: The models that are least squares of a normal target; others share the class of their results.
MODELS = ("OLS", "WLS", "GLS", "GLSAR")


def covariance_notes(result: Any) -> List[str]:
    """A note that names the standard errors, where they are not those of the model."""
    kind = getattr(result, "cov_type", "nonrobust")
    return [] if kind == "nonrobust" else [f"Standard errors are robust: {kind}."]


@reads("statsmodels.regression.linear_model.RegressionResults")
def linear_model(result: Any, level: float) -> Parts:
    """The parts of a linear model. Its tests are of t with the residual degrees of freedom, unless
    robust standard errors came with tests of z."""
    model = result.model
    if type(model).__name__ not in MODELS:
        raise unknown(result)
    notes = covariance_notes(result)
    weights = np.asarray(getattr(model, "weights", 1.0), dtype=float)
    if np.any(weights != 1):
        notes.append("The records are weighted; the residual variance is that of a weight of 1.")
    if getattr(model, "sigma", None) is not None and np.ndim(model.sigma) == 2:
        notes.append("The residuals have a covariance that was given.")
    with_t = bool(result.use_t)
    records = len(model.endog)
    parameters = model.exog.shape[1] + 1
    notes.append(f"AICc and BIC count {parameters} parameters and {records} records.")
    variance: Dict[str, Any] = {"parameter": "variance", "estimate": float(result.scale)}
    if getattr(result, "cov_type", "nonrobust") == "nonrobust" and result.df_resid > 0:
        variance["std.error"] = float(result.scale) * float(np.sqrt(2 / result.df_resid))
        notes.append("The standard error of the residual variance is that of normal residuals.")
    return Parts(
        call=f"{type(model).__name__}.fit()",
        version=version(),
        formula=formula_of(model),
        design=design_of(model),
        target=numeric_target(model),
        distribution="normal",
        link=IDENTITY,
        estimates=np.asarray(result.params, dtype=float),
        covariance=np.asarray(result.cov_params(), dtype=float),
        df=float(result.df_resid) if with_t else None,
        df_method="residual" if with_t else "asymptotic",
        residual={"structure": "identity",
                  "parameters": [variance]},
        order=order_of(model),
        statistics=information_criteria(float(result.llf), parameters, records),
        predicted=plain_list(np.asarray(result.fittedvalues, dtype=float)),
        notes=notes,
    )
