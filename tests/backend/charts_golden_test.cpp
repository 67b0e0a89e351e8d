// The charts of whole runs: each document as it is delivered, and its data by source and variable.
#include <algorithm>
#include <cstdio>
#include <doctest/doctest.h>
#include <string>

#include "output/chart.h"
#include "tests/backend/table_run.h"
#include "tests/golden.h"

using namespace hierfit::test;
using hierfit::output::Chart;
using hierfit::output::ChartColumn;
using hierfit::output::ChartSource;

namespace {

/// Longer columns show their first rows; how many there are stands ahead of them.
constexpr std::size_t kMostRows = 60;

std::string value_at(const ChartColumn& column, std::size_t row) {
  switch (column.kind(row)) {
    case ChartColumn::Kind::Number: {
      char digits[32];
      std::snprintf(digits, sizeof digits, "%.9g", column.number(row));
      return digits;
    }
    case ChartColumn::Kind::Text:
      return '"' + column.text(row) + '"';
    case ChartColumn::Kind::Unset:
      break;
  }
  return "-";
}

std::string data_of(const ChartSource& source) {
  std::string lines;
  for (const auto& variable : source.variables) {
    lines += source.name + "." + variable.name + " " + std::to_string(variable.values.rows()) + ":";
    for (std::size_t row = 0; row < std::min(variable.values.rows(), kMostRows); ++row) {
      lines += ' ' + value_at(variable.values, row);
    }
    lines += '\n';
  }
  return lines;
}

/// The style sheet is the same in every document.
std::string without_styles(std::string text) {
  constexpr std::string_view kEnd = "</style>";
  for (std::size_t begin = text.find("<style"); begin != std::string::npos;
       begin = text.find("<style", begin)) {
    text.erase(begin, text.find(kEnd, begin) + kEnd.size() - begin);
  }
  return text;
}

std::string charts_of(const DocumentFiles& files) {
  std::string text;
  for (const auto& chart : run(files, "en").charts) {
    text += "== " + chart->kind + ": " + chart->title + " (" + chart->description + ")\n" +
            without_styles(chart->document);
    for (const ChartSource& source : chart->sources)
      text += data_of(source);
  }
  return text;
}

void check_charts(const std::string& name, const DocumentFiles& files) {
  CAPTURE(name);
  CHECK(hierfit::tests::golden_difference("charts/" + name + ".txt", charts_of(files)) == "");
}

}  // namespace

TEST_CASE("the charts of the examples") {
  for (const std::string name : {"sleepstudy", "cbpp", "salamanders"}) {
    check_charts(name, example_files(name));
  }
}

TEST_CASE("the charts that the examples do not reach") {
  for (const std::string name : {"nominal", "ordinal", "events", "intercept_only"}) {
    check_charts(name, document_files(name));
  }
}
