"""What each reader takes from its results."""

import numpy as np
import pandas as pd
import pytest
import statsmodels.api as sm
import statsmodels.formula.api as smf
from scipy import stats
from statsmodels.miscmodels.ordinal_model import OrderedModel

import hierfit
from conftest import close, needs_command, numbers
from hierfit.design import design_of_columns
from hierfit.engines import ordered, reads
from hierfit.parts import IDENTITY, Parts, Target


def notes_of(report):
    return " ".join(report.notes)


@needs_command
@pytest.mark.parametrize("fit", [
    lambda d: smf.ols("angle ~ recipe + temp", d).fit(),
    lambda d: smf.ols("angle ~ recipe + temp", d).fit(cov_type="HC3"),
    lambda d: smf.glm("angle ~ recipe + temp", d, family=sm.families.Gamma(
        sm.families.links.log())).fit(),
    lambda d: smf.glm("angle ~ recipe + temp", d, family=sm.families.Gaussian()).fit(use_t=True),
    lambda d: smf.gee("angle ~ recipe + temp", "id", d, family=sm.families.Poisson(),
                      cov_struct=sm.cov_struct.Exchangeable()).fit(),
    lambda d: smf.gee("angle ~ recipe + temp", "id", d).fit(cov_type="naive"),
    lambda d: smf.poisson("angle ~ recipe + temp", d).fit(disp=0),
    lambda d: smf.negativebinomial("angle ~ recipe + temp", d).fit(disp=0),
    lambda d: smf.mixedlm("angle ~ recipe + temp", d, groups="id").fit(),
    lambda d: smf.wls("angle ~ recipe + temp", d, weights=d["temp"] / 200).fit(),
], ids=["ols", "hc3", "gamma", "gaussian-t", "gee", "gee-naive", "poisson", "negbin", "mixedlm",
        "wls"])
def test_reports_show_the_numbers_of_the_engine(cake, fit):
    result = fit(cake)
    cells = hierfit.report(result).show(language="en").cells()
    table = cells[(cells["table"] == "FixedCoefficients") & (cells["shown"] != ".")]
    table = table[~table["row"].str.contains("recipe=A")]
    count = 4

    def column(end):
        chosen = table[table["column"].str.fullmatch(f"(.*95% confidence interval / )?{end}")]
        return chosen["value"].to_numpy()

    intervals = np.asarray(result.conf_int(), dtype=float)[:count]
    for end, wanted in (("Coefficient", result.params), ("Std. error", result.bse),
                        ("t", result.tvalues), ("Sig.", result.pvalues),
                        ("Lower", intervals[:, 0]), ("Upper", intervals[:, 1])):
        close(column(end), np.asarray(wanted, dtype=float)[:count], rtol=1e-9)


@pytest.mark.parametrize("fit, distribution, link, residual", [
    (lambda d: smf.glm("angle ~ temp", d, family=sm.families.Poisson()).fit(),
     "poisson", "log", ("variance", True)),
    (lambda d: smf.glm("angle ~ temp", d, family=sm.families.Poisson()).fit(scale="X2"),
     "poisson", "log", ("dispersion", None)),
    (lambda d: smf.glm("angle ~ temp", d, family=sm.families.NegativeBinomial(alpha=0.1)).fit(),
     "negative binomial", "log", ("dispersion", True)),
    (lambda d: smf.glm("angle ~ temp", d, family=sm.families.InverseGaussian(
        sm.families.links.identity())).fit(), "inverse gaussian", "identity", ("dispersion", None)),
    (lambda d: smf.glm("angle ~ temp", d, family=sm.families.Gaussian(
        sm.families.links.inverse_power())).fit(), "normal", "power", ("variance", None)),
    (lambda d: smf.glm("angle ~ temp", d, family=sm.families.Tweedie(
        sm.families.links.log(), var_power=1.5)).fit(), "other", "log", ("dispersion", None)),
    (lambda d: smf.probit("I(1 * (angle > 32)) ~ temp", d).fit(disp=0), "binomial", "probit",
     ("variance", True)),
])
def test_families_links_and_scales(cake, fit, distribution, link, residual):
    report = hierfit.report(fit(cake))
    document = report.document
    assert (document["distribution"], document["link"]) == (distribution, link)
    parameter = document["residual"]["parameters"][0]
    assert (parameter["parameter"], parameter.get("fixed")) == residual
    if distribution == "other":
        assert "Tweedie" in notes_of(report)
    if residual == ("dispersion", None) and distribution == "poisson":
        assert "logLik" not in document["statistics"] and "quasi" in notes_of(report)


