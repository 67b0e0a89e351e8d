// The data of a figure as a table, in the forms that show it.
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <doctest/doctest.h>
#include <memory>

#include "embedded/chart/parse_markup.h"
#include "report/chart/figure.h"
#include "report/chart/figure_table.h"
#include "report/report.h"
#include "tests/report/chart_samples.h"
#include "tests/report/markup_reader.h"

namespace hierfit::test {

namespace {

/// By row and column: the titles, then what the cells say.
using Rows = std::vector<std::vector<std::string>>;

/// Ten digits of a number: a workbook keeps fewer than a double has.
std::string ten_digits(const std::string& number) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.10g", std::strtod(number.c_str(), nullptr));
  return text.data();
}

/// Of the tables below "Data of the figure": with `whole`, numbers are whole.
Rows html_rows(const output::Document& document, bool whole) {
  const std::string page = report::render_html(document, {});
  const size_t begin = page.find("<details>");
  output::Element details =
      chart::parse_markup(page.substr(begin, page.find("</details>") + 10 - begin), "page");
  Rows rows;
  for (output::Element* element : output::elements_of(details)) {
    if (element->name != "tr") continue;
    std::vector<std::string>& row = rows.emplace_back();
    for (const output::Element* cell : element->children()) {
      const bool is_number = whole && cell->attribute("data-value") != nullptr;
      row.push_back(is_number ? ten_digits(std::string(cell->value("data-value"))) : cell->text());
      if (row.back() == "missing") row.back().clear();
    }
  }
  return rows;
}

Rows markdown_rows(const output::Document& document) {
  const std::string text = report::render_markdown(document, {});
  Rows rows;
  for (size_t at = text.find("\n|"); at != std::string::npos; at = text.find("\n|", at + 1)) {
    const std::string line = text.substr(at + 2, text.find('\n', at + 1) - at - 2);
    if (line.starts_with(':') || line.starts_with('-')) continue;
    std::vector<std::string>& row = rows.emplace_back();
    for (size_t begin = 0; begin < line.size();) {
      const size_t end = line.find('|', begin);
      std::string cell = line.substr(begin, end - begin);
      std::erase(cell, '\\');
      cell.erase(cell.find_last_not_of(' ') + 1);
      row.push_back(cell.substr(std::min(cell.find_first_not_of(' '), cell.size())));
      begin = end + 1;
    }
  }
  return rows;
}

Rows workbook_rows(const output::Document& document) {
  const std::string package = report::render_xlsx(document, {});
  const output::Element strings =
      chart::parse_markup(part(package, "xl/sharedStrings.xml"), "strings");
  output::Element sheet = chart::parse_markup(part(package, "xl/worksheets/sheet2.xml"), "sheet");
  Rows rows;
  for (const output::Element* element : sheet.child("sheetData")->children()) {
    std::vector<std::string> row;
    for (const output::Element* cell : element->children()) {
      const std::string value = cell->text();
      const bool is_text = cell->value("t") == "s";
      row.push_back(is_text ? strings.children()[std::stoul(value)]->text() : ten_digits(value));
    }
    if (row.size() > 1) rows.push_back(std::move(row));
  }
  return rows;
}

output::Document document_of(output::Chart chart) {
  output::Document document;
  document.content.items.emplace_back(std::make_unique<output::Chart>(std::move(chart)));
  return document;
}

}  // namespace

TEST_CASE("the data of a figure are one table in every form") {
  const output::Document document = document_of(means_chart(3, 2));
  const Rows shown = html_rows(document, false);
  REQUIRE(shown.size() == 7);
  CHECK(shown[0] == std::vector<std::string>{"Level of the symptom", "Treatment",
                                             "Satisfaction with the visit (points)", "Lower",
                                             "Upper"});
  CHECK(shown[1][2] == "39.93");
  CHECK(shown[1][3] == "34.10");
  CHECK(shown[1][4] == "46.66");
  CHECK(markdown_rows(document) == shown);
  CHECK(workbook_rows(document) == html_rows(document, true));
}

TEST_CASE("a table of the data of a figure") {
  const output::Document document;
  const auto tables = [&](const output::Chart& chart, size_t most_rows) {
    return figure_tables(report::chart::Figure(chart, document).binding(), most_rows);
  };
  SUBCASE("ends where the form has no more room, and says so") {
    const output::Chart chart = scatter_chart(10);
    CHECK_FALSE(tables(chart, 10)[0].table.caption);
    const output::Table table = tables(chart, 4)[0].table;
    CHECK(table.dimensions[0].leaves.size() == 4);
    CHECK(table.caption->shown.starts_with("The first 4 of 10 rows;"));
  }
  SUBCASE("has the names of nodes, not their places") {
    const auto nodes = tables(diagram_chart(2, 8), 10);
    REQUIRE(nodes.size() == 3);
    for (const report::chart::FigureTable& each : nodes) {
      for (const output::Node& head : each.table.dimensions[1].nodes)
        CHECK(head.label.shown.find('X') == std::string::npos);
    }
    CHECK(nodes[1].table.dimensions[1].nodes.size() == 3);
  }
  SUBCASE("has no cell where there is no value") {
    output::Chart chart = scatter_chart(2);
    chart.sources[0].variables[1].values.set(0, output::kSystemMissing);
    const output::Table table = tables(chart, 10)[0].table;
    size_t missing = 0;
    report::chart::for_cells(table, [&](uint32_t row, uint32_t column, const auto* value) {
      if (value == nullptr) missing += row == 0 && column == 1 ? 1 : 100;
    });
    CHECK(missing == 1);
  }
}

}  // namespace hierfit::test
