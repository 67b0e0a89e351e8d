// Every member of a fit is left out, given another type, made an absurd number or given twice: each
// ends in a report or in a message with a path.
#include <doctest/doctest.h>

#include "tests/import/fit_documents.h"

namespace {

using namespace hierfit::test;
using nlohmann::ordered_json;
using Pointer = ordered_json::json_pointer;

/// All members and items, of long lists the first and the last.
void collect(const ordered_json& value, Pointer here, std::vector<Pointer>& all) {
  if (value.is_object()) {
    for (const auto& member : value.items()) {
      all.push_back(here / member.key());
      collect(member.value(), all.back(), all);
    }
  }
  if (!value.is_array()) return;
  for (size_t at = 0; at < value.size(); ++at) {
    if (at > 0 && at + 1 < value.size()) continue;
    all.push_back(here / at);
    collect(value[at], here / at, all);
  }
}

/// The document with one member of an object twice.
std::string text_with_twice(const ordered_json& value, const Pointer& twice, const Pointer& here) {
  if (!value.is_object() && !value.is_array()) return value.dump();
  std::string text;
  size_t at = 0;
  for (const auto& member : value.items()) {
    const Pointer inner = value.is_object() ? here / member.key() : here / at++;
    const std::string name =
        value.is_object() ? ordered_json(member.key()).dump() + ": " : std::string();
    const std::string part = name + text_with_twice(member.value(), twice, inner);
    text += (text.empty() ? "" : ", ") + part;
    if (inner == twice) text += ", " + part;
  }
  return value.is_object() ? "{" + text + "}" : "[" + text + "]";
}

std::string text_without(ordered_json whole, const Pointer& member) {
  ordered_json& owner = whole[member.parent_pointer()];
  if (owner.is_object()) {
    owner.erase(member.back());
  } else {
    owner.erase(static_cast<size_t>(std::stoul(member.back())));
  }
  return whole.dump();
}

/// Ends well: documents that the module reads, or an error that names a member.
void check_end(const std::string& text) {
  const Imported imported = import_text(text);
  INFO(imported.said());
  if (imported.documents) {
    CHECK_FALSE(imported.problems.has_errors());
    const TableRun run = imported.run();
    CHECK(run.reads);
  } else {
    CHECK(imported.problems.has_errors());
  }
}

}  // namespace

TEST_CASE("a fit with one member spoilt comes to a report or to a message") {
  const char* values[] = {
      "null", "true",   "\"\"",           "\"NA\"",        "-1",         "0",  "0.5",
      "7",    "1e308",  "-1e308",         "5e-324",        "2147483648", "[]", "{}",
      "[[]]", "[null]", "[\"b\", \"b\"]", "{\"g\": \"b\"}"};
  for (const ordered_json& whole : {small_fit(), nominal_fit(), ordinal_fit(), events_fit()}) {
    CAPTURE(whole["distribution"].dump());
    CHECK(import_json(whole).said() == "");
    std::vector<Pointer> members;
    collect(whole, Pointer(), members);
    CHECK(members.size() > 100);
    for (const Pointer& member : members) {
      CAPTURE(member.to_string());
      for (const std::string value : values) {
        CAPTURE(value);
        ordered_json spoilt = whole;
        spoilt[member] = ordered_json::parse(value);
        check_end(spoilt.dump());
      }
      check_end(text_without(whole, member));
      check_end(text_with_twice(whole, member, Pointer()));
    }
  }
}

TEST_CASE("a member that stands twice is refused") {
  const std::string text =
      text_with_twice(small_fit(), Pointer("/coefficients/3/estimate"), Pointer());
  CHECK(import_text(text).said() == "error: coefficients[3] has the member estimate twice\n");
  const std::string levels =
      text_with_twice(small_fit(), Pointer("/coefficients/1/levels/g"), Pointer());
  CHECK(import_text(levels).said() == "error: coefficients[1].levels has the member g twice\n");
}
