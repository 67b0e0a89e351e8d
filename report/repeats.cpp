#include "report/repeats.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "report/chart/figure.h"
#include "report/chart/figure_table.h"

namespace hierfit::report {
namespace {

using output::Chart;
using output::Section;
using output::Table;

/// Ends a part of a key; no text of a document has it.
constexpr char kEnd = '\0';

void append(std::string& key, std::string_view text) { (key += text) += kEnd; }

void append(std::string& key, double number) {
  std::array<char, 32> digits;
  append(key,
         {digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr});
}

void append(std::string& key, const std::vector<uint32_t>& numbers) {
  for (const uint32_t number : numbers)
    append(key, number);
}

void append(std::string& key, const Table& table, const output::CellValue& value) {
  if (const auto* number = std::get_if<output::Number>(&value)) return append(key, number->value);
  append(key, table.texts[std::get<uint32_t>(value)].shown);
}

/// All that a table shows, but for its place.
std::string key_of(const Table& table) {
  std::string key = "table";
  append(key, table.subtype);
  append(key, table.title.shown);
  for (const output::Dimension& dimension : table.dimensions) {
    append(key, dimension.title.shown);
    append(key, static_cast<double>(dimension.place));
    for (const output::Node& node : dimension.nodes) {
      append(key, node.label.shown);
      append(key, node.parent);
      append(key, node.notes);
    }
  }
  for (size_t cell = 0; cell < table.cells.size(); ++cell) {
    for (uint32_t d = 0; d < table.cells.dimensions; ++d)
      append(key, table.cells.at(cell)[d]);
    append(key, table, table.cells.values[cell]);
    const auto notes = table.cells.notes.find(static_cast<uint32_t>(cell));
    if (notes != table.cells.notes.end()) append(key, notes->second);
  }
  for (const output::Text& note : table.notes)
    append(key, note.shown);
  if (table.caption) append(key, table.caption->shown);
  return key;
}

/// The rows of a figure's data, each with its columns by their titles: neither their order nor that
/// of the columns is part of what a chart shows.
std::vector<std::string> rows_of(const Table& table) {
  const output::Dimension& columns = table.dimensions[1];
  std::vector<std::string> rows;
  std::vector<std::string> cells;
  chart::for_cells(table, [&](uint32_t, uint32_t column, const output::CellValue* value) {
    std::string& cell = cells.emplace_back();
    append(cell, columns.nodes[columns.leaves[column]].label.shown);
    if (value != nullptr) append(cell, table, *value);
    if (column + 1 < columns.leaves.size()) return;
    std::ranges::sort(cells);
    std::string& row = rows.emplace_back();
    for (const std::string& each : cells)
      row += each;
    cells.clear();
  });
  std::ranges::sort(rows);
  return rows;
}

std::string key_of(const Chart& chart, const output::Document& document) {
  const chart::Figure figure(chart, document);
  std::string key = "chart";
  append(key, figure.title());
  append(key, figure.sub_title());
  for (const std::string& note : figure.notes())
    append(key, note);
  for (const chart::FigureTable& data : chart::figure_tables(figure.binding(), SIZE_MAX)) {
    for (const std::string& row : rows_of(data.table))
      append(key, row);
  }
  return key;
}

class Sieve {
 public:
  explicit Sieve(const output::Document& document) : document_(document) {}

  void pass(Section& section) {
    std::erase_if(section.items, [&](output::Item& item) { return is_repeat(item); });
  }

 private:
  bool is_repeat(output::Item& item) {
    if (auto* inner = std::get_if<std::unique_ptr<Section>>(&item)) {
      const bool was_empty = (*inner)->items.empty();
      pass(**inner);
      return !was_empty && (*inner)->items.empty();
    }
    if (const auto* table = std::get_if<std::unique_ptr<Table>>(&item)) {
      return !seen_.insert(key_of(**table)).second;
    }
    if (const auto* chart = std::get_if<std::unique_ptr<Chart>>(&item)) {
      return !seen_.insert(key_of(**chart, document_)).second;
    }
    return false;
  }

  const output::Document& document_;
  std::set<std::string> seen_;
};

}  // namespace

void leave_out_repeats(output::Document& document) { Sieve(document).pass(document.content); }

}  // namespace hierfit::report
