"""Generalized linear models and generalized estimating equations: GLM and GEE."""

from __future__ import annotations

from typing import Any, Dict, List, Optional, Tuple

import numpy as np

from . import reads, unknown
from .linear_models import covariance_notes
from .records import (
    binary_predicted, binary_target, column_like, design_of, distribution_of, formula_of, frame_of,
    link_of, named_column, numeric_target, offset_notes, order_of, version,
)
from ..design import plain, plain_list
from ..errors import Unsupported
from ..formula import variable_of
from ..parts import Parts, Target, information_criteria


def _weights(model: Any, name: str) -> Optional[np.ndarray]:
    weights = getattr(model, name, None)
    if weights is None:
        return None
    weights = np.broadcast_to(np.asarray(weights, dtype=float), np.shape(model.endog))
    return None if np.all(weights == 1) else weights


def _is_whole(values: np.ndarray) -> bool:
    return bool(np.allclose(values, np.round(values), atol=1e-8))


def _levels_of_target(model: Any) -> Optional[Tuple[str, Any, Any]]:
    """The name, the event and the other level of a target of two texts or truth values, which the
    formula turned into two columns; the first is what statsmodels models."""
    names = model.endog_names
    if not isinstance(names, list) or len(names) != 2 or not all("[" in name for name in names):
        return None
    left = names[0].rsplit("[", 1)[0]
    levels = [name.rsplit("[", 1)[1][:-1] for name in names]
    frame = frame_of(model)
    name = left if frame is None else variable_of(left, frame) or left
    if frame is not None and name in frame.columns:
        by_text = {str(value): plain(value) for value in frame[name].unique()}
        levels = [by_text.get(level, level) for level in levels]
    return name, levels[0], levels[1]


def _events(model: Any, trials: np.ndarray) -> Target:
    """Events out of trials, named as the data name them."""
    events = np.asarray(model.endog, dtype=float) * trials
    frame = frame_of(model)
    names = model.endog_names
    first, second = names if isinstance(names, list) and len(names) == 2 else (None, None)
    # The left side is two columns, or a share.
    name, values = named_column(frame, first, np.round(events), first or "events")
    counted = f"{first} + {second}" if second else "trials"
    trials_name, trials_values = named_column(frame, None, np.round(trials), counted)
    return Target(name, values, trials=trials_name, trials_values=trials_values)


def binomial_target(model: Any, weights: Optional[np.ndarray]) -> Tuple[Target, List[str]]:
    """The target of a binomial model, and notes.

    Raises
    ------
    Unsupported
        For shares of an unknown number of trials.
    """
    levels = _levels_of_target(model)
    if levels is not None:
        name, event, other = levels
        events = np.asarray(model.endog) > 0.5
        values = [event if happened else other for happened in events]
        return Target(name, values, [other, event], reference=other), []
    endog = np.asarray(model.endog, dtype=float)
    trials = np.broadcast_to(np.asarray(getattr(model, "n_trials", 1), dtype=float), endog.shape)
    if np.any(trials != 1):
        return _events(model, trials), []
    if np.isin(endog, (0, 1)).all():
        return binary_target(model), []
    if weights is not None and _is_whole(weights) and _is_whole(weights * endog):
        return _events(model, weights), ["The weights are the numbers of trials."]
    raise Unsupported(
        "The target holds shares of an unknown number of trials; give events and other trials as "
        "'events + others ~ ...', or the trials as var_weights."
    )


def _target(model: Any, distribution: str) -> Tuple[Target, List[str], bool]:
    """The target, notes, and whether records can be shown."""
    frequencies = _weights(model, "freq_weights")
    is_gee = hasattr(model, "cov_struct")
    weights = _weights(model, "weights" if is_gee else "var_weights")
    notes: List[str] = []
    if distribution == "binomial":
        target, notes = binomial_target(model, weights)
        if target.trials is not None and notes:
            weights = None
    else:
        target = numeric_target(model)
    if frequencies is not None:
        notes.append("Records count as often as freq_weights say, so none of them are shown.")
    if weights is not None:
        notes.append("The records are weighted.")
    return target, notes, frequencies is None


def _predicted(target: Target, mean: np.ndarray) -> List[Any]:
    if target.categories is not None:
        return binary_predicted(target, mean)
    if target.trials_values is not None:
        return plain_list(np.asarray(mean) * np.asarray(target.trials_values, dtype=float))
    return plain_list(np.asarray(mean, dtype=float))


def _scale_parameters(family: str, result: Any, alpha: Optional[float]) -> List[Dict[str, Any]]:
    scale = float(result.scale)
    if family == "normal":
        return [{"parameter": "variance", "estimate": scale}]
    if family == "negative binomial":
        return [{"parameter": "dispersion", "estimate": alpha, "fixed": True}]
    if scale == 1:
        return [{"parameter": "variance", "estimate": 1, "fixed": True}]
    return [{"parameter": "dispersion", "estimate": scale}]


