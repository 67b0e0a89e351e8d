#!/usr/bin/python3
"""Holds the two bridges against one another: models fitted in R and in Python, and every cell of
the two reports equal.

    bridges/same.py [--r-package FOLDER] [--verbose]

Needs R with lme4 and emmeans, statsmodels, and the command (HIERFIT or the path). Where R or the R
package is absent it says so and has nothing to hold.
"""

import argparse
import json
import pathlib
import shutil
import subprocess
import sys
import tempfile
import warnings

import numpy as np
import pandas as pd

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE / "python"))
DATA = HERE / "python" / "tests" / "data"

import statsmodels.api as sm  # noqa: E402
import statsmodels.formula.api as smf  # noqa: E402

import hierfit  # noqa: E402

#: Numbers are the same when they differ by less, relative to their size.
TOLERANCE = 1e-4
#: What is smaller counts as 0; for p values, TOLERANCE does.
NOTHING = 1e-6

R_HEAD = """
library(hierfit)
control <- lme4::lmerControl(optimizer = "bobyqa", optCtrl = list(rhoend = 1e-10, maxfun = 1e6))
"""


def read(name, **types):
    return pd.read_csv(DATA / f"{name}.csv", dtype=types)


def cbpp():
    data = read("cbpp", period=str)
    return data.assign(others=data["size"] - data["incidence"])


def cake():
    data = read("cake")
    return data.assign(id=data["recipe"] + data["replicate"].astype(str))


def tight(model):
    return model.fit(gtol=1e-9)


#: Each model in R, of the data set `d`, and in Python; and what both are asked for.
MODELS = {
    "sleepstudy": (
        "sleepstudy", "lme4::lmer(Reaction ~ Days + (Days | Subject), d, control = control)",
        lambda: tight(smf.mixedlm("Reaction ~ Days", read("sleepstudy"), groups="Subject",
                                  re_formula="~Days")), "", {}),
    "maximum likelihood": (
        "sleepstudy",
        "lme4::lmer(Reaction ~ Days + (Days | Subject), d, REML = FALSE, control = control)",
        lambda: smf.mixedlm("Reaction ~ Days", read("sleepstudy"), groups="Subject",
                            re_formula="~Days").fit(reml=False, gtol=1e-9), "", {}),
    "unbalanced": (
        "sleepstudy", "lme4::lmer(Reaction ~ Days + (Days | Subject), d[-seq(4, 60, 7), ], "
                      "control = control)",
        lambda: tight(smf.mixedlm("Reaction ~ Days", read("sleepstudy").drop(range(3, 60, 7)),
                                  groups="Subject", re_formula="~Days")), "", {}),
    "crossed": (
        "penicillin", "lme4::lmer(diameter ~ 1 + (1 | plate) + (1 | sample), d, control = control)",
        lambda: tight(smf.mixedlm("diameter ~ 1", read("penicillin").assign(all=1), groups="all",
                                  vc_formula={"plate": "0 + plate", "sample": "0 + sample"})),
        "", {}),
    "nested": (
        "pastes", "lme4::lmer(strength ~ 1 + (1 | batch / cask), d, control = control)",
        lambda: tight(smf.mixedlm("strength ~ 1", read("pastes"), groups="batch", re_formula="1",
                                  vc_formula={"cask": "0 + cask"})), "", {}),
    "factors": (
        "cake", "lme4::lmer(angle ~ recipe * temp + (1 | id), "
                "transform(d, temp = factor(temp), id = paste0(recipe, replicate)), "
                "control = control)",
        lambda: tight(smf.mixedlm("angle ~ recipe * C(temp)", cake(), groups="id")),
        "means = list(~ recipe | temp, ~ temp), contrasts = 'pairwise', "
        "adjust = 'sequential sidak'",
        dict(means=["recipe | temp", "temp"], contrasts="pairwise", adjust="sequential sidak")),
    "contrasts": (
        "cake", "lme4::lmer(angle ~ recipe * temp + (1 | id), "
                "transform(d, id = paste0(recipe, replicate)), control = control)",
        lambda: tight(smf.mixedlm("angle ~ recipe * temp", cake(), groups="id")),
        "means = ~ recipe, contrasts = 'pairwise', adjust = 'holm'",
        dict(means="recipe", contrasts="pairwise", adjust="holm")),
    "events": (
        "cbpp", "glm(cbind(incidence, size - incidence) ~ period, binomial, "
                "transform(d, period = factor(period)), control = list(epsilon = 1e-14))",
        lambda: smf.glm("incidence + others ~ period", cbpp(),
                        family=sm.families.Binomial()).fit(tol=1e-14),
        "means = ~ period, contrasts = 'deviation', adjust = 'bonferroni'",
        dict(means="period", contrasts="deviation", adjust="bonferroni")),
    "t tests": (
        "cake", "lm(angle ~ recipe * temp, d)",
        lambda: smf.ols("angle ~ recipe * temp", read("cake")).fit(),
        "means = ~ recipe, contrasts = 'simple', df = 'residual'",
        dict(means="recipe", contrasts="simple")),
}


