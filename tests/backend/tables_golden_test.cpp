// The tables of whole runs: every call to the pivot library, and what a person reads.
#include <doctest/doctest.h>
#include <sstream>
#include <string>

#include "report/report.h"
#include "tests/backend/table_run.h"
#include "tests/golden.h"

using namespace hierfit::test;

namespace {

constexpr std::size_t kWidth = 100;

/// The lines of the pivot library. Charts have golden files of their own.
std::string pivot_calls(const std::string& journal) {
  std::istringstream lines(journal);
  std::string calls;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("{\"call\":\"Bp") ||
        line.starts_with("{\"call\":\"release\",\"on\":\"Bp")) {
      calls += line + '\n';
    }
  }
  return calls;
}

void check_run(const std::string& name, const DocumentFiles& files) {
  CAPTURE(name);
  CHECK(hierfit::tests::golden_difference("tables/" + name + ".jsonl",
                                          pivot_calls(run(files, "C").journal)) == "");
  const TableRun english = run(files, "en");
  CHECK(hierfit::tests::golden_difference(
            "tables/" + name + ".txt",
            hierfit::report::render_text(english.document, {.width = kWidth})) == "");
}

}  // namespace

TEST_CASE("the tables of the examples") {
  for (const std::string name : {"sleepstudy", "cbpp", "salamanders"}) {
    check_run(name, example_files(name));
  }
}

TEST_CASE("the tables that the examples do not reach") {
  for (const std::string name : {"nominal", "ordinal", "events", "grouped", "intercept_only"}) {
    check_run(name, document_files(name));
  }
}
