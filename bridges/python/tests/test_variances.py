"""Variances of linear mixed models and their standard errors."""

import numpy as np
import pandas as pd
import pytest
import statsmodels.formula.api as smf
from statsmodels.base._penalties import L2
from statsmodels.regression.mixed_linear_model import MixedLMParams

import hierfit
from conftest import close
from hierfit.engines import variances

MODELS = {
    "sleepstudy": lambda d: smf.mixedlm("Reaction ~ Days", d, groups="Subject",
                                        re_formula="~Days").fit(gtol=1e-8),
    "sleepstudy.ml": lambda d: smf.mixedlm("Reaction ~ Days", d, groups="Subject",
                                           re_formula="~Days").fit(reml=False, gtol=1e-8),
    "pastes": lambda d: smf.mixedlm("strength ~ 1", d, groups="batch", re_formula="1",
                                    vc_formula={"cask": "0 + C(cask)"}).fit(gtol=1e-8),
    "penicillin": lambda d: smf.mixedlm("diameter ~ 1", d, groups="all",
                                        vc_formula={"plate": "0 + plate",
                                                    "sample": "0 + sample"}).fit(gtol=1e-8),
}


def fitted(name, request):
    return MODELS[name](request.getfixturevalue(name.split(".")[0]))


def parameters(document):
    rows = [row for block in document["random"] for row in block["parameters"]]
    return rows + document["residual"]["parameters"]


@pytest.mark.parametrize("name", MODELS)
def test_standard_errors_are_those_of_another_program(name, request, reference):
    document = hierfit.report(fitted(name, request)).document
    rows = parameters(document)
    wanted = reference["variances"][name]
    order = {"pastes": [1, 0, 2]}.get(name, range(len(rows)))
    close([row["estimate"] for row in rows], np.array(wanted["estimate"])[order], rtol=1e-4)
    close([row["std.error"] for row in rows], np.array(wanted["std.error"])[order], rtol=1e-4)
    close([row["estimate"] for row in document["coefficients"]], np.atleast_1d(wanted["fixed"]),
          rtol=1e-5)
    close([row["std.error"] for row in document["coefficients"]],
          np.atleast_1d(wanted["fixed.se"]), rtol=2e-4)
    close(document["statistics"]["logLik"], wanted["logLik"], rtol=1e-7)


def moved(structure, values):
    return variances.Structure(structure.groups, structure.patterns, list(values[:-1]), values[-1],
                               structure.coefficients)


def best_coefficients(structure):
    """The coefficients that are best for given variances, by dense matrices."""
    left, right = 0, 0
    for group, patterns in zip(structure.groups, structure.patterns):
        psi = sum(value * pattern for value, pattern in zip(structure.values, patterns))
        whole = structure.scale * np.eye(len(group.target)) + group.random @ psi @ group.random.T
        left = left + group.fixed.T @ np.linalg.solve(whole, group.fixed)
        right = right + group.fixed.T @ np.linalg.solve(whole, group.target)
    structure.coefficients = np.linalg.solve(left, right)
    return structure


@pytest.mark.parametrize("name", [*MODELS, "unbalanced", "unbalanced.ml"])
def test_information_is_the_curvature_of_the_likelihood(name, request, sleepstudy):
    if name.startswith("unbalanced"):
        few = sleepstudy[(sleepstudy["Days"] < 4) | (sleepstudy["Subject"] % 3 > 0)]
        result = smf.mixedlm("Reaction ~ Days", few, groups="Subject",
                             re_formula="~Days").fit(reml=not name.endswith("ml"))
    else:
        result = fitted(name, request)
    structure = variances.structure_of(result._results)
    reml = result.reml
    close(variances.log_likelihood(structure, reml), result.llf, rtol=1e-10)
    at = np.array([*structure.values, structure.scale])
    # Away from the optimum, too: the formula does not lean on a gradient of 0.
    for place in (at, at * np.linspace(0.9, 1.2, len(at))):
        found = variances.information(best_coefficients(moved(structure, place)), reml)
        steps = 0.005 / np.sqrt(np.abs(np.diag(found)))

        def height(moves):
            return variances.log_likelihood(
                best_coefficients(moved(structure, place + moves * steps)), reml)

        count = len(at)
        unit = np.eye(count)
        curvature = np.array([[
            (height(unit[i] + unit[j]) - height(unit[i] - unit[j]) - height(unit[j] - unit[i])
             + height(-unit[i] - unit[j])) / (4 * steps[i] * steps[j])
            for j in range(count)] for i in range(count)])
        scale = np.sqrt(np.abs(np.outer(np.diag(found), np.diag(found))))
        close(found / scale, -curvature / scale, atol=1e-4)


def test_sparse_components_are_the_same(penicillin):
    components = {"plate": "0 + plate", "sample": "0 + sample"}
    fits = [smf.mixedlm("diameter ~ 1", penicillin, groups="all", vc_formula=components,
                        use_sparse=sparse).fit() for sparse in (False, True)]
    documents = [hierfit.report(fit).document for fit in fits]
    for part in (parameters, lambda document: document["coefficients"]):
        close(*([row["std.error"] for row in part(document)] for document in documents), rtol=1e-3)
    close(*(document["data"]["predicted"] for document in documents), rtol=1e-4)
    assert documents[0]["random"][0]["subjects"] == documents[1]["random"][0]["subjects"]


