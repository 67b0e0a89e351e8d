"""Makes the fit document of a result's parts (docs/fit.md)."""

from __future__ import annotations

import hashlib
import json
from typing import Any, Dict, List, Mapping, Optional, Union

import numpy as np
from scipy import stats

from . import linear
from .design import plain
from .errors import Unsupported
from .means import Wishes, effect_means, grand_mean, means_block
from .parts import Parts

#: What the report calls a variable, or its values: a text, or texts by value.
Labels = Mapping[str, Union[str, Mapping[Any, str]]]

#: How many of the most significant effects have a chart of their means.
MOST_CHARTED = 10

#: The words of fit documents for the adjustments; "other" where the numbers are made here.
ADJUSTMENTS = {"none": "none", "holm": "holm", "sequential sidak": "sequential sidak",
               "bonferroni": "other", "sidak": "other"}
ADJUSTMENT_NAMES = {"bonferroni": "Bonferroni", "sidak": "Šidák"}


def fit_document(
    parts: Parts,
    wishes: Wishes,
    coefficients: str = "as fitted",
    labels: Optional[Labels] = None,
    value_labels: Optional[Mapping[str, Mapping[Any, str]]] = None,
    title: Optional[str] = None,
    name: Optional[str] = None,
) -> Dict[str, Any]:
    """The fit document of a model, with the means that were asked for.

    Parameters
    ----------
    parts : Parts
    wishes : Wishes
    coefficients : {"as fitted", "levels"}
        Whether rows of contrast-coded factors are to be turned into levels.

    Returns
    -------
    dict
        JSON values alone.

    Raises
    ------
    Unsupported
    """
    maker = _Maker(parts, wishes, coefficients == "levels")
    document = maker.make(labels or {}, value_labels or {})
    if title:
        document["title"] = title
    if name:
        document["name"] = name
    return document


