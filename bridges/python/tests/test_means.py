"""Estimated means, contrasts and overall tests."""

import numpy as np
import pytest
import statsmodels.api as sm
import statsmodels.formula.api as smf

import hierfit
from conftest import close, needs_command, numbers
from hierfit.engines import parts_of
from hierfit.means import Wishes, estimated

BOUNDS = ("estimate", "std.error", "conf.low", "conf.high")


def same(rows, wanted, members=BOUNDS, rtol=1e-6):
    for member in members:
        close(numbers(rows, member), wanted[member], rtol=rtol, atol=1e-7)


def cells_of(report, table, column):
    cells = report.cells()
    chosen = cells[(cells["table"] == table) & cells["column"].str.endswith(column)]
    return chosen["value"].to_numpy()


@pytest.fixture
def cake_fit(cake):
    return smf.mixedlm("angle ~ recipe * C(temp)", cake, groups="id").fit()


@pytest.fixture
def cbpp_fit(cbpp):
    family = sm.families.Binomial()
    return smf.glm("incidence + others ~ period", cbpp, family=family).fit(tol=1e-14)


def test_means_within_levels_are_those_of_emmeans(cake_fit, reference):
    report = hierfit.report(cake_fit, means=["recipe | temp"], contrasts="pairwise")
    block = report.document["means"][0]
    order = np.arange(18).reshape(6, 3).T.ravel()  # emmeans has the levels of recipe fastest
    wanted = {name: np.array(values)[order] for name, values in reference["cake"]["means"].items()
              if name in BOUNDS}
    rows = block["rows"]
    close(numbers(rows, "estimate"), wanted["estimate"])
    close(numbers(rows, "std.error"), wanted["std.error"], rtol=1e-4)
    same(block["contrasts"]["rows"], reference["cake"]["holm"], ("estimate",))
    same(block["contrasts"]["rows"], reference["cake"]["holm"], ("std.error",), rtol=1e-4)


@needs_command
def test_holm_and_overall_tests_come_from_the_command(cake_fit, reference):
    report = hierfit.report(cake_fit, means=["recipe | temp"], contrasts="pairwise", adjust="holm")
    wanted = reference["cake"]["holm"]
    for column, member in (("Adj. sig.", "p.value"), ("Lower", "conf.low"), ("Upper", "conf.high")):
        close(cells_of(report.show(language="en"), "Contrasts", column), wanted[member], atol=1e-3)
    # Overall: the contrasts with the reference span those of all pairs.
    simple = hierfit.report(cake_fit, means=["recipe | temp"], contrasts="simple")
    tests = [cells_of(each.show(language="en"), "OverallTestResults", "F")
             for each in (report, simple)]
    close(*tests, rtol=1e-6)


@pytest.mark.parametrize("adjust", ["bonferroni", "sidak"])
def test_single_step_adjustments(cbpp_fit, reference, adjust):
    report = hierfit.report(cbpp_fit, means="period", contrasts="pairwise", adjust=adjust)
    block = report.document["means"][0]
    same(block["rows"], reference["cbpp"]["means"])
    same(block["contrasts"]["rows"], reference["cbpp"][adjust])
    close(numbers(block["contrasts"]["rows"], "adj.p.value"), reference["cbpp"][adjust]["p.value"])
    assert report.document["adjust"] == "other"
    assert any("Bonferroni" in note or "Šidák" in note for note in report.notes)


@needs_command
def test_deviation_contrasts(cbpp_fit, reference):
    report = hierfit.report(cbpp_fit, means="period", contrasts="deviation", adjust="none").show(
        language="en")
    same(report.document["means"][0]["contrasts"]["rows"], reference["cbpp"]["deviation"],
         ("estimate", "std.error"))
    for column, member in (("Adj. sig.", "p.value"), ("Lower", "conf.low"), ("Upper", "conf.high")):
        close(cells_of(report, "Contrasts", column), reference["cbpp"]["deviation"][member])


def test_means_with_a_log_link_and_t(cake, reference):
    fit = smf.glm("angle ~ recipe + temp", cake,
                  family=sm.families.Gamma(sm.families.links.log())).fit(use_t=True, tol=1e-14)
    block = hierfit.report(fit, means="recipe").document["means"][0]
    wanted = reference["log.means"]
    same(block["rows"], wanted, ("estimate",))
    # The dispersion of both is Pearson's.
    same(block["rows"], wanted, ("std.error", "conf.low", "conf.high"), rtol=1e-5)
    assert block["at"] == {"temp": 200}


@pytest.mark.parametrize("link", ["logit", "probit", "cloglog", "cauchy"])
def test_delta_method_by_finite_differences(cbpp, link):
    family = sm.families.Binomial(getattr(sm.families.links, link)())
    parts = parts_of(smf.glm("incidence + others ~ period", cbpp, family=family).fit())
    rows = parts.design.mean_rows(["period"], {})
    found = estimated(parts, rows, Wishes())
    step = 1e-6
    slopes = np.array([
        (parts.link.inverse(rows @ (parts.estimates + step * unit))
         - parts.link.inverse(rows @ (parts.estimates - step * unit))) / (2 * step)
        for unit in np.eye(len(parts.estimates))]).T
    close(found.covariance, slopes @ parts.covariance @ slopes.T, rtol=1e-5, atol=1e-12)


