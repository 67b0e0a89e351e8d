"""Linear mixed models: MixedLM."""

from __future__ import annotations

from typing import Any, Dict, List, Optional, Sequence, Tuple

import numpy as np
from scipy import sparse


from . import reads, variances
from .columns import RandomColumn, level_of, read_columns, values_of
from .records import (
    design_of, frame_of, named_column, numeric_target, order_of, version,
)
from ..design import plain_list
from ..linear import finite, standard_errors
from ..parts import IDENTITY, Parts, information_criteria

#: The share of the residual variance below which a variance counts as 0.
NEGLIGIBLE = 1e-6

BOUNDARY = (
    "The estimates of the random effects are on the boundary of what is possible (a variance of 0, "
    "or effects that depend on one another), where covariance parameters have no standard errors."
)


class _Blocks:
    """The blocks of random effects, and the values of the variables in them."""

    def __init__(self, result: Any) -> None:
        self.result, self.model = result, result.model
        self.frame = frame_of(self.model)
        self.notes: List[str] = []
        self.conditions: List[str] = []
        self.extra: Dict[str, List[Any]] = {}
        self.nominal: List[str] = []
        self.group = self._group()
        self.psi = np.asarray(result.cov_re, dtype=float).reshape(
            self.model.k_re, self.model.k_re)
        self.components = np.atleast_1d(result.vcomp)[: self.model.k_vc].astype(float)
        self.triangle = [(row, column) for row in range(self.model.k_re)
                         for column in range(row + 1)]
        self.free = self._free()
        self.errors = self._errors()
        self.blocks = self._blocks()

    def _group(self) -> Optional[str]:
        """The variable of the groups; None where all records are one group."""
        if self.model.n_groups == 1:
            return None
        labels = np.empty(len(self.model.endog), dtype=object)
        for label, records in self.model.row_indices.items():
            labels[records] = label
        names = getattr(self.model.data, "exog_re_names", None) or ["Group"]
        # A random intercept has the name of the groups, also where missing='drop' took their column.
        is_named = self.model.k_re > 0 and np.all(np.asarray(self.model.exog_re)[:, 0] == 1)
        otherwise = str(names[0]) if is_named else "Group"
        name, values = named_column(self.frame, names[0], labels, otherwise)
        self._add_subject(name, values)
        return name

    def _add_subject(self, name: str, values: List[Any]) -> None:
        self.extra[name] = values
        if name not in self.nominal:
            self.nominal.append(name)

    def _free(self) -> np.ndarray:
        """Which covariance parameters were estimated, the residual variance last."""
        count = len(self.triangle) + self.model.k_vc
        mask = self.result.freepat
        if mask is None:
            return np.ones(count + 1, dtype=bool)
        free = [bool(mask.cov_re[place]) for place in self.triangle]
        free += [bool(value) for value in np.atleast_1d(mask.vcomp)[: self.model.k_vc]]
        return np.array([*free, True])

    def _errors(self) -> np.ndarray:
        none = np.full(len(self.free), np.nan)
        if self._is_on_boundary():
            self.notes.append(BOUNDARY)
            self.conditions.append("covariance values doubtful")
            return none
        if not self.result.converged:
            return none
        structure = variances.structure_of(self.result)
        covariance = variances.covariance(structure, bool(self.result.reml), self.free)
        if covariance is None:
            self.notes.append(
                "The information of the covariance parameters is not positive definite at the "
                "estimates, so they have no standard errors."
            )
            self.conditions.append("covariance values doubtful")
            return none
        self.notes.append(
            "Standard errors of covariance parameters are from the observed information at the "
            "estimates, in the units of the variances; those that statsmodels prints belong to "
            "ratios to the residual variance."
        )
        return standard_errors(covariance)

    def _is_on_boundary(self) -> bool:
        least = NEGLIGIBLE * float(self.result.scale)
        if np.any(self.components < least):
            return True
        if not self.triangle:
            return False
        diagonal = np.diag(self.psi)
        if np.any(diagonal * self._mean_squares() < least):
            return True
        roots = np.sqrt(diagonal)
        return bool(np.linalg.eigvalsh(self.psi / np.outer(roots, roots)).min() < NEGLIGIBLE)

    def _mean_squares(self) -> np.ndarray:
        """What a variance of each random column comes to in the target."""
        columns = np.vstack(self.model.exog_re_li)
        return np.mean(np.asarray(columns, dtype=float) ** 2, axis=0)

    # The blocks ------------------------------------------------------------------------------

    def _blocks(self) -> List[Dict[str, Any]]:
        blocks = [] if self.model.k_re == 0 else [self._correlated()]
        start = len(self.triangle)
        for at in range(self.model.k_vc):
            error = self.errors[start + at]
            blocks.append(self._component(at, error, bool(self.free[start + at])))
        return blocks

    def _subjects_of(self, factors: Sequence[str] = ()) -> List[str]:
        subjects = [] if self.group is None else [self.group]
        for name in factors:
            if self.frame is not None:
                self._add_subject(name, plain_list(self.frame[name]))
            subjects.append(name)
        return subjects

    def _names(self) -> List[str]:
        """The names of the random columns; a constant is the intercept."""
        names = list(getattr(self.model.data, "exog_re_names", None) or [])
        columns = np.asarray(self.model.exog_re, dtype=float)
        names += [f"Z{at + 1}" for at in range(len(names), self.model.k_re)]
        return ["Intercept" if np.all(values == 1) else str(name)
                for name, values in zip(names, columns.T)]

    def _correlated(self) -> Dict[str, Any]:
        names = self._names()
        block: Dict[str, Any] = {"subjects": self._subjects_of()}
        self._add_effects(block, names)
        kept = [at for at, free in enumerate(self.free[: len(self.triangle)])
                if free or self.psi[self.triangle[at]] != 0]
        block["parameters"] = [self._parameter(at) for at in kept]
        block["covariances"] = [{"matrix": [[finite(value) for value in row[: at + 1]]
                                            for at, row in enumerate(self.psi)]}]
        is_diagonal = all(row == column for row, column in map(self.triangle.__getitem__, kept))
        block["structure"] = "variance components" if is_diagonal else "unstructured"
        return block

    def _parameter(self, at: int) -> Dict[str, Any]:
        row, column = self.triangle[at]
        kind = "variance" if row == column else "covariance"
        terms = [row] if row == column else [row, column]
        parameter: Dict[str, Any] = {"parameter": kind, "terms": terms,
                                     "estimate": finite(self.psi[row, column])}
        return _with_error(parameter, self.errors[at], bool(self.free[at]))

    def _add_effects(self, block: Dict[str, Any], names: Sequence[str]) -> None:
        """The intercept, effects and terms of the random columns."""
        block["intercept"] = "Intercept" in names
        read = self._read(names, np.asarray(self.model.exog_re, dtype=float))
        effects: List[Dict[str, Any]] = []
        terms: List[Dict[str, Any]] = []
        for column, name, values in zip(read, names, np.asarray(self.model.exog_re).T):
            if name == "Intercept":
                terms.append({})
                continue
            fields = [name] if column is None else [*column.factors, *column.covariates]
            if column is None:
                self.extra[name] = plain_list(values)
            elif self.frame is not None:
                for field in fields:
                    self.extra[field] = plain_list(self.frame[field])
                self.nominal += [name for name in column.factors if name not in self.nominal]
            if {"fields": fields} not in effects:
                effects.append({"fields": fields})
            term: Dict[str, Any] = {"term": name, "effect": effects.index({"fields": fields})}
            if column is not None and column.levels and self.frame is not None:
                term["levels"] = level_of(column, self.frame)
            terms.append(term)
        if effects:
            block["effects"] = effects
            block["terms"] = terms

    def _read(self, names: Sequence[str], matrix: np.ndarray) -> List[Optional[RandomColumn]]:
        """What the names say of the columns, where the columns bear it out."""
        columns: List[Optional[RandomColumn]] = []
        for name, values in zip(names, matrix.T):
            read = read_columns([name], self.frame)
            column = None if read is None else read[0]
            if column is not None and self.frame is not None:
                told = values_of(column, self.frame)
                if told is None or not np.allclose(told, values):
                    column = None
            columns.append(column)
        return columns

    def _component(self, at: int, error: float, free: bool) -> Dict[str, Any]:
        """The block of a variance component: its columns are the levels of factors within the
        groups, for which it is the variance of an intercept or of a slope."""
        variance = float(self.components[at])
        column = self._common_column(at)
        parameter = {"parameter": "variance", "estimate": finite(variance)}
        if column is None:
            name = self.model.exog_vc.names[at]
            self.notes.append(
                f"The variance component {name} is none of an intercept or a slope within subjects."
            )
            return {"subjects": self._subjects_of(), "structure": "identity",
                    "parameters": [_with_error({**parameter, "parameter": name}, error, free)]}
        block: Dict[str, Any] = {"subjects": self._subjects_of(column.factors),
                                 "structure": "variance components",
                                 "intercept": not column.covariates}
        if column.covariates and self.frame is not None:
            block["effects"] = [{"fields": list(column.covariates)}]
            for name in column.covariates:
                self.extra[name] = plain_list(self.frame[name])
            parameter["terms"] = [0]  # type: ignore[assignment]
        block["parameters"] = [_with_error(parameter, error, free)]
        block["covariances"] = [{"matrix": [[finite(variance)]]}]
        return block

    def _common_column(self, at: int) -> Optional[RandomColumn]:
        """What all columns of a component are, apart from the levels."""
        shape: Optional[Tuple[Any, Any]] = None
        found: Optional[RandomColumn] = None
        if self.frame is None:
            return None
        for group, label in enumerate(self.model.group_labels):
            names = self.model.exog_vc.colnames[at][group]
            records = self.frame.iloc[self.model.row_indices[label]]
            matrix = variances._dense(self.model.exog_vc.mats[at][group])
            columns = read_columns(names, self.frame)
            if columns is None or len(columns) != matrix.shape[1]:
                return None
            for column, values in zip(columns, matrix.T):
                told = values_of(column, records)
                if told is None or not np.allclose(told, values):
                    return None
                if shape not in (None, (column.factors, column.covariates)):
                    return None
                shape, found = (column.factors, column.covariates), column
            if len(names) > 1 and found is not None and not found.factors:
                return None
        return found