def write_r(package, place):
    """Writes the fit documents of all models in R; gives what stands in the way, if anything."""
    if shutil.which("Rscript") is None:
        return "R is not installed"
    if not (package / "DESCRIPTION").exists():
        return f"there is no R package in {package}"
    packages = "c('lme4', 'lmerTest', 'emmeans', 'jsonlite', 'numDeriv')"
    needed = f"all(sapply({packages}, requireNamespace, quietly = TRUE))"
    found = subprocess.run(["Rscript", "-e", f"cat({needed})"], capture_output=True, text=True)
    if not found.stdout.endswith("TRUE"):
        return "R lacks lme4, lmerTest, emmeans, jsonlite or numDeriv"
    library = place / "library"
    library.mkdir()
    done = subprocess.run(["R", "CMD", "INSTALL", "--no-docs", "--no-test-load",
                           f"--library={library}", str(package)], capture_output=True, text=True)
    if done.returncode != 0:
        sys.exit(f"the R package cannot be installed:\n{done.stderr}")
    lines = [f".libPaths(c('{library}', .libPaths()))", R_HEAD]
    for number, (data, call, _, wishes, _) in enumerate(MODELS.values()):
        df = "" if "df =" in wishes else ", df = 'asymptotic'"
        lines += [f"d <- read.csv('{DATA / data}.csv', stringsAsFactors = TRUE)",
                  f"fit <- {call}",
                  f"x <- hierfit(fit{df}{', ' + wishes if wishes else ''})",
                  f"write_documents(x, '{place / str(number)}', data = TRUE)"]
    script = place / "fits.R"
    script.write_text("\n".join(lines) + "\n")
    done = subprocess.run(["Rscript", str(script)], capture_output=True, text=True)
    if done.returncode != 0:
        sys.exit(f"R ended with:\n{done.stderr}")
    return None


def frame_of(report):
    cells = report.show(language="en").cells()
    return cells.set_index(["table", "number", "row", "column"])


def differences(left, right):
    """What of two reports is not the same, a line each, and how many numbers are."""
    lines = [f"only in R: {key}" for key in left.index.difference(right.index)]
    lines += [f"only in Python: {key}" for key in right.index.difference(left.index)]
    shared = left.index.intersection(right.index)
    count = 0
    for key in shared:
        one, other = left.loc[key], right.loc[key]
        values = np.array([one["value"], other["value"]], dtype=float)
        if np.isnan(values).all():
            if one["shown"] != other["shown"]:
                lines.append(f"{key}: {one['shown']!r} and {other['shown']!r}")
            continue
        count += 1
        is_p = "ig." in key[3].rsplit(" / ", 1)[-1]
        size = np.abs(values).max()
        if not abs(values[0] - values[1]) <= max(TOLERANCE * size, TOLERANCE if is_p else NOTHING):
            lines.append(f"{key}: {values[0]!r} and {values[1]!r}")
    return lines, count


def main():
    options = argparse.ArgumentParser(description=__doc__,
                                      formatter_class=argparse.RawDescriptionHelpFormatter)
    options.add_argument("--r-package", type=pathlib.Path, default=HERE / "r" / "hierfit")
    options.add_argument("--verbose", action="store_true")
    chosen = options.parse_args()
    warnings.simplefilter("ignore")
    failed = False
    with tempfile.TemporaryDirectory() as folder:
        place = pathlib.Path(folder)
        reason = write_r(chosen.r_package.resolve(), place)
        if reason is not None:
            print(f"same: skipped, {reason}")
            return 0
        for number, (name, model) in enumerate(MODELS.items()):
            left = hierfit.fit(json.loads((place / str(number) / "fit.json").read_text()))
            right = hierfit.report(model[2](), **model[4])
            lines, count = differences(frame_of(left), frame_of(right))
            print(f"{name}: {count} numbers, {len(lines)} differences")
            for line in lines if chosen.verbose else lines[:10]:
                print(f"  {line}")
            failed = failed or bool(lines)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
