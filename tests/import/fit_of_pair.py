#!/usr/bin/env python3
"""Writes the fit document of a pair of result documents, the way back of the import.

Usage: fit_of_pair.py FOLDER [--formula TEXT] [--call TEXT] [--df METHOD]

FOLDER holds model.pmml, result.xml and perhaps dictionary.json. What reckoning would give back is
written all the same, so that every number comes through to its last bit.
"""
import argparse
import json
import pathlib
import re
import xml.etree.ElementTree as tree

DISTRIBUTIONS = {"NORMAL": "normal", "BINOMIAL": "binomial", "POISSON": "poisson", "GAMMA": "gamma",
                 "NEGBIN": "negative binomial", "IGAUSS": "inverse gaussian", "NOMINAL": "nominal",
                 "ORDINAL": "ordinal"}
LINKS = {"NLOGLOG": "loglog", "LOGC": "log complement"}
STRUCTURES = {"VC": "variance components", "AR1": "ar1", "ARMA11": "arma11", "CS": "compound symmetry",
              "DIAG": "diagonal", "ID": "identity", "TP": "toeplitz", "UNSTRUCTURED": "unstructured"}
ADJUSTMENTS = {"LSD": "none", "SEQBONFERRONI": "holm", "SEQSIDAK": "sequential sidak", "NONE": "other"}
CONDITIONS = {"kGLMM_C8": "random effects fixed", "kGLMM_C9": "covariance fixed",
              "kGLMM_C26": "subject unused"}
LEVELS = {"categorical": "nominal", "ordinal": "ordinal", "continuous": "scale"}


def number(text):
    if text in (None, "", "__MISSING__"):
        return None
    value = float(text)
    return int(text) if re.fullmatch(r"-?\d+", text) else value


def local(root):
    for element in root.iter():
        element.tag = element.tag.split("}")[-1]
    return root


def drop_empty(members):
    return {name: value for name, value in members.items() if value not in (None, "", [], {})}


def items(element):
    array = element.find("Array")
    return [item.strip('"') for item in re.findall(r'"(?:[^"\\]|\\.)*"|\S+', array.text or "")]


