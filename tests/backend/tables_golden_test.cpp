// The tables of whole runs: every call to the pivot library, and what a person reads.
#include <doctest/doctest.h>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "report/report.h"
#include "tests/backend/table_run.h"
#include "tests/golden.h"

using namespace hierfit::test;
using nlohmann::json;

namespace {

constexpr std::size_t kWidth = 100;

/// "Category [...] = BpCategory#7", without the class, which the receiver tells.
std::string call_of(const json& line) {
  const std::string call = line["call"];
  const std::size_t colon = call.find("::");
  std::string text = colon == std::string::npos ? call : call.substr(colon + 2);
  if (line.contains("args")) text += ' ' + line["args"].dump();
  if (line.contains("result")) text += " = " + line["result"].get<std::string>();
  return text;
}

/// The calls of the pivot library in their order: a line begins with its receiver, and goes on with
/// the calls on what its last call handed out and with the going of a handle. Charts have golden
/// files of their own.
std::string pivot_calls(const std::string& journal) {
  std::istringstream lines(journal);
  std::string calls;
  std::string in_hand;
  for (std::string text; std::getline(lines, text);) {
    const json line = json::parse(text);
    const std::string call = line["call"];
    const std::string on = line.value("on", "");
    if (!call.starts_with("Bp") && !on.starts_with("Bp")) continue;
    const bool goes_on = !calls.empty() && (on == in_hand || call == "release");
    calls += goes_on ? "; " : calls.empty() ? "" : "\n";
    if (on != in_hand) calls += on + ' ';
    calls += call_of(line);
    in_hand = line.value("result", on);
  }
  return calls + '\n';
}

void check_run(const std::string& name, const DocumentFiles& files) {
  CAPTURE(name);
  CHECK(hierfit::test::golden_difference("tables/" + name + ".calls",
                                         pivot_calls(run(files, "C").journal)) == "");
  const TableRun english = run(files, "en");
  CHECK(hierfit::test::golden_difference(
            "tables/" + name + ".txt",
            hierfit::report::render_text(english.document, {.width = kWidth})) == "");
}

}  // namespace

TEST_CASE("the tables of whole runs") {
  check_run("cbpp", example_files("cbpp"));
  for (const std::string name : {"nominal", "ordinal", "events", "grouped", "intercept_only"}) {
    check_run(name, document_files(name));
  }
}
