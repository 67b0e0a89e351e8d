"""Reports of fitted models: tables, charts, estimated means and contrasts, from statsmodels.

>>> import hierfit
>>> r = hierfit.report(result, means=["spp | mined"], contrasts="pairwise")  # doctest: +SKIP
>>> r.save("report.html", "paper.docx", style="apa")                         # doctest: +SKIP

The command ``hierfit`` makes the reports; this package writes the fit document that it reads.
"""

from __future__ import annotations

from typing import Any, Mapping, Optional, Sequence, Union

from .document import ADJUSTMENTS, Labels, fit_document
from .engines import parts_of
from .errors import CommandFailed, CommandMissing, HierfitError, HierfitWarning, Unsupported
from .means import Wishes
from .reports import Look, Report

__version__ = "0.1.0"

__all__ = [
    "CommandFailed", "CommandMissing", "HierfitError", "HierfitWarning", "Look", "Report",
    "Unsupported", "fit", "report",
]

#: How the degrees of freedom of tests may be asked for.
_DF = ("engine", "residual", "asymptotic")


def _one_of(name: str, value: str, words: Sequence[str]) -> None:
    if value not in words:
        told = ", ".join(map(repr, words))
        raise Unsupported(f"{name} is {value!r}; it may be {told}.")


def report(
    result: Any,
    means: Union[str, Sequence[str]] = (),
    contrasts: Optional[str] = None,
    *,
    reference: Optional[Mapping[str, Any]] = None,
    adjust: str = "holm",
    level: float = 0.95,
    scale: str = "response",
    at: Optional[Mapping[str, float]] = None,
    df: str = "engine",
    coefficients: str = "as fitted",
    labels: Optional[Labels] = None,
    value_labels: Optional[Mapping[str, Mapping[Any, str]]] = None,
    title: Optional[str] = None,
    name: Optional[str] = None,
) -> Report:
    """The report of a fitted model.

    Parameters
    ----------
    result
        A result of statsmodels: MixedLM, GEE, BinomialBayesMixedGLM, PoissonBayesMixedGLM, GLM,
        OLS, WLS, GLS, Logit, Probit, Poisson, NegativeBinomial or OrderedModel.
    means : str or list of str
        Factors whose means are estimated: "a"; "a | b", of all combinations, with contrasts of a
        within each level of b. Other factors are averaged over with equal weights, covariates are
        held at their means.
    contrasts : {"pairwise", "deviation", "simple"}, optional
        Each level with each, with the mean of all, or with a reference.
    reference : dict, optional
        The reference level of simple contrasts, by factor; else the first level.
    adjust : {"none", "holm", "sequential sidak", "bonferroni", "sidak"}
        How the p values of contrasts are adjusted, among those of the same levels of other factors.
    level : float
        Of all intervals, between 0 and 1.
    scale : {"response", "link"}
        What means and contrasts are on.
    at : dict, optional
        Values that covariates are held at, in place of their means.
    df : {"engine", "residual", "asymptotic"}
        The degrees of freedom of all tests: those that the engine has, if any; records less
        coefficients; none, for z and chi-square.
    coefficients : {"as fitted", "levels"}
        Whether coefficients of contrast-coded factors are turned into those of levels.
    labels : dict, optional
        Labels of variables, by name.
    value_labels : dict, optional
        Labels of values, by variable and value.
    title, name : str, optional
        The title of the report, and a short name of the model.

    Returns
    -------
    Report

    Raises
    ------
    Unsupported
        When no reader knows the result, or something is asked for that it cannot give.

    Examples
    --------
    >>> r = report(result, means=["spp | mined"], contrasts="pairwise",
    ...            labels={"spp": "Species"})               # doctest: +SKIP
    """
    _one_of("adjust", adjust, tuple(ADJUSTMENTS))
    _one_of("scale", scale, ("response", "link"))
    _one_of("df", df, _DF)
    _one_of("coefficients", coefficients, ("as fitted", "levels"))
    if contrasts is not None:
        _one_of("contrasts", contrasts, ("pairwise", "deviation", "simple"))
    if not 0 < level < 1:
        raise Unsupported(f"level is {level}; it has to lie between 0 and 1.")
    parts = parts_of(result, level)
    if not parts.has_errors and df != "engine":
        raise Unsupported("A posterior has no tests, so it has no degrees of freedom.")
    if df == "residual":
        rows, columns = parts.design.matrix.shape
        parts.df, parts.df_method = float(rows - columns - len(parts.thresholds)), "residual"
    elif df == "asymptotic":
        parts.df, parts.df_method = None, "asymptotic"
    for variable in at or {}:
        if variable not in parts.design.averages:
            known = ", ".join(parts.design.averages) or "none"
            raise Unsupported(
                f"at has {variable!r}, which is no covariate of the model; its covariates: {known}."
            )
    for factor in reference or {}:
        if factor not in parts.design.factors:
            known = ", ".join(parts.design.factors) or "none"
            raise Unsupported(
                f"reference has {factor!r}, which is no factor of the model; its factors: {known}."
            )
    wishes = Wishes(
        means=(means,) if isinstance(means, str) else tuple(means),
        contrasts=contrasts,
        reference=dict(reference or {}),
        adjust=adjust,
        level=level,
        scale=scale,
        at=dict(at or {}),
        df=parts.df,
    )
    return Report(fit_document(parts, wishes, coefficients, labels, value_labels, title, name))


def fit(document: Mapping[str, Any]) -> Report:
    """The report of a fit document of your own, for engines that no reader knows.

    Parameters
    ----------
    document : mapping
        As docs/fit.md tells; the member "hierfit" may be left out.

    Returns
    -------
    Report

    Examples
    --------
    >>> r = fit({"variables": [{"name": "y"}, {"name": "x"}],
    ...          "target": {"variable": "y"}, "distribution": "normal", "link": "identity",
    ...          "fixed": {"effects": [{"fields": ["x"]}]},
    ...          "coefficients": [{"estimate": 1.5, "std.error": 0.5},
    ...                           {"effect": 0, "estimate": 2.0, "std.error": 0.25}]})
    """
    return Report({"hierfit": "hierfit-fit-1", **document})