class Pair:
    def __init__(self, folder):
        self.model = local(tree.parse(folder / "model.pmml").getroot())
        self.result = local(tree.parse(folder / "result.xml").getroot())
        dictionary = folder / "dictionary.json"
        fields = json.loads(dictionary.read_text())["fields"] if dictionary.exists() else []
        self.overlay = {field["name"]: field for field in fields}
        self.types = {field.get("name"): field.get("dataType") for field in self.model.iter("DataField")}
        self.settings = {p.get("name"): p for p in self.result.find("BuildSettings")}
        self.diagnostics = self.result.find("PMMLModel/ModelDiagnostics")
        self.statistics = {s.get("name"): number(s.get("value"))
                           for s in self.diagnostics.findall("Statistic")}

    def setting(self, name):
        return self.settings[name].get("value") if name in self.settings else None

    def value(self, field, text):
        return number(text) if self.types.get(field) in ("integer", "double") else text

    def variables(self):
        for field in self.model.iter("DataField"):
            name = field.get("name")
            over = self.overlay.get(name, {})
            values = [self.value(name, v.get("value")) for v in field.findall("Value")]
            labels = {v.get("value"): v.get("displayValue") for v in field.findall("Value")
                      if v.get("displayValue")}
            labels.update({c["value"]: c["label"] for c in over.get("categories", [])})
            level = over.get("measurementLevel", LEVELS[field.get("optype")])
            yield drop_empty({
                "name": name, "label": over.get("title", field.get("displayName")),
                "level": None if level == ("nominal" if values else "scale") else level,
                "type": None if values or field.get("dataType") == "double" else field.get("dataType"),
                "values": values, "labels": labels, "format": over.get("printFormat")})

    def effect(self, structure):
        parts = {a.get("name"): [v.get("value") for v in a.iter("Value")]
                 for a in structure.findall("Attribute")}
        nesting = [int(level) for level in parts.get("NestingLevels", [])]
        return drop_empty({"fields": parts["Fields"], "nesting": nesting if any(nesting) else None})

    def effects(self, element):
        return [self.effect(s) for s in element.findall("ListValue/StructuredValue")]

    def target(self):
        constant = self.setting("TrialsValue")
        return drop_empty({"variable": self.setting("TargetField"), "trials": self.setting("TrialsField"),
                           "trials.constant": int(constant) if constant else None})

    def levels(self, element):
        return {f.get("fieldName"): self.value(f.get("fieldName"), f.get("fieldValue"))
                for f in (element.iter("FieldInfo") if element is not None else [])}

    def estimate(self, stats):
        statistic = "tTest" if stats.get("tTest") else "zTest"
        names = {"estimate": "estimate", "std.error": "stdError", "df": "df", "statistic": statistic,
                 "p.value": "sig", "conf.low": "confIntervalLower", "conf.high": "confIntervalUpper"}
        return {name: number(stats.get(attribute)) for name, attribute in names.items()}

    def coefficients(self):
        for block in self.result.iter("ParameterEstimates"):
            if block.get("parameterType") != "fixed":
                continue
            category = self.levels(block.find("SegmentInfo"))
            for stats in block.findall("ParameterStats"):
                if stats.get("isRedundant") == "true":
                    continue
                effect = stats.find("Statistic")
                row = {"term": stats.get("paramLabel"), "y.level": next(iter(category.values()), None),
                       "effect": int(effect.get("value")) if effect is not None else None,
                       "levels": {f.get("field"): self.value(f.get("field"), f.get("value"))
                                  for f in stats.iter("Factor")}}
                row.update(self.estimate(stats))
                row.update({"exp": number(stats.get("expEstimate")),
                            "exp.low": number(stats.get("expCILower")),
                            "exp.high": number(stats.get("expCIUpper"))})
                yield drop_empty(row)

    def parameters(self, kind, block=None):
        for estimates in self.result.iter("ParameterEstimates"):
            if estimates.get("parameterType") != kind or estimates.get("block") != block:
                continue
            for stats in estimates.findall("ParameterStats"):
                name = stats.find("PrintableList")
                pattern = name.get("pattern")
                terms = [int(p.get("pattern")[1:]) for p in name.findall("PrintableList") if p.get("mapId")]
                word = {"Variance ": "variance", "Dispersion": "dispersion", "VarOfEffect": "variance",
                        "Var(^1)": "variance", "Cov(^1,^2)": "covariance"}.get(pattern, pattern)
                estimate = self.estimate(stats)
                is_fixed = kind == "repeated" and word == "variance" and estimate["estimate"] == 1
                yield drop_empty({"parameter": word, "terms": terms,
                                  "levels": self.levels(estimates.find("SegmentInfo")),
                                  "fixed": True if is_fixed else None, **estimate})

    def random(self):
        specs = self.settings.get("RandomSpecs")
        matrices = [d for d in self.diagnostics.findall("StructuredData")
                    if d.get("description") == "randomEffectCovariances"]
        for at, spec in enumerate(specs.findall("ListValue/StructuredValue") if specs is not None else []):
            parts = {a.get("name"): a for a in spec.findall("Attribute")}
            subject = parts["SubjectSpec"].find("StructuredValue")
            subject = self.effect(subject) if subject is not None else {}
            covariances = []
            for data in matrices:
                if data.find("Statistic").get("value") != str(at):
                    continue
                for segment in data.findall("SegmentData"):
                    numbers = [number(i) for i in items(segment.find("Matrix"))]
                    size = int(segment.find("Matrix").get("nbRows"))
                    rows = [numbers[r * (r + 1) // 2:(r + 1) * (r + 2) // 2] for r in range(size)]
                    covariances.append(drop_empty({"levels": self.levels(segment.find("SegmentInfo")),
                                                   "matrix": rows}))
            yield drop_empty({
                "subjects": subject.get("fields"), "nesting": subject.get("nesting"),
                "groups": [v.get("value") for v in parts["GroupSpec"].iter("Value")],
                "structure": STRUCTURES[parts["CovarianceType"].get("value")],
                "intercept": None if parts["Intercept"].get("value") == "true" else False,
                "effects": self.effects(parts["EffectList"]),
                "parameters": list(self.parameters("random", str(at))), "covariances": covariances})

    def residual(self):
        subject = self.settings["ResidualSubjectSpec"].find("StructuredValue")
        repeated = [c.get("field") for g in self.result.iter("CoordinatesGroup")
                    if g.get("description") == "repeatedMeasures" for c in g.findall("Coordinates")]
        return drop_empty({"subjects": self.effect(subject)["fields"] if subject is not None else None,
                           "structure": STRUCTURES[self.setting("ResidualCovarianceType")],
                           "repeated": repeated, "parameters": list(self.parameters("repeated"))})

    def f_test(self, stats):
        test = stats.find("FTest")
        names = {"statistic": "fStatistic", "num.df": "df1", "den.df": "df2", "p.value": "sig"}
        return {n: number(test.get(a)) if test is not None else None for n, a in names.items()}

    def tests(self):
        tests = {"type": None, "model": None, "effects": []}
        for stats in self.diagnostics.findall("ModelTestStats"):
            tests["type"] = stats.get("testType")
            if stats.get("description") == "correctedModel":
                tests["model"] = self.f_test(stats)
            else:
                tests["effects"].append({"effect": int(stats.get("testID")), **self.f_test(stats)})
        return drop_empty(tests)

    def columns(self, table):
        found = {}
        for coordinates in table.findall("Coordinates"):
            found[coordinates.get("statistic")] = [number(i) for i in items(coordinates)]
        return found

    def mean_rows(self, table):
        group = table.find("CoordinatesGroup")
        fields = [(c.get("field"), items(c)) for c in group.findall("Coordinates")]
        columns = self.columns(table)
        names = {"estimate": "mean", "std.error": "stdErr", "conf.low": "confIntervalLower",
                 "conf.high": "confIntervalUpper"}
        rows = [{"levels": {f: self.value(f, values[at]) for f, values in fields},
                 **{n: columns[c][at] for n, c in names.items()}} for at in range(len(fields[0][1]))]
        return [field for field, _ in fields], rows

    def contrasts(self, spec, table):
        parts = {a.get("name"): a.get("value") for a in spec.findall("Attribute")}
        compare = parts["CompareFactor"]
        group = table.find("CoordinatesGroup")
        lists = [(c.get("field"), items(c)) for c in group.findall("Coordinates")]
        columns = self.columns(table)
        names = {"estimate": "contrastEstimate", "std.error": "stdErr", "df": "df", "statistic": "tTest",
                 "adj.p.value": "adjustedSig", "conf.low": "confIntervalLower",
                 "conf.high": "confIntervalUpper"}
        rows = []
        for at in range(len(lists[0][1])):
            level, other = [values[at] for field, values in lists if field == compare]
            deviation = parts["ContrastType"] == "Deviation"
            rows.append(drop_empty({
                "levels": {f: self.value(f, values[at]) for f, values in lists if f != compare},
                "level": self.value(compare, level),
                "against": None if deviation else self.value(compare, other)})
                | {n: columns[c][at] for n, c in names.items()})
        reference = parts.get("ReferenceValue") if parts.get("ReferenceType") == "Value" else None
        return drop_empty({"compare": compare, "type": parts["ContrastType"].lower(),
                           "reference": self.value(compare, reference), "rows": rows})

    def means(self):
        specs = self.settings.get("EMMEANS")
        specs = specs.findall("ListValue/StructuredValue") if specs is not None else []
        groups = [g for g in self.diagnostics.findall("DataGroup") if g.get("description") == "customEmmeans"]
        for spec, group in zip(specs, groups):
            tables = {t.get("description"): t for t in group.findall("MultivariateData")}
            fields, rows = self.mean_rows(tables["estimates"])
            held = group.find("Label/PrintableList")
            at = {p.get("pattern"): number(p.find("PrintableList").get("pattern"))
                  for p in (held if held is not None else [])}
            yield drop_empty({
                "fields": fields, "at": at, "scale": "response", "rows": rows,
                "contrasts": self.contrasts(spec, tables["contrasts"]) if "contrasts" in tables else None,
                "tests": [drop_empty({"levels": self.levels(t.find("SegmentInfo")), **self.f_test(t)})
                          for t in group.findall("ModelTestStats")]})

    def effect_means(self):
        for group in self.diagnostics.findall("DataGroup"):
            if group.get("description") == "Emmeans":
                fields, rows = self.mean_rows(group.find("MultivariateData"))
                yield {"fields": fields, "rows": rows}

    def summaries(self):
        found = {}
        data = self.diagnostics.find("UnivariateData")
        if data is not None:
            found["records"] = int(data.find("Counts").get("totalFreq"))
            statistics = {s.get("name"): number(s.get("value")) for s in data.findall("Statistic")}
            lists = {c.get("feature"): [number(i) for i in items(c)] for c in data.findall("Coordinates")}
            found["target"] = drop_empty({
                "mean": statistics["mean"], "sd": statistics["stdDeviation"],
                **{name: statistics.get(name) for name in ("shape", "rate", "r", "p")},
                "bins": lists["observed"], "counts": lists["frequency"]})
        pairs = self.diagnostics.find("BivariateData")
        if pairs is not None:
            lists = {c.get("feature"): [number(i) for i in items(c)] for c in pairs.findall("Coordinates")}
            found["predicted"] = {"observed": lists["observed"], "predicted": lists["statistic"],
                                  "counts": lists["frequency"]}
            if set(lists["frequency"]) == {1}:
                del found["predicted"]["counts"]
        matrix = self.diagnostics.find("Matrix")
        if matrix is not None:
            size = int(matrix.get("nbRows"))
            numbers = [number(i) for i in items(matrix)]
            found["classification"] = [numbers[r * size:(r + 1) * size] for r in range(size)]
        for data in self.diagnostics.findall("StructuredData"):
            if data.get("description") == "firstSubjectRecordsForDataStructure":
                found["first.subject"] = self.first_subject(data)
        return found

    def first_subject(self, data):
        lists = {g.get("description"): [(c.get("field"), items(c)) for c in g.findall("Coordinates")]
                 for g in data.iter("CoordinatesGroup")}
        lists = {k: [(f, [self.value(f, i) for i in v]) for f, v in pairs] for k, pairs in lists.items()}
        return drop_empty({"subject": self.levels(data.find("SegmentData/SegmentInfo")),
                           "records": int(data.find("Counts").get("totalFreq")),
                           "repeated": dict(lists.get("repeatedMeasures", [])),
                           "target": lists["target"][0][1],
                           "trials": lists["target"][1][1] if len(lists["target"]) > 1 else None})

    def engine(self, call):
        application = self.model.find("Header/Application")
        messages = [(m.find("PrintableList"), m.find("PrintableList/PrintableValue"))
                    for m in self.result.findall("PMMLModel/TrainingSummary/Message")]
        return drop_empty({"name": application.get("name"), "version": application.get("version"), "call": call,
                           "warnings": [v.get("value") for _, v in messages if v is not None],
                           "conditions": [CONDITIONS[p.get("pattern")] for p, v in messages if v is None]})

    def fit(self, arguments):
        distribution = self.setting("DistributionOfTarget")
        link = self.setting("LinkFunctionType")
        mean = {"estimate": "grandMean", "std.error": "grandMeanStdErr", "conf.low": "grandMeanCILower",
                "conf.high": "grandMeanCIUpper"}
        log_likelihood = self.statistics.get("minus2LogLikelihood")
        return drop_empty({
            "hierfit": "hierfit-fit-1",
            "engine": self.engine(arguments.call),
            "name": self.result.find("PMMLModel").get("modelName"),
            "title": self.model.find("Header").get("description"),
            "formula": arguments.formula,
            "variables": list(self.variables()),
            "target": self.target(),
            "distribution": DISTRIBUTIONS[distribution],
            "link": LINKS.get(link, link.lower()),
            "fixed": {"effects": self.effects(self.settings["FixedEffectList"])},
            "random": list(self.random()),
            "residual": self.residual(),
            "coefficients": list(self.coefficients()),
            "tests": self.tests(),
            "statistics": drop_empty({
                "AICc": self.statistics.get("AICC"), "BIC": self.statistics.get("BIC"),
                "logLik": None if log_likelihood is None else log_likelihood / -2,
                "accuracy": self.statistics.get("classificationAccuracy")}),
            "grand.mean": drop_empty({n: self.statistics.get(s) for n, s in mean.items()})
            if "grandMean" in self.statistics else None,
            "conf.level": number(self.setting("CIn")),
            "df.method": arguments.df,
            "adjust": ADJUSTMENTS[self.setting("pAdjustment")],
            "effect.means": list(self.effect_means()),
            "means": list(self.means()),
            "summaries": self.summaries()})


def written(value, indent=0):
    """JSON with a line for each row, broken where it is wider than a page."""
    line = json.dumps(value, ensure_ascii=False)
    if len(line) + indent <= 100 or not isinstance(value, (dict, list)) or not value:
        return line
    pad = " " * (indent + 2)
    if isinstance(value, dict):
        parts = [f"{pad}{json.dumps(k, ensure_ascii=False)}: {written(v, indent + 2)}" for k, v in value.items()]
        return "{\n" + ",\n".join(parts) + "\n" + " " * indent + "}"
    if any(isinstance(item, (dict, list)) for item in value):
        parts = [pad + written(item, indent + 2) for item in value]
        return "[\n" + ",\n".join(parts) + "\n" + " " * indent + "]"
    lines, row = [], ""
    for item in map(json.dumps, value):
        if row and len(pad + row + item) > 98:
            lines.append(row)
            row = ""
        row += (" " if row else "") + item + ","
    lines.append(row[:-1])
    return "[\n" + "\n".join(pad + line for line in lines) + "\n" + " " * indent + "]"


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("folder", type=pathlib.Path)
    for option in ("--formula", "--call", "--df"):
        parser.add_argument(option)
    arguments = parser.parse_args()
    print(written(Pair(arguments.folder).fit(arguments)))
