// The shipped fits come to the reports of the shipped pairs.
#include <algorithm>
#include <doctest/doctest.h>
#include <fstream>
#include <iterator>

#include "report/report.h"
#include "tests/import/fit_documents.h"

namespace {

using namespace hierfit;
using namespace hierfit::test;

std::string json_of(const output::Document& document) {
  return report::form_by_name("json")->render(document, {});
}

}  // namespace

TEST_CASE("a fit comes to the report of its pair, to the last bit") {
  for (const char* name : {"sleepstudy", "cbpp", "salamanders"}) {
    CAPTURE(name);
    const Imported imported = import_text(example_fit(name));
    CHECK(imported.said() == "");
    TableRun own = imported.run();
    TableRun pair = run(example_files(name), "en");
    REQUIRE(own.reads);
    // What a fit says of its engine goes beyond what a pair of documents does.
    CHECK(own.document.about.facts.size() > pair.document.about.facts.size());
    own.document.about = {};
    pair.document.about = {};
    CHECK(json_of(own.document) == json_of(pair.document));
    REQUIRE(own.charts.size() == pair.charts.size());
    CHECK(own.charts.size() > 1);
    CHECK(own.journal == pair.journal);
  }
}

TEST_CASE("a fit that did not converge says so first, with its warnings") {
  nlohmann::ordered_json fit = small_fit();
  fit["engine"]["conditions"] = {"not converged"};
  fit["engine"]["warnings"] = {"nearly singular"};
  const TableRun run = import_json(fit).run();
  REQUIRE(run.reads);
  const std::vector<output::Message>& messages = run.document.about.messages;
  REQUIRE(messages.size() >= 2);
  CHECK(messages[0].code == "notConverged");
  CHECK(messages[0].severity == output::Severity::Error);
  CHECK(messages[1].text.shown == "The engine gave the warning kGLMM_C11: nearly singular");
  CHECK(messages[1].severity == output::Severity::Warning);
}

TEST_CASE("the small fit of the manual comes to a report") {
  std::ifstream file(HIERFIT_SOURCE_DIR "/docs/fit.md", std::ios::binary);
  const std::string page{std::istreambuf_iterator<char>(file), {}};
  const size_t start = page.find("```json\n") + 8;
  const std::string text = page.substr(start, page.find("```", start) - start);
  CHECK(std::count(text.begin(), text.end(), '\n') < 60);
  const Imported imported = import_text(text);
  CHECK(imported.said() == "");
  const TableRun run = imported.run();
  REQUIRE(run.reads);
  CHECK(run.cell("FixedCoefficients", {"Type of stool=T2", "t"}) == "7.497");
  CHECK(run.cell("FixedCoefficients", {"Type of stool=T1", "Coefficient"}) == "0");
  // The overall test that is reckoned from the contrasts is the F test of the only effect.
  const size_t test = imported.documents->result.find("\"overallTest\"");
  const size_t statistic = imported.documents->result.find("fStatistic=\"22.35", test);
  CHECK(statistic - test < 200);
  CHECK(run.table("Contrasts") != nullptr);
  CHECK(run.charts.size() == 4);
}
