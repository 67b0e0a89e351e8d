"""Posteriors of generalized linear mixed models: BinomialBayesMixedGLM, PoissonBayesMixedGLM."""

from __future__ import annotations

from typing import Any, Dict, List, Optional

import numpy as np
import pandas as pd
from scipy import stats

from . import reads
from .columns import RandomColumn, read_columns, values_of
from .records import (
    binary_predicted, design_of, distribution_of, frame_of, link_of, numeric_target,
    order_of, version,
)
from .generalized import binomial_target
from ..design import plain_list
from ..parts import Parts

#: The variance below which a posterior counts as collapsed, on the scale of the link.
NEGLIGIBLE = 1e-6


def _common_column(model: Any, at: int, frame: Optional[pd.DataFrame]) -> Optional[RandomColumn]:
    """What all columns of a variance component are, apart from the levels."""
    if frame is None:
        return None
    places = np.flatnonzero(np.asarray(model.ident) == at)
    columns = read_columns([model.vc_names[place] for place in places], frame)
    if columns is None:
        return None
    matrix = np.asarray(model.exog_vc.tocsc()[:, places].todense(), dtype=float)
    for column, values in zip(columns, matrix.T):
        told = values_of(column, frame)
        if told is None or not np.allclose(told, values):
            return None
    shapes = {(column.factors, column.covariates) for column in columns}
    return columns[0] if len(shapes) == 1 and columns[0].factors else None


def _blocks(result: Any, frame: Optional[pd.DataFrame], extra: Dict[str, List[Any]],
            nominal: List[str], notes: List[str], level: float) -> List[Dict[str, Any]]:
    """A block for each variance component: the median of the posterior of its variance, and an
    interval, from the normal posterior of the logarithm of its standard deviation."""
    model = result.model
    distance = float(stats.norm.isf((1 - level) / 2))
    blocks = []
    for at, (mean, deviation) in enumerate(zip(result.vcp_mean, result.vcp_sd)):
        name = str(model.vcp_names[at])
        low, median, high = np.exp(2 * (mean + distance * deviation * np.array([-1, 0, 1])))
        parameter: Dict[str, Any] = {"parameter": "variance", "estimate": float(median),
                                     "conf.low": float(low), "conf.high": float(high)}
        column = _common_column(model, at, frame)
        if column is None or frame is None:
            notes.append(f"The variance component {name} is none of an intercept or a slope.")
            blocks.append({"structure": "identity",
                           "parameters": [{**parameter, "parameter": name}]})
            continue
        for field in [*column.factors, *column.covariates]:
            extra[field] = plain_list(frame[field])
        nominal += [field for field in column.factors if field not in nominal]
        block: Dict[str, Any] = {"subjects": list(column.factors),
                                 "structure": "variance components",
                                 "intercept": not column.covariates,
                                 "parameters": [parameter],
                                 "covariances": [{"matrix": [[float(median)]]}]}
        if column.covariates:
            block["effects"] = [{"fields": list(column.covariates)}]
            parameter["terms"] = [0]
        blocks.append(block)
    return blocks


@reads("statsmodels.genmod.bayes_mixed_glm.BayesMixedGLMResults")
def bayes(result: Any, level: float) -> Parts:
    """The parts of a posterior. Its standard deviations are no standard errors: intervals are made
    from them, and neither t nor p."""
    model = result.model
    whole = np.asarray(result._cov_params, dtype=float)
    is_laplace = whole.ndim == 2
    width = int(model.k_fep)
    spreads = np.asarray(result.fe_sd, dtype=float)
    distribution, notes = distribution_of(model.family)
    method = "the mode, by Laplace's method" if is_laplace else "the mean, by variational Bayes"
    notes += [
        f"Coefficients are of a posterior: {method}; variances are medians. Bounds are those of "
        "credible intervals; the standard deviations of a posterior are no standard errors, so "
        "there are no tests.",
        f"Priors are normal: with the standard deviation {float(model.fe_p):g} for coefficients "
        f"and {float(model.vcp_p):g} for the logarithms of the standard deviations of random effects.",
    ]
    if not is_laplace:
        notes.append(
            "Variational Bayes has no covariance of the coefficients, so means have no bounds.")
    frame = frame_of(model)
    extra: Dict[str, List[Any]] = {}
    nominal: List[str] = []
    blocks = _blocks(result, frame, extra, nominal, notes, level)
    is_binomial = distribution == "binomial"
    target = binomial_target(model, None)[0] if is_binomial else numeric_target(model)
    linear = np.asarray(model.exog) @ result.fe_mean + model.exog_vc.dot(result.vc_mean)
    mean = np.asarray(model.family.link.inverse(np.asarray(linear).ravel()))
    outcome = result.optim_retvals
    conditions = [] if outcome is None or outcome.success else ["not converged"]
    if np.any(np.exp(2 * np.asarray(result.vcp_mean)) < NEGLIGIBLE):
        conditions.append("covariance values doubtful")
        notes.append("A variance is all but 0: the mode of its posterior is on the boundary.")
    return Parts(
        call=f"{type(model).__name__}.{'fit_map' if is_laplace else 'fit_vb'}()",
        version=version(),
        design=design_of(model),
        target=target,
        distribution=distribution,
        link=link_of(model.family.link),
        estimates=np.asarray(result.fe_mean, dtype=float),
        covariance=whole[:width, :width] if is_laplace else None,
        has_errors=False,
        spreads=spreads,
        df_method="other",
        random=blocks,
        extra=extra,
        nominal=nominal,
        order=order_of(model),
        predicted=binary_predicted(target, mean) if target.categories else plain_list(mean),
        notes=notes,
        conditions=conditions,
    )
