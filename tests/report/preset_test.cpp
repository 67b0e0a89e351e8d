// House styles: how numbers look in each, and that nothing but the look changes.
#include "report/preset.h"

#include <doctest/doctest.h>
#include <nlohmann/json.hpp>
#include <tuple>

#include "report/report.h"
#include "tests/report/sample_documents.h"
#include "tests/report/table_builder.h"

namespace hierfit::test {
namespace {

using nlohmann::json;
using output::Format;

std::string shown_in(const char* preset, double value, Format format) {
  output::Document document;
  report::apply(*report::preset_by_name(preset), document);
  return output::shown({value, format}, document.numbers);
}

/// A JSON report without what a reader sees: the numbers and where they stand.
json without_looks(json value) {
  if (value.is_object()) {
    for (const char* look : {"shown", "label", "title", "format"})
      value.erase(look);
  }
  if (value.is_structured()) {
    for (json& inner : value)
      inner = without_looks(std::move(inner));
  }
  return value;
}

}  // namespace

TEST_CASE("house styles write numbers as their manuals say") {
  struct Row {
    double value;
    Format format;
    const char* normal;
    const char* apa;
    const char* jama;
    const char* lancet;
  };
  const Row rows[] = {
      {1.23456, Format::Coefficient, "1.235", "1.23", "1.23", "1\u00B723"},
      {0.5, Format::GeneralStat, "0.500", "0.50", "0.50", "0\u00B750"},
      {0.0004, Format::Coefficient, "4.000E-4", "4.000E-4", "4.000E-4", "4\u00B7000E-4"},
      {0.23456, Format::Significance, "0.235", ".235", ".23", "0\u00B723"},
      {0.01, Format::Significance, "0.010", ".010", ".01", "0\u00B7010"},
      {0.0057, Format::Significance, "0.006", ".006", ".006", "0\u00B70057"},
      {0.0005, Format::Significance, "<0.001", "< .001", "<.001", "0\u00B700050"},
      {0.00005, Format::Significance, "<0.001", "< .001", "<.001", "<0\u00B70001"},
      {0.9999, Format::Significance, "1.000", "1.000", ">.99", "1\u00B700"},
      {1, Format::Significance, "1.000", "1.000", ">.99", "1\u00B700"},
      {12, Format::Count, "12", "12", "12", "12"},
      {45.678, Format::Percent, "45.7%", "45.7%", "45.7%", "45\u00B77%"},
  };
  for (const Row& row : rows) {
    CAPTURE(row.value);
    CHECK(shown_in("default", row.value, row.format) == row.normal);
    CHECK(shown_in("apa", row.value, row.format) == row.apa);
    CHECK(shown_in("jama", row.value, row.format) == row.jama);
    CHECK(shown_in("lancet", row.value, row.format) == row.lancet);
  }
}

TEST_CASE("a house style changes how cells look, not which there are") {
  const json plain = json::parse(report::render_json(procedure_document(), {}));
  for (const report::Preset& preset : report::kPresets) {
    CAPTURE(preset.name);
    output::Document document = procedure_document();
    report::apply(preset, document);
    const json styled = json::parse(report::render_json(document, {}));
    CHECK(without_looks(styled) == without_looks(plain));
    CHECK((styled == plain) == (preset.name == "default"));
  }
}

TEST_CASE("symbols are known by their keys, in each language and in no other words") {
  TableBuilder builder("Table");
  builder.rows("Sex").columns("Statistik");
  const char* columns[] = {"Signifikanz", "FG", "\u81ea\u7531\u5ea6", "Adj. Signifikanz"};
  for (const char* column : columns)
    builder.cell({{"F"}, {column}}, coefficient(0.25));
  output::Document document;
  const char* keys[] = {"Sig.", "df", "df1", "Adj. Sig."};
  for (size_t i = 0; i < std::size(keys); ++i)
    builder.table().dimensions[1].nodes[i].label.key = document.own_key(keys[i]);
  document.content.items.emplace_back(builder.take());
  report::apply(*report::preset_by_name("apa"), document);

  const auto& table = *std::get<std::unique_ptr<output::Table>>(document.content.items[0]);
  std::string shown;
  for (const output::Node& node : table.dimensions[1].nodes)
    shown += node.label.shown + (node.label.symbol ? "* " : " ");
  CHECK(shown == "p* FG* \u81ea\u7531\u5ea6 Adj. Signifikanz ");
  CHECK_FALSE(table.dimensions[0].nodes[0].label.symbol);  // a category of the reader's own
  std::string significances;
  for (const output::CellValue& value : table.cells.values)
    significances += std::get<output::Number>(value).format == Format::Significance ? '1' : '0';
  CHECK(significances == "1001");
}

TEST_CASE("a p is written by the rule for p, in whatever format it came, and its column lines up") {
  for (const auto& [preset, shown, other] :
       {std::tuple{"default", "<0.001", "0.014"}, std::tuple{"apa", "< .001", ".014"}}) {
    CAPTURE(preset);
    TableBuilder builder("Contrasts");
    builder.rows("R").columns("C");
    builder.cell({{"a"}, {"p"}}, coefficient(3.234e-5)).cell({{"b"}, {"p"}}, coefficient(0.014));
    builder.cell({{"a"}, {"b"}}, coefficient(3.234e-5));
    output::Document document;
    builder.table().dimensions[1].nodes[0].label.key = document.own_key("Adj. Sig.");
    document.content.items.emplace_back(builder.take());
    report::apply(*report::preset_by_name(preset), document);
    const json report = json::parse(report::render_json(document, {}));
    const json& cells = report["content"][0]["cells"];
    CHECK(cells[0]["shown"] == shown);
    CHECK(cells[0]["value"] == 3.234e-5);
    CHECK(cells[1]["shown"] == other);
    CHECK(cells[2]["shown"] == "3.234E-5");
    const std::string text = report::render_text(document, {});
    const size_t line = text.find("\na ");
    const size_t below = text.find("\nb ");
    CHECK(text.find('1', line) - line == text.find('4', below) - below);
  }
}

}  // namespace hierfit::test