def test_criteria_count_all_parameters(cake):
    for result, count in ((smf.ols("angle ~ temp", cake).fit(), 3),
                          (smf.poisson("angle ~ temp", cake).fit(disp=0), 2),
                          (smf.negativebinomial("angle ~ temp", cake).fit(disp=0), 3)):
        found = hierfit.report(result).document["statistics"]
        aic = -2 * result.llf + 2 * count
        close(found["AICc"], aic + 2 * count * (count + 1) / (270 - count - 1), rtol=1e-12)
        close(found["BIC"], -2 * result.llf + count * np.log(270))


class TestBinomialTargets:
    def test_events_and_others(self, cbpp):
        document = hierfit.report(smf.glm("incidence + others ~ period", cbpp,
                                          family=sm.families.Binomial()).fit()).document
        assert document["target"] == {"variable": "incidence", "trials": "size"}
        assert document["data"]["columns"]["size"] == cbpp["size"].tolist()
        close(sum(document["data"]["predicted"]), cbpp["incidence"].sum())

    def test_shares_with_trials_as_weights_are_the_same(self, cbpp):
        cbpp["share"] = cbpp["incidence"] / cbpp["size"]
        fit = smf.glm("share ~ period", cbpp, family=sm.families.Binomial(),
                      var_weights=cbpp["size"]).fit()
        report = hierfit.report(fit)
        assert report.document["target"] == {"variable": "incidence", "trials": "size"}
        assert "numbers of trials" in notes_of(report)
        assert "records are weighted" not in notes_of(report)
        with pytest.raises(hierfit.Unsupported, match="unknown number of trials"):
            hierfit.report(smf.glm("share ~ period", cbpp, family=sm.families.Binomial()).fit())

    def test_the_first_of_two_texts_is_the_event(self, herds):
        herds["state"] = np.where(herds["sick"] == 1, "ill", "well")
        fits = [smf.glm(f"{name} ~ period", herds, family=sm.families.Binomial()).fit()
                for name in ("state", "sick")]
        texts, numbers_ = (hierfit.report(fit).document for fit in fits)
        assert texts["target"] == {"variable": "state", "reference": "well"}
        assert numbers_["target"] == {"variable": "sick", "reference": 0}
        close([row["estimate"] for row in texts["coefficients"]],
              [row["estimate"] for row in numbers_["coefficients"]])
        assert set(texts["data"]["predicted"]) == {"well"}
        assert texts["data"]["columns"]["state"] == herds["state"].tolist()
        coded = hierfit.report(smf.glm("C(sick) ~ period", herds,
                                       family=sm.families.Binomial()).fit()).document
        assert coded["target"] == {"variable": "sick", "reference": 1}
        assert coded["data"]["columns"]["sick"] == herds["sick"].tolist()


def test_gee_tells_what_it_lacks(cbpp):
    cbpp["when"] = cbpp["period"].astype(int)
    fit = smf.gee("incidence ~ C(period)", "herd", cbpp, family=sm.families.Poisson(),
                  cov_struct=sm.cov_struct.Autoregressive(), time=cbpp["when"]).fit(
                      cov_type="bias_reduced")
    report = hierfit.report(fit)
    document = report.document
    assert not document["random"] and not document["statistics"]
    assert document["residual"]["subjects"] == ["herd"]
    assert document["residual"]["structure"] == "ar1"
    assert document["residual"]["repeated"] == ["when"]
    assert document["data"]["columns"]["when"] == cbpp["when"].tolist()
    assert document["residual"]["parameters"][1]["estimate"] == pytest.approx(
        float(fit.model.cov_struct.dep_params))
    for told in ("no likelihood", "Mancl and DeRouen", "Autoregressive"):
        assert told in notes_of(report)