def test_an_inverse_link_keeps_bounds_in_order(cake):
    fit = smf.glm("angle ~ recipe", cake, family=sm.families.Gamma()).fit()
    document = hierfit.report(fit, means="recipe").document
    assert (document["link"], document["link.parameter"]) == ("power", -1)
    for row, mean in zip(document["means"][0]["rows"], cake.groupby("recipe")["angle"].mean()):
        assert row["conf.low"] < row["estimate"] < row["conf.high"]
        assert row["estimate"] == pytest.approx(mean)


def test_scale_of_the_link_and_held_covariates(cake):
    fit = smf.poisson("angle ~ recipe * np.log(temp)", cake).fit(disp=0)
    report = hierfit.report(fit, means="recipe", scale="link", at={"temp": 180})
    assert "Means are at temp = 180." in report.notes
    grand = {at: hierfit.report(fit, at={"temp": at}).document["grand.mean"]["estimate"]
             for at in (180, 220)}
    assert grand[180] < grand[220]
    block = report.document["means"][0]
    wanted = [fit.predict({"recipe": [level], "temp": [180]})[0] for level in "ABC"]
    close(np.exp(numbers(block["rows"], "estimate")), wanted)
    assert block["scale"] == "link"


@pytest.mark.parametrize("formula", [
    "angle ~ recipe * C(temp)", "angle ~ C(recipe, Sum) * C(temp, Poly)",
    "angle ~ 0 + recipe:C(temp)",
])
def test_means_and_tests_do_not_hang_on_the_coding(cake, cake_fit, formula):
    wanted = hierfit.report(cake_fit, means=["recipe | temp", "temp"], contrasts="deviation")
    found = hierfit.report(smf.mixedlm(formula, cake, groups="id").fit(),
                           means=["recipe | temp", "temp"], contrasts="deviation")
    for left, right in zip(found.document["means"], wanted.document["means"]):
        wanted_rows = {name: numbers(right["rows"], name) for name in BOUNDS[:2]}
        same(left["rows"], wanted_rows, BOUNDS[:2], 1e-4)
        close(numbers(left["contrasts"]["rows"], "std.error"),
              numbers(right["contrasts"]["rows"], "std.error"), rtol=1e-4)
    if "0 +" not in formula:
        tests = [[test["statistic"] for test in each.document["tests"]["effects"]]
                 for each in (found, wanted)]
        close(*tests, rtol=1e-4)


def test_charted_means_are_those_of_significant_effects(cake):
    def charted(formula):
        document = hierfit.report(smf.ols(formula, cake).fit()).document
        return {tuple(block["fields"]): block["rows"] for block in document["effect.means"]}

    crossed = cake.assign(angle=cake["angle"] + cake["recipe"].map({"A": 0, "B": 8, "C": 0})
                          * (cake["temp"] - 200) / 10)
    cake["angle"] = crossed["angle"]
    by_covariate = charted("angle ~ recipe * temp")
    assert set(by_covariate) == {("recipe",), ("temp",)}  # an interaction with a covariate has none
    assert [row["levels"]["temp"] for row in by_covariate["temp",]] == sorted(set(cake["temp"]))
    by_factor = charted("angle ~ recipe * C(temp)")
    assert len(by_factor["recipe", "temp"]) == 18
    close(numbers(by_factor["recipe", "temp"], "estimate"),
          cake.groupby(["recipe", "temp"])["angle"].mean())
    assert not charted("np.sin(1e3 * angle) ~ recipe")


def test_type_three_tests(cake, cake_fit, reference):
    tests = hierfit.report(cake_fit).document["tests"]["effects"]
    close(numbers(tests, "statistic"), reference["cake"]["f"], rtol=1e-4)
    assert [test["num.df"] for test in tests] == reference["cake"]["df"]
    # Where an uncentred covariate crosses a factor, the coding matters.
    slopes = smf.ols("angle ~ recipe * temp", cake).fit()
    tests = hierfit.report(slopes).document["tests"]
    close(numbers(tests["effects"], "statistic"), reference["slopes"]["f"])
    assert {test["den.df"] for test in tests["effects"]} == {264}
    close([tests["model"]["statistic"], tests["model"]["num.df"]], [slopes.fvalue, 5])


@pytest.mark.parametrize("wish, told", [
    (dict(means="nothing"), "no factor of the model; its factors: recipe, temp"),
    (dict(means="recipe | recipe"), "may be 'a'"),
    (dict(means="recipe:temp", contrasts="pairwise"), "behind a bar"),
    (dict(means="recipe", contrasts="each"), "'pairwise', 'deviation', 'simple'"),
    (dict(means="recipe", contrasts="simple", reference={"recipe": "Z"}), "it has A, B, C"),
    (dict(means="recipe", reference={"cup": 1}), "no factor of the model"),
    (dict(means="recipe", at={"angle": 1}), "no covariate"),
    (dict(adjust="tukey"), "'bonferroni'"),
    (dict(level=95), "between 0 and 1"),
    (dict(labels={"cup": "Cup"}), "no variable of the model"),
])
def test_wishes_that_cannot_be_met_are_told(cake_fit, wish, told):
    with pytest.raises(hierfit.Unsupported) as error:
        hierfit.report(cake_fit, **wish)
    assert told in str(error.value)


def test_means_of_a_deficient_design(cake):
    gaps = cake[~((cake["recipe"] == "B") & (cake["temp"] == 225))]
    fit = smf.ols("angle ~ recipe * C(temp)", gaps).fit()
    with pytest.raises(hierfit.Unsupported, match="rank 17"):
        hierfit.report(fit, means="recipe")
    report = hierfit.report(fit)
    assert sum("rank 17" in note for note in report.notes) == 1
    assert "tests" not in report.document and "grand.mean" not in report.document
