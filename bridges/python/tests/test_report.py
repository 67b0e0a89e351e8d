"""Reports: shown, saved, read back; and the command that makes them."""

import json
import re
import stat

import numpy as np
import pytest
import statsmodels.api as sm
import statsmodels.formula.api as smf
from statsmodels.miscmodels.ordinal_model import OrderedModel

import hierfit
from conftest import SCHEMA, close, needs_command
from hierfit import command

jsonschema = pytest.importorskip("jsonschema")


@pytest.fixture
def report(sleepstudy):
    fit = smf.mixedlm("Reaction ~ Days", sleepstudy, groups="Subject", re_formula="~Days").fit()
    return hierfit.report(fit, labels={"Reaction": "Reaction time (ms)"}, title="Sleep",
                          name="sleep").show(language="en")


FITS = {
    "mixedlm": lambda d, h: smf.mixedlm("angle ~ C(recipe, Sum) * temp", d, groups="id",
                                        re_formula="~temp").fit(),
    "glm": lambda d, h: smf.glm("sick ~ period", h, family=sm.families.Binomial()).fit(),
    "gee": lambda d, h: smf.gee("angle ~ recipe * temp", "id", d).fit(),
    "bayes": lambda d, h: sm.BinomialBayesMixedGLM.from_formula(
        "sick ~ period", {"herd": "0 + C(herd)"}, h).fit_vb(),
    "ordered": lambda d, h: OrderedModel.from_formula("quality ~ recipe + temp", d,
                                                      distr="logit").fit(method="bfgs", disp=0),
    "ols": lambda d, h: smf.ols("np.log(angle) ~ bs(temp, df=3) + recipe", d).fit(),
}


@needs_command
@pytest.mark.parametrize("name", FITS)
@pytest.mark.parametrize("coefficients", ["as fitted", "levels"])
def test_documents_meet_the_schema_and_the_command(cake, herds, name, coefficients):
    factor = "period" if name in ("glm", "bayes") else "recipe"
    wishes = {} if name == "ordered" else {"means": factor, "contrasts": "pairwise"}
    report = hierfit.report(FITS[name](cake, herds), coefficients=coefficients, **wishes)
    jsonschema.validate(report.document, json.loads(SCHEMA.read_text()))
    cells = report.cells()  # a warning of the command would be an error here
    tables = set(cells["table"])
    assert {"ModelSummary", "FixedCoefficients"} <= tables
    assert ("Contrasts" in tables) == (name != "ordered")


@needs_command
def test_coded_factors_as_levels(cake):
    coded = smf.ols("angle ~ C(recipe, Sum) * temp", cake).fit()
    plain = smf.ols("angle ~ C(recipe, Treatment('C')) * temp", cake).fit()
    found, wanted = (
        hierfit.report(fit, coefficients="levels").show(language="en", tables=["FixedCoefficients"])
        .cells() for fit in (coded, plain))
    assert found["row"].tolist() == wanted["row"].tolist()
    close(found["value"], wanted["value"], rtol=1e-7, atol=1e-8)


@needs_command
def test_cells(report):
    cells = report.cells()
    assert list(cells.columns) == ["table", "number", "title", "row", "column", "value", "shown",
                                   "notes"]
    chosen = cells[(cells["table"] == "CovarianceParameters")
                   & (cells["row"] == "Cov(Days, Intercept)") & (cells["column"] == "Estimate")]
    assert chosen["value"].iloc[0] == report.document["random"][0]["parameters"][1]["estimate"]
    assert chosen["shown"].iloc[0] == "9.605"
    first = cells[cells["table"] == "ModelSummary"].iloc[0]
    assert first["shown"] == "Reaction time (ms)" and np.isnan(first["value"])


