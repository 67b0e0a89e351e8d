// Coefficients of contrast-coded factors.
#include <cmath>
#include <doctest/doctest.h>

#include "import/prepared.h"
#include "import/read_fit.h"
#include "tests/import/fit_documents.h"

namespace {

using namespace hierfit;
using namespace hierfit::test;
using nlohmann::ordered_json;

// The stools of Pinheiro & Bates (2000), section 1.2, as S-PLUS fits them: Helmert contrasts. The
// design is balanced, so that the columns are not correlated.
ordered_json helmert_fit() {
  return ordered_json::parse(R"json({
    "hierfit": "hierfit-fit-1",
    "variables": [{"name": "effort"}, {"name": "Type", "values": ["T1", "T2", "T3", "T4"]}],
    "target": {"variable": "effort"},
    "distribution": "normal",
    "link": "identity",
    "fixed": {
      "effects": [{"fields": ["Type"]}],
      "codings": [{"variable": "Type", "matrix": [[-1, -1, -1], [1, -1, -1], [0, 2, -1], [0, 0, 3]]}]
    },
    "coefficients": [
      {"estimate": 10.25, "std.error": 0.48052, "df": 24},
      {"effect": 0, "term": "Type1", "columns": {"Type": 0}, "estimate": 1.944444, "std.error": 0.25934, "df": 24},
      {"effect": 0, "term": "Type2", "columns": {"Type": 1}, "estimate": 0.092593, "std.error": 0.14973, "df": 24},
      {"effect": 0, "term": "Type3", "columns": {"Type": 2}, "estimate": -0.342593, "std.error": 0.10588, "df": 23}
    ],
    "vcov": [[0.230899, 0, 0, 0], [0, 0.067257, 0, 0], [0, 0, 0.022419, 0], [0, 0, 0, 0.011210]]
  })json");
}

std::vector<fit::Coefficient> rows_of(const ordered_json& document) {
  fit::Problems problems;
  const fit::Prepared prepared(fit::read_fit(document.dump(), problems), problems);
  REQUIRE_FALSE(problems.has_errors());
  return prepared.fit.coefficients;
}

}  // namespace

TEST_CASE("columns of a coding become the published level rows") {
  const std::vector<fit::Coefficient> rows = rows_of(helmert_fit());
  REQUIRE(rows.size() == 4);
  // The treatment contrasts of the same fit, from the last level: means 8.5556, 12.4444, 10.7778
  // and 9.2222 with standard errors of 0.5760, differences with 0.5187.
  const double estimates[] = {9.2222, -0.6667, 3.2222, 1.5556};
  const double errors[] = {0.5760, 0.5187, 0.5187, 0.5187};
  for (size_t at = 0; at < rows.size(); ++at) {
    CAPTURE(at);
    CHECK(std::abs(rows[at].estimate - estimates[at]) < 1e-4);
    CHECK(std::abs(rows[at].std_error - errors[at]) < 1e-4);
    CHECK(rows[at].statistic == doctest::Approx(rows[at].estimate / rows[at].std_error));
  }
  CHECK(rows[1].levels == fit::Levels{{"Type", {"T1"}}});
  CHECK(rows[0].df == 23);
  CHECK(rows[1].df == 23);
}

TEST_CASE("levels as columns of an identity come back as they were, covariates and all") {
  ordered_json document = small_fit();
  const std::vector<fit::Coefficient> plain = rows_of(document);
  document["fixed"]["codings"] = {{{"variable", "g"}, {"matrix", {{0, 0}, {1, 0}, {0, 1}}}}};
  ordered_json covariance = ordered_json::array();
  for (size_t at = 0; at < document["coefficients"].size(); ++at) {
    ordered_json& row = document["coefficients"][at];
    if (row.contains("levels")) {
      row["columns"] = {{"g", row["levels"]["g"] == "b" ? 0 : 1}};
      row.erase("levels");
    }
    ordered_json line(std::vector<double>(document["coefficients"].size(), 0.0));
    line[at] = row["std.error"].get<double>() * row["std.error"].get<double>();
    covariance.push_back(line);
  }
  document["vcov"] = covariance;
  const std::vector<fit::Coefficient> rows = rows_of(document);
  REQUIRE(rows.size() == plain.size());
  // g = a was 0; now g = c is. Predictions are the same: 5, 6, 4 at x = 0, slopes 0.125, 0.625,
  // 0.875.
  const double estimates[] = {4, 1, 2, 0.875, -0.75, -0.25};
  for (size_t at = 0; at < rows.size(); ++at)
    CHECK(rows[at].estimate == doctest::Approx(estimates[at]).epsilon(1e-12));
  CHECK(rows[1].std_error == doctest::Approx(0.25));
  CHECK(rows[2].std_error == doctest::Approx(std::sqrt(0.125)));
}

TEST_CASE("without a coding rows stand under the engine's names, and nothing is redundant") {
  ordered_json document = helmert_fit();
  document["fixed"].erase("codings");
  for (ordered_json& row : document["coefficients"])
    row.erase("columns");
  document["coefficients"][2]["term"] = "Type=2";
  const auto imported = import_json(document);
  CHECK(imported.said() == "");
  const TableRun run = imported.run();
  REQUIRE(run.reads);
  CHECK(run.cell("FixedCoefficients", {"Type1", "Coefficient"}) == "1.944");
  CHECK(run.cell("FixedCoefficients", {"Type=2 (as fitted)", "Coefficient"}) == "0.093");
  CHECK(run.cell("FixedCoefficients", {"Type=T1", "Coefficient"}) == "(none)");
}

TEST_CASE("a coding that does not fit is told") {
  const auto said_after = [](const char* pointer, const char* value) {
    ordered_json document = helmert_fit();
    document[ordered_json::json_pointer(pointer)] = ordered_json::parse(value);
    return import_json(document).said();
  };
  CHECK(said_after("/coefficients/3/columns/Type", "3") ==
        "error: coefficients[3].columns.Type is \"3\", and the coding has 3 columns, counted from "
        "0\n");
  CHECK(said_after("/fixed/codings/0/matrix", "[[1], [2]]").find("needs a row of equal length") !=
        std::string::npos);
  CHECK(said_after("/vcov", "[]") ==
        "error: vcov is lacking, without which columns of codings cannot be turned into levels\n");
  CHECK(said_after("/fixed/codings", "[]").find("which has no coding") != std::string::npos);
}