def _with_error(parameter: Dict[str, Any], error: float, free: bool) -> Dict[str, Any]:
    if not free:
        parameter["fixed"] = True
    elif np.isfinite(error):
        parameter["std.error"] = float(error)
    return parameter


def predicted(result: Any) -> np.ndarray:
    """The mean of each record with its predicted random effects. statsmodels has no fitted values
    where the components are sparse."""
    model = result.model
    if not any(sparse.issparse(matrix) for mats in model.exog_vc.mats for matrix in mats):
        return np.asarray(result.fittedvalues, dtype=float)
    fitted = np.asarray(model.exog, dtype=float) @ np.asarray(result.fe_params, dtype=float)
    for at, label in enumerate(model.group_labels):
        blocks = [] if model.k_re == 0 else [sparse.csr_matrix(model.exog_re_li[at])]
        blocks += [sparse.csr_matrix(mats[at]) for mats in model.exog_vc.mats]
        effects = np.asarray(result.random_effects[label], dtype=float)
        fitted[model.row_indices[label]] += sparse.hstack(blocks) @ effects
    return fitted


@reads("statsmodels.regression.mixed_linear_model.MixedLMResults")
def mixedlm(result: Any, level: float) -> Parts:
    """The parts of a MixedLM result. It has no degrees of freedom, so its tests are of z."""
    model = result.model
    blocks = _Blocks(result)
    design = design_of(model)
    width = design.matrix.shape[1]
    covariance = np.asarray(result.cov_params(), dtype=float)[:width, :width]
    estimated = int(blocks.free.sum())
    if result.freepat is not None:
        estimated += int(np.sum(np.asarray(result.freepat.fe_params) != 0)) - width
    parameters = width + estimated
    method = "restricted maximum likelihood (REML)" if result.reml else "maximum likelihood"
    notes = [
        f"Fitted by {method}.",
        "MixedLM has no degrees of freedom: t and F are of the normal and the chi-square "
        "distribution.",
        f"AICc and BIC count {parameters} parameters and {len(model.endog)} records.",
        *blocks.notes,
    ]
    if result.cov_pen is not None or model.fe_pen is not None:
        notes.append("The likelihood was penalised.")
    conditions = list(blocks.conditions)
    if not result.converged:
        conditions.append("not converged")
    residual: Dict[str, Any] = {
        "structure": "identity",
        "parameters": [_with_error({"parameter": "variance", "estimate": float(result.scale)},
                                   blocks.errors[-1], True)],
    }
    if blocks.group is not None:
        residual["subjects"] = [blocks.group]
    return Parts(
        call=f"MixedLM.fit(reml={bool(result.reml)})",
        version=version(),
        design=design,
        target=numeric_target(model),
        distribution="normal",
        link=IDENTITY,
        estimates=np.asarray(result.fe_params, dtype=float),
        covariance=covariance,
        random=blocks.blocks,
        residual=residual,
        extra=blocks.extra,
        nominal=blocks.nominal,
        order=order_of(model),
        statistics=information_criteria(float(result.llf), parameters, len(model.endog)),
        predicted=plain_list(predicted(result)),
        notes=notes,
        conditions=conditions,
    )