@needs_command
def test_save_and_documents(report, tmp_path):
    files = [tmp_path / "bericht.html", tmp_path / "tables.json"]
    report.save(*files, style="apa", language="de")
    assert '<html lang="de"' in files[0].read_text()
    assert json.loads(files[1].read_text())["language"] == "de"
    folder = tmp_path / "made" / "documents"
    assert [name.rsplit("/", 1)[1] for name in report.documents(folder)] == [
        "fit.json", "model.pmml", "result.xml"]
    written = json.loads((folder / "fit.json").read_text())
    assert "data" not in written and written["title"] == "Sleep"
    report.documents(folder, data=True)
    assert json.loads((folder / "fit.json").read_text()) == report.document
    again = command.run([str(folder / "model.pmml"), str(folder / "result.xml"), "-f", "json",
                         "-l", "en", "-o", "-"])
    assert json.loads(again)["content"] == json.loads(report.render("json"))["content"]
    with pytest.raises(TypeError, match="name of a file"):
        report.save()


@needs_command
def test_the_formula_has_the_random_part(report):
    assert "Reaction ~ 1 + Days + (1 + Days | Subject)" in " ".join(str(report).split())


@needs_command
def test_shown_in_terminals_and_notebooks(report):
    assert "Reaction time (ms)" in repr(report) and "Table 1" in repr(report)
    assert max(map(len, report.text(60).splitlines())) <= 60
    pages = [report._repr_html_(), report._repr_html_()]
    ids = [set(re.findall(r'\bid="([^"]+)"', page)) for page in pages]
    assert ids[0] and not ids[0] & ids[1]
    for page in pages:
        assert "<html" not in page and "<script" not in page and "<iframe" not in page
    assert report._repr_markdown_().startswith("# ")
    assert r"\begin{longtable}" in report._repr_latex_()
    assert r"\documentclass" not in report._repr_latex_()
    alone = report.show(tables=["FixedCoefficients"])._repr_html_()
    assert alone.count("<table") == 1 and "Days" in alone


@needs_command
def test_fits_of_ones_own():
    document = {
        "variables": [{"name": "y"}, {"name": "x"}], "target": {"variable": "y"},
        "distribution": "normal", "link": "identity", "fixed": {"effects": [{"fields": ["x"]}]},
        "coefficients": [{"estimate": 1.5, "std.error": 0.5},
                         {"effect": 0, "estimate": 2.0, "std.error": 0.25}],
    }
    cells = hierfit.fit(document).show(language="en").cells()
    statistics = cells[(cells["table"] == "FixedCoefficients") & (cells["column"] == "t")]
    assert statistics["value"].tolist() == [3, 8]
    document["coefficients"][0]["std.error"] = "0,5"
    with pytest.raises(hierfit.CommandFailed, match=r"coefficients\[0\].std.error") as error:
        hierfit.fit(document).text()
    assert error.value.status == 1
    document["coefficients"][0] = {"estimate": 1.5, "std_error": 0.5}
    odd = hierfit.fit(document)
    with pytest.warns(hierfit.HierfitWarning, match="did you mean std.error"):
        odd.text()
    assert odd._repr_html_() and repr(odd)  # what is shown says it itself


def test_a_missing_command_is_told(report, monkeypatch, tmp_path):
    monkeypatch.setenv("PATH", str(tmp_path))
    monkeypatch.delenv("HIERFIT", raising=False)
    assert "make build" in repr(report) and "\n" not in repr(report)
    assert report._repr_html_() is None and report._repr_markdown_() is None
    with pytest.raises(hierfit.CommandMissing, match="HIERFIT"):
        report.cells()
    monkeypatch.setenv("HIERFIT", str(tmp_path / "nothing"))
    with pytest.raises(hierfit.CommandMissing, match="is no program"):
        report.save("report.html")


def test_the_command_is_found_by_its_variable_first(monkeypatch, tmp_path):
    for folder in ("path", "own"):
        (tmp_path / folder).mkdir()
        program = tmp_path / folder / "hierfit"
        program.write_text("#!/bin/sh\necho " + folder + "\n")
        program.chmod(program.stat().st_mode | stat.S_IXUSR)
    monkeypatch.setenv("PATH", f"{tmp_path / 'path'}:/bin")
    monkeypatch.delenv("HIERFIT", raising=False)
    assert command.run([]) == b"path\n"
    monkeypatch.setenv("HIERFIT", str(tmp_path / "own" / "hierfit"))
    assert command.run([]) == b"own\n"
