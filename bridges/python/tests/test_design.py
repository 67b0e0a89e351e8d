"""The design of a formula."""

import numpy as np
import pandas as pd
import pytest
import statsmodels.formula.api as smf

import hierfit
from conftest import close
from hierfit.engines import parts_of


@pytest.fixture
def data():
    rng = np.random.default_rng(5)
    count = 120
    return pd.DataFrame({
        "y": rng.normal(size=count), "a": rng.choice(["u", "v", "w"], count),
        "b": rng.choice([1, 2], count), "yes": rng.choice([True, False], count),
        "x": rng.uniform(1, 3, size=count), "z": rng.normal(size=count),
        "two words": rng.choice(["p", "q"], count),
    })


def rebuilt(design, column):
    """A column of the design from what is told of it."""
    values = np.ones(len(design.matrix))
    if column.effect is None:
        return values
    effect = design.effects[column.effect]
    for name, power in zip(effect.fields, effect.powers):
        if name in design.covariates:
            values = values * design.covariates[name] ** power
    for name, level in (column.levels or {}).items():
        values = values * (design.codes[name] == design.factors[name].index(level))
    for name, place in column.columns.items():
        values = values * design.codings[name][design.codes[name], place]
    return values


@pytest.mark.parametrize("formula", [
    "y ~ a", "y ~ 0 + a", "y ~ a * b", "y ~ C(a) * C(b)", "y ~ C(a, Treatment('w')) * x",
    "y ~ C(a, Sum) * C(b, Helmert) * x", "y ~ C(a, Poly):x", "y ~ x + I(x**2) + x:z + I(x**2):z",
    "y ~ np.log(x) * a", "y ~ bs(x, df=4) + z", "y ~ Q('two words') * yes", "y ~ a:C(b):x + z",
    "y ~ center(x) * a", "np.log(x) ~ a",
])
def test_columns_are_what_is_told_of_them(data, formula):
    design = parts_of(smf.ols(formula, data).fit()).design
    assert len(design.columns) == design.matrix.shape[1]
    for at, column in enumerate(design.columns):
        close(rebuilt(design, column), design.matrix[:, at], atol=1e-10)


@pytest.mark.parametrize("formula, effects, first", [
    ("y ~ C(a) * C(b)", [["a"], ["b"], ["a", "b"]], {"a": "v"}),
    ("y ~ C(a, Sum)", [["a"]], None),
    ("y ~ I(x**3):z", [["x", "z"]], {}),
    ("y ~ Q('two words')", [["two words"]], {"two words": "q"}),
    ("y ~ yes", [["yes"]], {"yes": "True"}),
    ("y ~ C(x > 2)", [["C(x > 2)"]], {"C(x > 2)": "True"}),
    ("y ~ a:x", [["a", "x"]], {"a": "u"}),
])
def test_effects_and_levels(data, formula, effects, first):
    document = hierfit.report(smf.ols(formula, data).fit()).document
    assert [effect["fields"] for effect in document["fixed"]["effects"]] == effects
    names = {variable["name"] for variable in document["variables"]}
    assert {field for effect in effects for field in effect} <= names
    row = next(row for row in document["coefficients"] if "effect" in row)
    assert row.get("levels", {} if first == {} else None) == first


def test_records_are_those_that_were_fitted(data):
    holes = data.astype({"x": float})
    holes.loc[[3, 8], "x"] = np.nan
    for frame in (holes, holes.set_index(np.zeros(len(holes), dtype=int))):
        model = smf.ols("y ~ a + x", frame)
        columns = hierfit.report(model.fit()).document["data"]["columns"]
        assert columns == {"y": list(np.delete(data["y"].to_numpy(), [3, 8]))}
    subset = smf.ols("y ~ a + x", data, subset=data["z"] > 0).fit()
    assert len(hierfit.report(subset).document["data"]["columns"]["y"]) == (data["z"] > 0).sum()


def test_data_that_changed_since_the_fit_are_refused(data):
    fit = smf.ols("y ~ a + x", data).fit()
    data["x"] = data["x"] + 1
    with pytest.raises(hierfit.Unsupported, match="changed since"):
        hierfit.report(fit)


def test_a_level_without_records_has_no_means(data):
    data["a"] = pd.Categorical(data["a"], ["u", "v", "w", "nobody"])
    with pytest.raises(hierfit.Unsupported, match="rank|nobody"):
        hierfit.report(smf.ols("y ~ a", data).fit(), means="a")


def test_a_variable_that_enters_twice_has_no_means(data):
    fit = smf.ols("y ~ C(b) + b:x", data).fit()
    with pytest.raises(hierfit.Unsupported, match="more than one way|no factor"):
        hierfit.report(fit, means="b")