def test_what_statsmodels_prints_is_another_number(sleepstudy):
    result = MODELS["sleepstudy"](sleepstudy)
    first = hierfit.report(result).document["random"][0]["parameters"][0]
    assert first["estimate"] == pytest.approx(612.1, abs=0.05)
    assert first["std.error"] == pytest.approx(288.8, abs=0.05)
    assert result.bse_re[0] == pytest.approx(11.88, abs=0.01)


def test_boundary_and_lack_of_convergence_are_told(sleepstudy):
    noise = np.random.default_rng(2).normal(size=len(sleepstudy))
    flat = sleepstudy.assign(Reaction=noise)
    report = hierfit.report(smf.mixedlm("Reaction ~ Days", flat, groups="Subject").fit())
    assert "covariance values doubtful" in report.document["engine"]["conditions"]
    assert all("std.error" not in row for row in parameters(report.document))
    assert any("boundary" in note for note in report.notes)

    stopped = smf.mixedlm("Reaction ~ Days", sleepstudy, groups="Subject",
                          re_formula="~Days").fit(method="cg", maxiter=1)
    assert not stopped.converged
    document = hierfit.report(stopped).document
    assert "not converged" in document["engine"]["conditions"]
    assert all("std.error" not in row for row in parameters(document))


def test_parameters_that_were_held_are_not_counted(sleepstudy):
    model = smf.mixedlm("Reaction ~ Days", sleepstudy, groups="Subject", re_formula="~Days")
    free = MixedLMParams.from_components(np.ones(2), np.eye(2))
    whole, part = model.fit(), model.fit(free=free)
    document = hierfit.report(part).document
    block = document["random"][0]
    assert block["structure"] == "variance components"
    assert [row["terms"] for row in block["parameters"]] == [[0], [1]]
    assert all(row["std.error"] > 0 for row in block["parameters"])
    # One parameter less: the criterion differs by its share alone.
    records = len(sleepstudy)
    for document, result, count in ((document, part, 5),
                                    (hierfit.report(whole).document, whole, 6)):
        close(document["statistics"]["BIC"], -2 * result.llf + count * np.log(records))
    maximum = smf.mixedlm("Reaction ~ Days", sleepstudy, groups="Subject").fit(reml=False)
    close(hierfit.report(maximum).document["statistics"]["BIC"], maximum.bic)


def found_fields(blocks):
    return [effect["fields"] for block in blocks for effect in block.get("effects", [])]


def test_a_penalty_is_told(sleepstudy):
    model = smf.mixedlm("Reaction ~ Days", sleepstudy, groups="Subject")
    for wishes in ({}, {"fe_pen": L2(weights=0.01)}):
        notes = " ".join(hierfit.report(model.fit(**wishes)).notes)
        assert ("penalised" in notes) == bool(wishes)


@pytest.mark.parametrize("random, subjects, effects, levels", [
    (dict(re_formula="~x"), [["g"]], [[["x"]]], None),
    (dict(re_formula="~0 + x"), [["g"]], [[["x"]]], None),
    (dict(re_formula="~a"), [["g"]], [[["a"]]], {"a": "v"}),
    (dict(re_formula="1", vc_formula={"h": "0 + C(h)"}), [["g"], ["g", "h"]], [None, None], None),
    (dict(re_formula="1", vc_formula={"x": "0 + x"}), [["g"], ["g"]], [None, [["x"]]], None),
    (dict(vc_formula={"hx": "0 + C(h):x"}), [["g", "h"]], [[["x"]]], None),
    (dict(re_formula="~np.exp(x)"), [["g"]], [[["np.exp(x)"]]], None),
    (dict(vc_formula={"mix": "0 + C(h) + x"}), [["g"]], [None], None),
    (dict(vc_formula={"mix": "0 + x + x2"}), [["g"]], [None], None),
])
def test_blocks_by_their_formulas(random, subjects, effects, levels):
    rng = np.random.default_rng(11)
    count = 240
    data = pd.DataFrame({"g": np.repeat(np.arange(12), 20),
                         "h": np.tile(np.repeat([1, 2, 3, 4], 5), 12),
                         "x": rng.normal(size=count), "a": rng.choice(["u", "v"], count),
                         "x2": rng.normal(size=count)})
    data["y"] = (rng.normal(size=12)[data["g"]] * (1 + data["x"]) + rng.normal(size=count)
                 + rng.normal(size=48)[data["g"] * 4 + data["h"] - 1] * (1 + data["x"])
                 + rng.normal(size=12)[data["g"]] * (data["a"] == "v"))
    fit = smf.mixedlm("y ~ x", data, groups="g", **random).fit()
    document = hierfit.report(fit).document
    blocks = document["random"]
    names = {variable["name"] for variable in document["variables"]}
    assert {name for block in found_fields(blocks) for name in block} <= names
    assert [block["subjects"] for block in blocks] == subjects
    found = [[effect["fields"] for effect in block["effects"]] if "effects" in block else None
             for block in blocks]
    assert found == effects
    for block in blocks:
        count = len(block.get("terms", [])) or block.get("intercept", True) + len(found_fields([block]))
        for parameter in block["parameters"]:
            assert all(term < count for term in parameter.get("terms", []))
    if levels is not None:
        assert [term.get("levels") for term in blocks[0]["terms"]] == [None, levels]
    if "mix" in random.get("vc_formula", {}):
        assert blocks[0]["parameters"][0]["parameter"] == "mix"
