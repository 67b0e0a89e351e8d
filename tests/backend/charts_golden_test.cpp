// The charts of whole runs: what each document changes in its template, and its data by source and
// variable.
#include <algorithm>
#include <cstdio>
#include <doctest/doctest.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <vector>

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

using Lines = std::vector<std::string>;
using Counts = std::vector<std::size_t>;

Lines lines_of(const std::string& text) {
  std::istringstream stream(text);
  Lines lines;
  for (std::string line; std::getline(stream, line);)
    if (line.find_first_not_of(" ") != std::string::npos) lines.push_back(line);
  return lines;
}

/// The chart templates by file name.
const std::map<std::string, Lines>& templates() {
  static const std::map<std::string, Lines> all = [] {
    std::map<std::string, Lines> read;
    for (const auto& entry : std::filesystem::directory_iterator(HIERFIT_SOURCE_DIR "/templates")) {
      std::ifstream file(entry.path());
      read[entry.path().filename()] = lines_of({std::istreambuf_iterator<char>(file), {}});
    }
    return read;
  }();
  return all;
}

/// By first line of `from` and of `to`: how many lines the rests of both have in common.
std::vector<Counts> common_lines(const Lines& from, const Lines& to) {
  std::vector<Counts> common(from.size() + 1, Counts(to.size() + 1, 0));
  for (std::size_t i = from.size(); i-- > 0;) {
    for (std::size_t j = to.size(); j-- > 0;) {
      common[i][j] = from[i] == to[j] ? common[i + 1][j + 1] + 1
                                      : std::max(common[i + 1][j], common[i][j + 1]);
    }
  }
  return common;
}

/// What a document changes in its template: the lines that went and came, and how many stayed.
std::string changes(const Lines& from, const Lines& to) {
  const std::vector<Counts> common = common_lines(from, to);
  std::string text;
  std::size_t kept = 0;
  const auto tell_kept = [&] {
    if (kept > 0) text += "= " + std::to_string(kept) + '\n';
    kept = 0;
  };
  for (std::size_t i = 0, j = 0; i < from.size() || j < to.size();) {
    if (i < from.size() && j < to.size() && from[i] == to[j]) {
      ++kept, ++i, ++j;
      continue;
    }
    tell_kept();
    const bool went = j == to.size() || (i < from.size() && common[i + 1][j] >= common[i][j + 1]);
    text += went ? "- " + from[i++] + '\n' : "+ " + to[j++] + '\n';
  }
  tell_kept();
  return text;
}

/// The changes from the template that has the most lines in common with a document.
std::string changes_from_template(const std::string& document) {
  const Lines lines = lines_of(document);
  std::string name;
  Lines nearest;
  std::size_t most = 0;
  for (const auto& [candidate, text] : templates()) {
    const std::size_t common = common_lines(text, lines)[0][0];
    if (common <= most) continue;
    most = common;
    name = candidate;
    nearest = text;
  }
  return name + '\n' + changes(nearest, lines);
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
            changes_from_template(without_styles(hierfit::output::markup_of(chart->document)));
    for (const ChartSource& source : chart->sources)
      text += data_of(source);
  }
  return text;
}

void check_charts(const std::string& name, const DocumentFiles& files) {
  CAPTURE(name);
  CHECK(hierfit::test::golden_difference("charts/" + name + ".txt", charts_of(files)) == "");
}

}  // namespace

TEST_CASE("the charts of whole runs") {
  for (const std::string name : {"cbpp", "salamanders"})
    check_charts(name, example_files(name));
  for (const std::string name : {"nominal", "ordinal", "events", "intercept_only"}) {
    check_charts(name, document_files(name));
  }
}
