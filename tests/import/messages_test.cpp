// What is said about a fit that is wrong or odd.
#include <doctest/doctest.h>

#include "tests/import/fit_documents.h"

namespace {

using namespace hierfit::test;
using nlohmann::ordered_json;

/// One change of the small fit, and what is said of it.
struct Case {
  const char* pointer;
  const char* value;
  const char* said;
};

std::string said_of(const Case& change) {
  ordered_json fit = small_fit();
  fit[ordered_json::json_pointer(change.pointer)] = ordered_json::parse(change.value);
  return import_json(fit).said();
}

}  // namespace

TEST_CASE("an error names the member of a fit, what stands there and what may") {
  const Case cases[] = {
      {"/coefficients/3/std.error", R"("0,83")",
       "error: coefficients[3].std.error is \"0,83\", which is no number\n"},
      {"/coefficients/0/std.error", "-1",
       "error: coefficients[0].std.error is -1, which is no number of 0 or more\n"},
      {"/coefficients/0/p.value", "[1]",
       "error: coefficients[0].p.value is a list, which is no number\n"},
      {"/conf.level", "95", "error: conf.level is 95, which is no number between 0 and 1\n"},
      {"/distribution", R"("gausian")",
       "error: distribution is \"gausian\", which is none of normal, gaussian, binomial, "
       "bernoulli, "
       "poisson, negative binomial, negbin, nbinom, gamma, Gamma, inverse gaussian, "
       "inverse.gaussian, nominal, multinomial, ordinal, cumulative or other; did you mean "
       "gaussian?\n"},
      {"/hierfit", R"("hierfit-fit-9")",
       "error: hierfit is \"hierfit-fit-9\", which is not hierfit-fit-1; did you mean "
       "hierfit-fit-1?\n"},
      {"/fixed/effects/0/fields", R"(["G"])",
       "error: fixed.effects[0].fields[0] is \"G\", which is no variable\n"},
      {"/fixed/effects/0/fields", "[]",
       "error: fixed.effects[0].fields is empty; an effect has a field or more\n"},
      {"/coefficients/1/levels/g", R"("d")",
       "error: coefficients[1].levels.g is \"d\", which is no value of g; it has a, b, c\n"},
      {"/coefficients/1/effect", "7",
       "error: coefficients[1].effect is 7, and there are 3 effects, counted from 0\n"},
      {"/coefficients/2/levels/g", R"("b")",
       "error: coefficients[2] is the same term as coefficients[1]\n"},
      {"/coefficients/0", R"({"effect": 0, "levels": {"g": "a"}})",
       "error: coefficients lacks the intercept, a row without effect; a model without one has "
       "fixed.intercept false\n"},
      {"/random/0/covariances/0/matrix", "[[2], [1, 2]]",
       "error: random[0].covariances[0].matrix has 2 rows for 1 terms\n"},
      {"/vcov", "[[1, 2], [2, 1]]", "error: vcov has 2 rows for 6 coefficients\n"},
      {"/means/0/contrasts/compare", R"("x")",
       "error: means[0].contrasts.compare is \"x\", which is none of the fields of the means\n"},
      {"/means/0/rows/1/levels", R"({"h": "b"})",
       "error: means[0].rows[1].levels.h is a level of \"h\", which is none of the fields here\n"
       "error: means[0].rows[1].levels lacks the level of \"g\"\n"},
      {"/data/columns/x", "[1, 2]",
       "error: data.columns.x has 2 values, and data.columns.y has 6\n"},
      {"/data/columns/x/4", R"("NA")", "error: data.columns.x[4] is \"NA\", which is no number\n"},
      {"/data/columns/g/4", R"("NA")",
       "error: data.columns.g[4] is \"NA\", which is no value of g; it has a, b, c\n"},
      {"/target/trials", R"("x")",
       "error: target has trials, and distribution is \"normal\"; trials belong to a binomial "
       "one\n"},
      {"/variables/1/name", R"("y")",
       "error: variables[1].name is \"y\", which another variable has, too\n"},
  };
  for (const Case& change : cases) {
    CAPTURE(change.pointer);
    const std::string said = said_of(change);
    CHECK(said.substr(0, std::string(change.said).size()) == change.said);
  }
}

TEST_CASE("what is odd about a fit is warned of and stays without effect") {
  const Case cases[] = {
      {"/coefficients/0/std_error", "1",
       "coefficients[0] has a member \"std_error\" that is not known; did you mean std.error?\n"},
      {"/engine/build", R"({"deep": [[{"er": 1}]]})",
       "engine has a member \"build\" that is not known\n"},
      {"/variables/1/labels/z", R"("last")",
       "variables[1].labels has a label for \"z\", which is no value of the variable\n"},
      {"/tests/effects", R"([{"effect": 0, "statistic": 16}])",
       "tests.effects has 1 tests for 3 effects; their table stays away\n"},
      {"/data/columns/w", "[1, 1, 1, 1, 1, 1]", "data.columns.w is no variable\n"},
  };
  const auto plain = import_json(small_fit());
  REQUIRE(plain.documents);
  CHECK(plain.said() == "");
  for (const Case& change : cases) {
    CAPTURE(change.pointer);
    CHECK(said_of(change) == change.said);
  }
  ordered_json fit = small_fit();
  for (ordered_json& row : fit["coefficients"])
    row["std_error"] = 1;
  const auto odd = import_json(fit);
  CHECK(odd.said() == cases[0].said);
  CHECK(odd.documents->result == plain.documents->result);
}

TEST_CASE("text that is no fit is told apart") {
  const Case cases[] = {
      {"", "{\"hierfit\": \"hierfit-fit-1\",\n\"name\" 1}", "error: this is no JSON: "},
      {"", "<!DOCTYPE html><html>", "error: this is a web page, and no fit document\n"},
      {"", "RDX3\n", "error: this is an R object, and no fit document\n"},
      {"", "PK\x03\x04", "error: this is a spreadsheet or another zip archive"},
      {"", "", "error: this is no JSON: "},
      {"", "[]", "error: the document is a list, where an object is meant\n"},
      {"", "{\"conf.level\": 1e999}", "error: conf.level is \"1e999\", which is beyond"},
      {"", "{\"name\": \"a\", \"name\": \"b\"", "error: the document has the member name twice\n"},
      {"", "{\"name\": \"\xFF\"}", "error: this is no JSON: "},
  };
  for (const Case& text : cases) {
    CAPTURE(text.value);
    CHECK(import_text(text.value).said().substr(0, std::string(text.said).size()) == text.said);
  }
  const auto broken = import_text(cases[0].value);
  CHECK(broken.problems.list()[0].line == 2);
  CHECK(broken.problems.list()[0].column == 8);
  const auto hidden = import_text(small_fit().dump() + "\n" + '\0' + "{}");
  CHECK(hidden.said() == "error: this is no JSON: a zero byte stands here\n");
  CHECK(hidden.problems.list()[0].line == 2);
  CHECK(import_text(std::string(200, '[')).said() != "");
  CHECK(import_text("{\"x\": " + std::string(100000, '[')).said() ==
        "the document has a member \"x\" that is not known\n"
        "error: the document nests deeper than 64 levels\n");
}
