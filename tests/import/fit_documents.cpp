#include "tests/import/fit_documents.h"

#include <doctest/doctest.h>
#include <fstream>
#include <iterator>

namespace hierfit::test {

std::string example_fit(const std::string& name) {
  std::ifstream file(HIERFIT_SOURCE_DIR "/examples/" + name + "/fit.json", std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

nlohmann::ordered_json small_fit() {
  return nlohmann::ordered_json::parse(R"json({
    "hierfit": "hierfit-fit-1",
    "engine": {"name": "bench", "version": "1", "call": "fit(y ~ g * x)"},
    "title": "A small fit",
    "variables": [
      {"name": "y", "label": "Yield"},
      {"name": "g", "values": ["a", "b", "c"], "labels": {"a": "first"}},
      {"name": "x"},
      {"name": "s", "values": [1, 2]}
    ],
    "target": {"variable": "y"},
    "distribution": "normal",
    "link": "identity",
    "fixed": {"effects": [{"fields": ["g"]}, {"fields": ["x"]}, {"fields": ["g", "x"]}]},
    "random": [{
      "subjects": ["s"],
      "parameters": [{"parameter": "variance", "estimate": 2, "std.error": 0.5}],
      "covariances": [{"matrix": [[2]]}]
    }],
    "residual": {"subjects": ["s"], "parameters": [{"parameter": "variance", "estimate": 1}]},
    "coefficients": [
      {"estimate": 5, "std.error": 0.5, "df": 20},
      {"effect": 0, "levels": {"g": "b"}, "estimate": 1, "std.error": 0.25, "df": 20},
      {"effect": 0, "levels": {"g": "c"}, "estimate": -1, "std.error": 0.25, "df": 20},
      {"effect": 1, "estimate": 0.125, "std.error": 0.0625, "df": 20},
      {"effect": 2, "levels": {"g": "b"}, "estimate": 0.5, "std.error": 0.25, "df": 20},
      {"effect": 2, "levels": {"g": "c"}, "estimate": 0.75, "std.error": 0.25, "df": 20}
    ],
    "tests": {
      "model": {"statistic": 12, "num.df": 5, "den.df": 20},
      "effects": [
        {"effect": 0, "statistic": 16, "num.df": 2, "den.df": 20},
        {"effect": 1, "statistic": 4, "num.df": 1, "den.df": 20},
        {"effect": 2, "statistic": 3, "num.df": 2, "den.df": 20}
      ]
    },
    "statistics": {"AICc": 100, "BIC": 110, "logLik": -45},
    "grand.mean": {"estimate": 5, "std.error": 0.25, "df": 20},
    "adjust": "holm",
    "means": [{
      "fields": ["g"],
      "at": {"x": 1},
      "rows": [
        {"levels": {"g": "a"}, "estimate": 5, "std.error": 0.5, "df": 20},
        {"levels": {"g": "b"}, "estimate": 6, "std.error": 0.5, "df": 20},
        {"levels": {"g": "c"}, "estimate": 4, "std.error": 0.5, "df": 20}
      ],
      "contrasts": {
        "compare": "g",
        "type": "simple",
        "reference": "a",
        "rows": [
          {"level": "b", "against": "a", "estimate": 1, "std.error": 0.25, "df": 20},
          {"level": "c", "against": "a", "estimate": -1, "std.error": 0.25, "df": 20}
        ],
        "vcov": [[0.0625], [0.03125, 0.0625]]
      }
    }],
    "data": {
      "columns": {
        "y": [1, 2, 3, 4, 5, 6],
        "g": ["a", "b", "c", "a", "b", "c"],
        "x": [0, 0, 0, 1, 1, 1],
        "s": [1, 1, 1, 2, 2, 2]
      },
      "predicted": [1.5, 1.5, 3, 4, 5, 5.5]
    }
  })json");
}

nlohmann::ordered_json nominal_fit() {
  nlohmann::ordered_json fit = small_fit();
  fit["variables"][0]["values"] = {"low", "mid", "high"};
  fit["distribution"] = "nominal";
  fit["link"] = "logit";
  fit["target"]["reference"] = "low";
  fit.erase("means");
  fit["random"][0]["parameters"][0]["levels"] = {{"y", "mid"}};
  fit["random"][0]["covariances"][0]["levels"] = {{"y", "mid"}};
  const nlohmann::ordered_json rows = fit["coefficients"];
  fit["coefficients"] = nlohmann::ordered_json::array();
  for (const char* category : {"mid", "high"}) {
    for (nlohmann::ordered_json row : rows) {
      row["y.level"] = category;
      fit["coefficients"].push_back(row);
    }
  }
  fit["data"]["columns"]["y"] = {"low", "mid", "high", "low", "mid", "high"};
  fit["data"]["predicted"] = {"low", "low", "high", "low", "mid", "mid"};
  return fit;
}

nlohmann::ordered_json ordinal_fit() {
  nlohmann::ordered_json fit = nominal_fit();
  fit["distribution"] = "ordinal";
  fit["random"] = small_fit()["random"];
  fit["coefficients"] = small_fit()["coefficients"];
  fit["coefficients"][0]["threshold"] = "low";
  fit["coefficients"].push_back({{"threshold", "mid"}, {"estimate", 6}, {"std.error", 0.5}});
  return fit;
}

nlohmann::ordered_json events_fit() {
  nlohmann::ordered_json fit = small_fit();
  fit["variables"].push_back({{"name", "n"}, {"type", "integer"}});
  fit["target"]["trials"] = "n";
  fit["distribution"] = "binomial";
  fit["link"] = "logit";
  fit["data"]["columns"]["n"] = {8, 8, 8, 8, 8, 8};
  fit["residual"]["repeated"] = {"x"};
  return fit;
}

std::string Imported::said() const {
  std::string text;
  for (const fit::Problem& problem : problems.list()) {
    text += problem.severity == fit::Severity::Error ? "error: " : "";
    text += problem.sentence + "\n";
  }
  return text;
}

TableRun Imported::run(const std::string& language) const {
  INFO(said());
  REQUIRE(documents);
  DocumentFiles files = {documents->model, documents->result, {}};
  if (!documents->dictionary.empty()) files.dictionary = documents->dictionary;
  return test::run(files, language);
}

Imported import_text(const std::string& text) {
  Imported imported;
  imported.documents = fit::import_fit(text, imported.problems);
  return imported;
}

Imported import_json(const nlohmann::ordered_json& fit) { return import_text(fit.dump()); }

}  // namespace hierfit::test