def test_weights_and_offsets_are_told(cake, cbpp):
    plain = hierfit.report(smf.glm("angle ~ temp", cake).fit())
    assert "weight" not in notes_of(plain) and "offset" not in notes_of(plain)
    counted = smf.glm("angle ~ temp", cake, freq_weights=np.arange(270) % 3 + 1).fit()
    report = hierfit.report(counted)
    assert "freq_weights" in notes_of(report) and "data" not in report.document
    for fit in (smf.glm("incidence ~ period", cbpp, family=sm.families.Poisson(),
                        exposure=cbpp["size"]).fit(),
                smf.poisson("incidence ~ period", cbpp, offset=np.log(cbpp["size"])).fit(disp=0)):
        assert "offset of 0" in notes_of(hierfit.report(fit))
    assert "weighted" in notes_of(hierfit.report(
        smf.wls("angle ~ temp", cake, weights=cake["temp"]).fit()))


class TestOrderedModel:
    def test_thresholds_are_those_of_polr(self, cake, reference):
        fit = OrderedModel.from_formula("quality ~ recipe + temp", cake, distr="logit").fit(
            method="bfgs", disp=0, gtol=1e-8)
        rows = hierfit.report(fit).document["coefficients"]
        assert [row.get("threshold") for row in rows] == ["a", "b", "c", None, None, None]
        close(numbers(rows, "estimate"), reference["polr"]["estimate"], rtol=1e-3)
        close(numbers(rows, "std.error"), reference["polr"]["std.error"], rtol=2e-2)

    def test_their_covariance_by_finite_differences(self, cake):
        fit = OrderedModel.from_formula("quality ~ temp", cake, distr="probit").fit(
            method="bfgs", disp=0)
        thresholds, covariance = ordered.thresholds_of(fit._results)
        params = np.asarray(fit.params)

        def whole(values):
            return np.concatenate([fit.model.transform_threshold_params(values)[1:-1], values[:1]])

        close(whole(params)[:3], thresholds)
        step = 1e-6
        slopes = np.array([(whole(params + step * unit) - whole(params - step * unit)) / (2 * step)
                           for unit in np.eye(len(params))]).T
        close(covariance, slopes @ np.asarray(fit.cov_params()) @ slopes.T, rtol=1e-5, atol=1e-10)

    def test_it_has_no_means(self, cake):
        fit = OrderedModel.from_formula("quality ~ recipe", cake, distr="logit").fit(disp=0,
                                                                                     method="bfgs")
        with pytest.raises(hierfit.Unsupported, match="no means"):
            hierfit.report(fit, means="recipe")


class TestPosteriors:
    @pytest.fixture
    def model(self, herds):
        return sm.BinomialBayesMixedGLM.from_formula(
            "sick ~ period", {"herd": "0 + C(herd)"}, herds)

    def test_standard_deviations_are_no_standard_errors(self, model):
        np.random.seed(1)
        fit = model.fit_vb()
        report = hierfit.report(fit, means="period", contrasts="pairwise", level=0.9)
        document = report.document
        row = document["coefficients"][1]
        assert "std.error" not in row and "tests" not in document and "vcov" not in document
        reach = stats.norm.ppf(0.95) * fit.fe_sd[1]
        close([row["conf.low"], row["conf.high"]], [fit.fe_mean[1] - reach, fit.fe_mean[1] + reach])
        parameter = document["random"][0]["parameters"][0]
        close(parameter["estimate"], np.exp(2 * fit.vcp_mean[0]))
        close(np.log(parameter["conf.high"] / parameter["estimate"]),
              2 * stats.norm.ppf(0.95) * fit.vcp_sd[0])
        assert document["random"][0]["subjects"] == ["herd"]
        assert "conf.low" not in document["means"][0]["rows"][0]
        assert "no covariance" in notes_of(report)

    def test_a_collapsed_mode_is_told(self, model):
        fit = model.fit_map()
        report = hierfit.report(fit, means="period", contrasts="pairwise")
        row = report.document["means"][0]["contrasts"]["rows"][0]
        assert "std.error" not in row and row["conf.low"] < row["estimate"] < row["conf.high"]
        assert fit.vcp_mean[0] < -10
        assert "covariance values doubtful" in report.document["engine"]["conditions"]
        with pytest.raises(hierfit.Unsupported, match="no tests"):
            hierfit.report(fit, df="residual")


