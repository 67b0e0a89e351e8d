// The shipped fits come to the reports of the shipped pairs.
#include <doctest/doctest.h>

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
    const TableRun own = imported.run();
    const TableRun pair = run(example_files(name), "en");
    REQUIRE(own.reads);
    CHECK(json_of(own.document) == json_of(pair.document));
    REQUIRE(own.charts.size() == pair.charts.size());
    CHECK(own.charts.size() > 1);
    CHECK(own.journal == pair.journal);
  }
}