class _Maker:
    def __init__(self, parts: Parts, wishes: Wishes, in_levels: bool) -> None:
        self.parts, self.wishes, self.in_levels = parts, wishes, in_levels
        self.notes = list(parts.notes)

    def make(
        self, labels: Labels, value_labels: Mapping[str, Mapping[Any, str]]
    ) -> Dict[str, Any]:
        parts = self.parts
        document: Dict[str, Any] = {"hierfit": "hierfit-fit-1", "engine": {}}
        if parts.formula:
            document["formula"] = parts.formula
        document["variables"] = self._variables(labels, value_labels)
        document["target"] = self._target()
        document["distribution"] = parts.distribution
        document["link"] = parts.link.name
        if parts.link.parameter is not None:
            document["link.parameter"] = parts.link.parameter
        document["fixed"] = self._fixed()
        document["random"] = parts.random
        if parts.residual:
            document["residual"] = parts.residual
        document["coefficients"] = self._coefficients()
        document["statistics"] = {key: linear.finite(value)
                                  for key, value in parts.statistics.items()}
        document["conf.level"] = self.wishes.level
        document["df.method"] = parts.df_method
        document["adjust"] = ADJUSTMENTS[self.wishes.adjust]
        self._add_covariance(document)
        self._add_tests(document)
        self._add_means(document)
        if parts.has_records:
            document["data"] = self._data()
        document["engine"] = self._engine()
        return document

    def _engine(self) -> Dict[str, Any]:
        engine: Dict[str, Any] = {"name": self.parts.engine, "version": self.parts.version,
                                  "call": self.parts.call}
        for member, sentences in (("warnings", self.parts.warnings), ("notes", self.notes),
                                  ("conditions", self.parts.conditions)):
            if sentences:
                engine[member] = sentences
        return engine

    # The variables ---------------------------------------------------------------------------

    def _values_by_name(self) -> Dict[str, List[Any]]:
        """The records of all variables, in the order of the data where that is known."""
        parts, target = self.parts, self.parts.target
        values: Dict[str, List[Any]] = {target.variable: target.values}
        if target.trials is not None and target.trials_values is not None:
            values[target.trials] = target.trials_values
        for name in [*parts.design.factors, *parts.design.covariates]:
            values.setdefault(name, parts.design.records_of(name))
        for name, column in parts.extra.items():
            values.setdefault(name, column)
        order = {name: at for at, name in enumerate(parts.order)}
        return dict(sorted(values.items(), key=lambda item: order.get(item[0], len(order))))

    def _categories(self, name: str, values: List[Any]) -> Optional[List[Any]]:
        """The levels of a factor, in their order; None for a number."""
        parts = self.parts
        if name == parts.target.variable:
            return parts.target.categories
        if name in parts.design.factors:
            return parts.design.factors[name]
        if name not in parts.nominal and not any(isinstance(value, str) for value in values):
            return None
        return sorted({value for value in values if value is not None},
                      key=lambda value: (isinstance(value, str), value))

    def _variables(
        self, labels: Labels, value_labels: Mapping[str, Mapping[Any, str]]
    ) -> List[Dict[str, Any]]:
        values = self._values_by_name()
        for name in [*labels, *value_labels]:
            if name not in values:
                raise Unsupported(
                    f"labels has {name!r}, which is no variable of the model; it has "
                    + ", ".join(values) + "."
                )
        variables = []
        for name, column in values.items():
            variable: Dict[str, Any] = {"name": name}
            label = labels.get(name)
            if isinstance(label, str):
                variable["label"] = label
            categories = self._categories(name, column)
            if categories is not None:
                variable["values"] = categories
            elif all(isinstance(value, int) for value in column if value is not None):
                variable["type"] = "integer"
            texts = value_labels.get(name) or (label if isinstance(label, Mapping) else None)
            if texts:
                variable["labels"] = {_key(value): text for value, text in texts.items()}
            variables.append(variable)
        return variables

    def _target(self) -> Dict[str, Any]:
        target = self.parts.target
        member: Dict[str, Any] = {"variable": target.variable}
        for key, value in (("trials", target.trials), ("trials.constant", target.trials_constant),
                           ("reference", target.reference)):
            if value is not None:
                member[key] = value
        return member

    def _data(self) -> Dict[str, Any]:
        """The records that the summaries are made from; those of other variables stay here."""
        parts = self.parts
        wanted = {parts.target.variable, parts.target.trials,
                  *parts.residual.get("subjects", []), *parts.residual.get("repeated", [])}
        for block in parts.random:
            wanted.update(block.get("subjects", []))
        columns = {name: values for name, values in self._values_by_name().items()
                   if name in wanted}
        text = json.dumps(columns, sort_keys=True, ensure_ascii=False, allow_nan=False)
        data: Dict[str, Any] = {"columns": columns,
                                "hash": "sha256:" + hashlib.sha256(text.encode()).hexdigest()}
        if self.parts.predicted is not None:
            data["predicted"] = self.parts.predicted
        return data

    # The fixed part --------------------------------------------------------------------------

    def _turns(self) -> bool:
        """Whether contrast-coded rows go along with what turns them into levels."""
        design = self.parts.design
        coded = [column for column in design.columns
                 if column.effect is not None and column.levels is None]
        if not self.in_levels or not coded:
            return False
        if self.parts.covariance is None:
            raise Unsupported("coefficients='levels' needs the covariance of the coefficients.")
        if any(set(column.columns) - set(design.codings) for column in coded):
            raise Unsupported(
                "coefficients='levels' needs one coding for each factor, and here one differs "
                "between the terms."
            )
        return True

    def _fixed(self) -> Dict[str, Any]:
        design = self.parts.design
        fixed: Dict[str, Any] = {"effects": [effect.member() for effect in design.effects]}
        if not design.has_thresholds:
            fixed["intercept"] = design.has_intercept
        if self._turns():
            used = {name for column in design.columns for name in column.columns}
            fixed["codings"] = [{"variable": name, "matrix": coding.tolist()}
                                for name, coding in design.codings.items() if name in used]
        return fixed

    def _row(self, estimate: float, error: float) -> Dict[str, Any]:
        row: Dict[str, Any] = {"estimate": linear.finite(estimate)}
        if self.parts.has_errors:
            row["std.error"] = linear.finite(error)
            if self.wishes.df is not None:
                row["df"] = self.wishes.df
            return row
        distance = linear.reach(self.wishes.level, None) * error
        row["conf.low"] = linear.finite(estimate - distance)
        row["conf.high"] = linear.finite(estimate + distance)
        return row

    def _errors(self) -> np.ndarray:
        if self.parts.covariance is not None:
            return linear.standard_errors(self.parts.covariance)
        if self.parts.spreads is not None:
            return self.parts.spreads
        return np.full(len(self.parts.estimates), np.nan)

    def _coefficients(self) -> List[Dict[str, Any]]:
        parts, turns = self.parts, self._turns()
        rows = []
        thresholds = parts.threshold_covariance
        for at, (category, estimate) in enumerate(parts.thresholds):
            error = np.nan if thresholds is None else np.sqrt(thresholds[at, at])
            rows.append({"threshold": category, **self._row(estimate, error)})
        for column, estimate, error in zip(parts.design.columns, parts.estimates, self._errors()):
            row: Dict[str, Any] = {"term": column.name}
            if column.effect is not None:
                row["effect"] = column.effect
            if column.levels:
                row["levels"] = column.levels
            elif column.columns and turns:
                row["columns"] = column.columns
                row["levels"] = {}
            rows.append({**row, **self._row(float(estimate), float(error))})
        return rows

    def _add_covariance(self, document: Dict[str, Any]) -> None:
        parts = self.parts
        covariance = parts.covariance
        if parts.thresholds:
            covariance = parts.threshold_covariance
        if covariance is not None and parts.has_errors and np.all(np.isfinite(covariance)):
            document["vcov"] = linear.lower_triangle(covariance)

    # Tests and means -------------------------------------------------------------------------

    def _test(self, function: np.ndarray) -> Dict[str, Any]:
        assert self.parts.covariance is not None
        statistic, rank = linear.wald_f(function, self.parts.estimates, self.parts.covariance)
        test: Dict[str, Any] = {"statistic": linear.finite(statistic), "num.df": rank}
        if self.wishes.df is not None:
            test["den.df"] = self.wishes.df
        return test

    def _add_tests(self, document: Dict[str, Any]) -> None:
        parts = self.parts
        if parts.covariance is None or not parts.has_errors or not parts.design.effects:
            return
        if not np.all(np.isfinite(parts.covariance)):
            return
        try:
            model, effects = parts.design.hypotheses()
        except Unsupported as reason:
            self.notes.append(str(reason))
            return
        document["tests"] = {
            "type": "III",
            "model": self._test(model),
            "effects": [{"effect": at, **self._test(function)}
                        for at, function in enumerate(effects)],
        }

    def _add_means(self, document: Dict[str, Any]) -> None:
        parts, wishes = self.parts, self.wishes
        if parts.design.has_thresholds:
            if wishes.means:
                raise Unsupported("An ordinal target has no means; leave means out.")
            return
        if parts.design.cell_rows is None and not wishes.means:
            return
        try:
            parts.design.require_full_rank()
            document["grand.mean"] = grand_mean(parts, wishes)
            if parts.has_errors:
                document["effect.means"] = self._charted(document)
        except Unsupported as reason:
            if wishes.means:
                raise
            if str(reason) not in self.notes:
                self.notes.append(str(reason))
            return
        if wishes.means:
            document["means"] = [means_block(parts, request, wishes) for request in wishes.means]
            self._note_means()

    def _charted(self, document: Dict[str, Any]) -> List[Dict[str, Any]]:
        """The means of the most significant effects."""
        significant = {}
        effects = self.parts.design.effects
        for effect, test in zip(effects, document.get("tests", {}).get("effects", [])):
            p_value = _upper_p(test)
            if p_value < 1 - self.wishes.level:
                significant[effect.fields] = p_value
        chosen = sorted(significant, key=lambda fields: significant[fields])[:MOST_CHARTED]
        blocks = effect_means(self.parts, self.wishes)
        return [block for block in blocks if tuple(block["fields"]) in chosen]

    def _note_means(self) -> None:
        wishes, design = self.wishes, self.parts.design
        held = {name: value for name, value in {**design.averages, **(wishes.at or {})}.items()
                if name not in design.covariates}
        if held:
            told = ", ".join(f"{name} = {value:g}" for name, value in held.items())
            self.notes.append(f"Means are at {told}.")
        if wishes.contrasts is None:
            return
        if wishes.scale == "response" and self.parts.link.name != "identity":
            self.notes.append(
                "Contrasts are differences of means on the scale of the target, their variances "
                "by the delta method."
            )
        if wishes.scale == "link":
            self.notes.append("Means and contrasts are on the scale of the link.")
        if wishes.adjust in ADJUSTMENT_NAMES and self.parts.has_errors:
            self.notes.append(
                "The significance of contrasts is adjusted, and their bounds are widened, by the "
                f"method of {ADJUSTMENT_NAMES[wishes.adjust]}."
            )


def _upper_p(test: Mapping[str, Any]) -> float:
    statistic, above = test.get("statistic"), test["num.df"]
    if statistic is None or above == 0:
        return 1.0
    if "den.df" in test:
        return float(stats.f.sf(statistic, above, test["den.df"]))
    return float(stats.chi2.sf(statistic * above, above))


def _key(value: Any) -> str:
    return str(plain(value))
