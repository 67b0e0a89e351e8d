// What is odd about two documents.
#include "import/pair_check.h"

#include <doctest/doctest.h>

#include "tests/import/fit_documents.h"

namespace {

using namespace hierfit;
using namespace hierfit::test;

std::string said_of(const std::string& model,
                    const std::string& result,
                    const std::string& dictionary = "") {
  fit::Problems of_model;
  fit::Problems of_result;
  fit::check_pair(model, result, dictionary, of_model, of_result);
  std::string said;
  for (const fit::Problems* problems : {&of_model, &of_result}) {
    for (const fit::Problem& problem : problems->list())
      said +=
          (problem.line > 0 ? std::to_string(problem.line) + ": " : "") + problem.sentence + "\n";
  }
  return said;
}

struct Change {
  std::string from;
  std::string to;
  std::string said;
};

}  // namespace

TEST_CASE("the shipped pairs are not odd") {
  for (const char* name : {"sleepstudy", "cbpp", "salamanders"}) {
    const DocumentFiles files = example_files(name);
    CHECK(said_of(files.model, files.result, files.dictionary.value_or("")) == "");
    const auto imported = import_text(example_fit(name));
    CHECK(said_of(imported.documents->model, imported.documents->result,
                  imported.documents->dictionary) == "");
  }
}

TEST_CASE("one odd value in a pair is told with its line") {
  const DocumentFiles files = example_files("cbpp");
  const Change changes[] = {
      {"\"BINOMIAL\"", "\"binomial\"",
       "7: Parameter DistributionOfTarget is \"binomial\", which is none of BINOMIAL, GAMMA, "
       "IGAUSS, "
       "NOMINAL, ORDINAL, NEGBIN, NORMAL or POISSON; reports show it as unknown; did you mean "
       "BINOMIAL?\n"},
      {"\"CIn\" value=\"0.95\"", "\"CIn\" value=\"95\"",
       "75: Parameter CIn is \"95\", which is no number between 0 and 1\n"},
      {"\"AICC\" value=\"195.25313277906054\"", "\"AICC\" value=\"195,25\"",
       "148: Statistic AICC is \"195,25\", which is no number; it counts as missing\n"},
      {"stdError=\"0.23121404809946314\"", "stdError=\"NA\"",
       "314: the stdError of ParameterStats is \"NA\", which is no number; it counts as missing\n"},
      {"fieldName=\"herd\"", "fieldName=\"herds\"",
       "194: the fieldName of FieldInfo is \"herds\", a field that the model document does not "
       "have; "
       "did you mean herd?\n"},
      {"real\">22 13", "real\">22 x13",
       "169: item 2 of the Array is \"x13\", which is no number; it counts as missing\n"},
      {"estimate=\"-0.9919249749757388\"", "estimate=\"0.5\"",
       "the coefficient \"P2\" is 0.5, and in the model document -0.9919249749757388; do the two "
       "belong together?\n"},
      {"isRedundant=\"true\"", "isRedundant=\"TRUE\"",
       "317: the isRedundant of ParameterStats is \"TRUE\", which counts as false\n"},
  };
  for (const Change& change : changes) {
    CAPTURE(change.from);
    std::string result = files.result;
    const size_t at = result.find(change.from);
    REQUIRE(at != std::string::npos);
    result.replace(at, change.from.size(), change.to);
    CHECK(said_of(files.model, result) == change.said);
  }
}

TEST_CASE("documents of two models, swapped ones and other files are told apart") {
  const DocumentFiles cbpp = example_files("cbpp");
  const DocumentFiles sleepstudy = example_files("sleepstudy");
  CHECK(said_of(sleepstudy.model, cbpp.result)
            .find("the target is \"incidence\", and that of the "
                  "model document \"Reaction\"; do the two") != std::string::npos);
  CHECK(said_of(cbpp.result, cbpp.model) ==
        "this is a result document, where a model document is meant; were the two swapped?\n");
  CHECK(said_of(cbpp.model, cbpp.model) ==
        "this is a model document, where a result document is meant\n");
  CHECK(said_of(cbpp.model, "<html><body/></html>") ==
        "this is a web page, and no result document\n");
  CHECK(said_of("\x1F\x8B", cbpp.result).find("an R object or another compressed file") !=
        std::string::npos);
}

TEST_CASE("a field of the dictionary is a field; each unknown one is told once") {
  const DocumentFiles files = example_files("cbpp");
  std::string result = files.result;
  for (size_t at; (at = result.find("\"period\"")) != std::string::npos;)
    result.replace(at, 8, "\"phase_of_year\"");
  const std::string said = said_of(files.model, result);
  CHECK(said ==
        "16: Value of Fields is \"phase_of_year\", a field that the model document does not "
        "have\n");
  CHECK(said_of(files.model, result, R"({"fields": [{"name": "phase_of_year"}]})") == "");
}
