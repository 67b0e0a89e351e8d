// The forms as a whole, and the JSON form.
#include <doctest/doctest.h>
#include <nlohmann/json.hpp>

#include "report/report.h"
#include "tests/golden.h"
#include "tests/report/sample_documents.h"
#include "tests/report/table_builder.h"

namespace hierfit::test {

namespace {

using nlohmann::json;

output::Document with_table(TableBuilder builder) {
  output::Document document;
  document.content.items.emplace_back(builder.take());
  return document;
}

/// A page without its style sheet, its script and their hashes, which change with every touch of
/// those; check_html.py holds them together.
std::string without_assets(std::string page) {
  const std::pair<std::string_view, std::string_view> parts[] = {
      {"content=\"default-src", "\">"}, {"<style>", "</style>"}, {"<script>", "</script>"}};
  for (const auto& [begin, end] : parts) {
    const size_t at = page.find(begin);
    if (at == std::string::npos) continue;
    const size_t from = at + begin.size();
    page.erase(from, page.find(end, from) - from);
  }
  return page;
}

json as_json(const output::Document& document) {
  return json::parse(report::render_json(document, {}));
}

}  // namespace

TEST_CASE("each form writes the sample documents as in the golden files") {
  const std::pair<const char*, output::Document (*)()> samples[] = {
      {"procedure", &procedure_document}, {"awkward", &awkward_document}};
  for (const auto& [name, make] : samples) {
    const output::Document document = make();
    for (const char* name_of_form : {"html", "text", "json"}) {
      const report::Form& form = *report::form_by_name(name_of_form);
      const std::string ending(form.endings.substr(0, form.endings.find(' ')));
      std::string text = form.render(document, {});
      if (form.name == "html") text = without_assets(std::move(text));
      CHECK(golden_difference("report/" + (name + ending), text) == "");
    }
  }
}

TEST_CASE("forms are found by their name and by a file's ending") {
  CHECK(report::form_by_name("json")->endings == ".json");
  CHECK(report::form_by_name("txt")->name == "text");
  CHECK(report::form_by_name("JSON") == nullptr);
  CHECK(report::form_by_name("a.json") == nullptr);
  CHECK(report::form_by_name("") == nullptr);
  CHECK(report::form_by_ending("a.b/report.HTM")->name == "html");
  CHECK(report::form_by_ending(".txt")->name == "text");
  for (const char* unknown : {"report", "html", "report.", "report.ht", "report.htm ", ""}) {
    CAPTURE(unknown);
    CHECK(report::form_by_ending(unknown) == nullptr);
  }
}

TEST_CASE("the JSON form") {
  SUBCASE("gives each number whole, and none for a missing one") {
    TableBuilder builder("t");
    builder.rows("r");
    builder.cell({{"a"}}, coefficient(0.1 + 0.2)).cell({{"b"}}, missing());
    builder.cell({{"c"}}, output::Number{2.5, output::Format::Fixed, 2}).cell_note("half");
    const json cells = as_json(with_table(std::move(builder)))["content"][0]["cells"];
    CHECK(cells[0]["value"].get<double>() == 0.1 + 0.2);
    CHECK(cells[0]["shown"] == "0.300");
    CHECK(cells[0]["format"] == "Coefficient");
    CHECK(cells[1]["value"].is_null());
    CHECK(cells[2]["decimals"] == 2);
    CHECK(cells[2]["notes"] == json::array({0}));
  }
  SUBCASE("keeps every character of a text") {
    const std::string text = "\"\\/\n\r\t\x01\x1f\x7f </script> \u2028 \U0001F600";
    TableBuilder builder(text);
    builder.rows(text).cell({{text}}, text);
    const json table = as_json(with_table(std::move(builder)))["content"][0];
    CHECK(table["title"] == text);
    CHECK(table["dimensions"][0]["nodes"][0]["label"] == text);
    CHECK(table["cells"][0]["text"] == text);
  }
  SUBCASE("says where numbers stand in a text") {
    TableBuilder builder("t");
    builder.caption(text_with("log likelihood (^1)", statistic(-1.5)));
    const json caption = as_json(with_table(std::move(builder)))["content"][0]["caption"];
    CHECK(caption["shown"] == "log likelihood (-1.500)");
    CHECK(caption["numbers"][0]["begin"] == 16);
    CHECK(caption["numbers"][0]["value"] == -1.5);
  }
}

}  // namespace hierfit::test