def _common(result: Any) -> Dict[str, Any]:
    """What a GLM and a GEE have in common, as members of `Parts`."""
    model = result.model
    distribution, notes = distribution_of(model.family)
    target, target_notes, has_records = _target(model, distribution)
    alpha = getattr(model.family, "alpha", None)  # of a negative binomial
    notes += target_notes + offset_notes(getattr(model, "_offset_exposure", None))
    if distribution == "negative binomial":
        notes.append(f"The dispersion {alpha:g} was given, not estimated.")
    elif distribution in ("poisson", "binomial") and float(result.scale) != 1:
        notes.append("Standard errors are widened by the root of the dispersion.")
    return dict(
        version=version(),
        formula=formula_of(model),
        design=design_of(model),
        target=target,
        distribution=distribution,
        link=link_of(model.family.link),
        estimates=np.asarray(result.params, dtype=float),
        covariance=np.asarray(result.cov_params(), dtype=float),
        residual={"structure": "identity",
                  "parameters": _scale_parameters(distribution, result, alpha)},
        order=order_of(model),
        predicted=_predicted(target, result.fittedvalues),
        has_records=has_records,
        notes=notes,
    )


@reads("statsmodels.genmod.generalized_linear_model.GLMResults")
def glm(result: Any, level: float) -> Parts:
    """The parts of a GLM. Its tests are of z, unless it was fitted with ``use_t``."""
    model = result.model
    if type(model).__name__ != "GLM":
        raise unknown(result)
    common = _common(result)
    notes = common.pop("notes") + covariance_notes(result)
    is_scaled = common["distribution"] in ("normal", "gamma", "inverse gaussian", "other")
    parameters = model.exog.shape[1] + int(is_scaled or float(result.scale) != 1)
    statistics: Dict[str, Any] = {}
    if common["distribution"] in ("poisson", "binomial") and float(result.scale) != 1:
        notes.append("A quasi-likelihood fit has no likelihood, AICc or BIC.")
    elif np.isfinite(result.llf):
        records = len(model.endog)
        statistics = information_criteria(float(result.llf), parameters, records)
        notes.append(f"AICc and BIC count {parameters} parameters and {records} records.")
    if getattr(result, "constraints", None) is not None:
        notes.append("The coefficients were constrained.")
    with_t = bool(getattr(result, "use_t", False))
    if not with_t:
        notes.append("Tests are of z and chi-square, as GLM has them.")
    converged = bool(getattr(result, "converged", True))
    return Parts(
        call="GLM.fit()",
        statistics=statistics,
        df=float(result.df_resid) if with_t else None,
        df_method="residual" if with_t else "asymptotic",
        notes=notes,
        conditions=[] if converged else ["not converged"],
        **common,
    )


#: The words for working correlations, by class name.
STRUCTURES = {"Independence": "identity", "Exchangeable": "compound symmetry",
              "Autoregressive": "ar1", "Unstructured": "unstructured"}

#: What the standard errors of a GEE are, by the kind that it was fitted with.
ERRORS = {"robust": "robust (sandwich)", "naive": "those of the working model",
          "bias_reduced": "robust, with the bias reduced (Mancl and DeRouen)"}


def _correlation(cov_struct: Any) -> List[Dict[str, Any]]:
    """The correlation of a working structure with a single one."""
    value = np.asarray(getattr(cov_struct, "dep_params", np.nan), dtype=float)
    if type(cov_struct).__name__ not in ("Exchangeable", "Autoregressive") or value.ndim:
        return []
    return [{"parameter": "Correlation", "estimate": float(value)}]


@reads("statsmodels.genmod.generalized_estimating_equations.GEEResults")
def gee(result: Any, level: float) -> Parts:
    """The parts of a GEE: no likelihood, no random effects, and standard errors that are named."""
    model = result.model
    if type(model).__name__ != "GEE":
        raise unknown(result)
    common = _common(result)
    frame = frame_of(model)
    name, values = named_column(frame, getattr(model, "_groups_name", None), model.groups, "Group")
    structure = type(model.cov_struct).__name__
    kind = getattr(result, "cov_type", "robust")
    notes = common.pop("notes") + [
        "Generalized estimating equations: there is no likelihood, so there are no AICc and BIC.",
        f"The working correlation is {structure}; standard errors are {ERRORS.get(kind, kind)}.",
        "Tests are of z and chi-square, as GEE has them.",
    ]
    if getattr(model, "constraint", None) is not None:
        notes.append("The coefficients were constrained.")
    residual = common["residual"]
    residual["subjects"] = [name]
    residual["structure"] = STRUCTURES.get(structure, "other")
    residual["parameters"] += _correlation(model.cov_struct)
    times = getattr(model, "time", None)
    if times is not None and frame is not None:
        times = np.asarray(times, dtype=float)
        column = column_like(frame, times[:, 0] if times.ndim == 2 else times)
        if column is not None:
            residual["repeated"] = [column]
            common["extra"] = {column: plain_list(frame[column])}
    common["extra"] = {**common.get("extra", {}), name: values}
    converged = bool(getattr(result, "converged", True))
    return Parts(
        call=f"GEE.fit(cov_type='{kind}')",
        nominal=[name],
        notes=notes,
        conditions=[] if converged else ["not converged"],
        **common,
    )