def test_degrees_of_freedom_on_demand(sleepstudy):
    fit = smf.mixedlm("Reaction ~ Days", sleepstudy, groups="Subject").fit()
    document = hierfit.report(fit, df="residual").document
    assert document["df.method"] == "residual"
    assert {row["df"] for row in document["coefficients"]} == {178}
    assert document["tests"]["effects"][0]["den.df"] == 178
    assert "df" not in hierfit.report(fit).document["coefficients"][0]


def test_models_without_a_formula(cake):
    exog = sm.add_constant(cake[["temp", "replicate"]])
    for result in (sm.OLS(cake["angle"], exog).fit(),
                   sm.MixedLM(cake["angle"], exog, groups=cake["id"]).fit(),
                   sm.OLS(cake["angle"].to_numpy(), exog.to_numpy()).fit()):
        document = hierfit.report(result).document
        assert document["fixed"]["intercept"] and len(document["fixed"]["effects"]) == 2
        assert len(document["tests"]["effects"]) == 2
        with pytest.raises(hierfit.Unsupported, match="formula|no factor"):
            hierfit.report(result, means="temp")


def test_unknown_results_are_told():
    with pytest.raises(hierfit.Unsupported, match="of dict.*hierfit.fit"):
        hierfit.report({})
    with pytest.raises(hierfit.Unsupported, match="were removed"):
        bare = smf.ols("y ~ x", pd.DataFrame({"y": [1, 2, 4], "x": [1, 2, 3]})).fit()
        bare.remove_data()
        hierfit.report(bare)
    rng = np.random.default_rng(0)
    data = pd.DataFrame({"y": [0, 1, 2] * 20, "x": rng.normal(size=60)})
    for fit in (smf.mnlogit("y ~ x", data).fit(disp=0), smf.quantreg("y ~ x", data).fit(),
                smf.negativebinomial("y ~ x", data, loglike_method="nb1").fit(disp=0)):
        with pytest.raises(hierfit.Unsupported, match=type(fit.model).__name__):
            hierfit.report(fit)


def test_a_reader_of_ones_own():
    class Mean:
        def __init__(self, values):
            self.values = values

    @reads(f"{Mean.__module__}.{Mean.__qualname__}")
    def mean(result, level):
        values = np.asarray(result.values, float)
        return Parts(call="mean", design=design_of_columns(np.ones((len(values), 1)), ["(one)"]),
                     target=Target("y", values.tolist()), distribution="normal", link=IDENTITY,
                     estimates=values.mean(keepdims=True),
                     covariance=values.var(ddof=1, keepdims=True)[None] / len(values),
                     df=len(values) - 1.0, engine="mine")

    row = hierfit.report(Mean([1.0, 2.0, 6.0])).document["coefficients"][0]
    wanted = stats.sem([1, 2, 6])
    assert row == {"term": "(one)", "estimate": 3, "std.error": pytest.approx(wanted), "df": 2}


def test_groups_are_named_as_the_data_name_them(cake):
    groups = cake["id"].to_numpy()
    for data, name in ((cake, "id"), (cake.drop(columns="id"), "Group")):
        for fit in (smf.mixedlm("angle ~ recipe", data, groups=groups).fit(),
                    smf.gee("angle ~ recipe", groups, data).fit()):
            document = hierfit.report(fit).document
            assert document["residual"]["subjects"] == [name]
            assert document["data"]["columns"][name] == groups.tolist()


def test_missing_values(sleepstudy):
    holes = sleepstudy.astype({"Days": float})
    holes.loc[[3, 30], "Days"] = np.nan
    dropped = smf.mixedlm("Reaction ~ Days", holes, groups="Subject", re_formula="~Days",
                          missing="drop").fit()
    columns = hierfit.report(dropped).document["data"]["columns"]
    assert columns["Subject"] == sleepstudy["Subject"].drop([3, 30]).tolist()
    clustered = smf.gee("Reaction ~ Days", "Subject", holes, missing="drop").fit()
    assert hierfit.report(clustered).document["data"]["columns"] == columns


def test_constraints_are_told(cake):
    fit = smf.glm("angle ~ recipe + temp", cake).fit_constrained("recipe[T.B] = recipe[T.C]")
    report = hierfit.report(fit)
    assert "constrained" in notes_of(report)
    assert report.document["tests"]["effects"][0]["num.df"] == 1
