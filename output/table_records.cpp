#include "output/table_records.h"

#include <algorithm>
#include <map>
#include <memory>

namespace hierfit::output {

namespace {

constexpr size_t kNoColumn = SIZE_MAX;

/// By leaf of a dimension: which of the columns it is.
std::vector<size_t> columns_of_leaves(const Dimension& dimension,
                                      std::span<const ColumnKey> columns) {
  std::vector<size_t> of_leaf(dimension.leaves.size(), kNoColumn);
  for (size_t column = 0; column < columns.size(); ++column) {
    const auto has_key = [&](uint32_t node) {
      const Node& head = dimension.nodes[node];
      const auto& [key, group] = columns[column];
      const bool fits = group.empty() ||
                        (head.parent != kNone && dimension.nodes[head.parent].label.key == group);
      return head.label.key == key && fits;
    };
    const auto found = std::ranges::find_if(dimension.leaves, has_key);
    if (found != dimension.leaves.end()) {
      of_leaf[static_cast<size_t>(found - dimension.leaves.begin())] = column;
    }
  }
  return of_leaf;
}

std::string head_of(const Dimension& dimension, uint32_t leaf) {
  return leaf == kNone ? std::string() : dimension.nodes[dimension.leaves[leaf]].label.shown;
}

}  // namespace

std::vector<Record> records_of(const Table& table, std::span<const ColumnKey> columns) {
  std::vector<size_t> heads;
  size_t statistics = table.dimensions.size();
  for (size_t d = 0; d < table.dimensions.size(); ++d) {
    if (table.dimensions[d].place == Place::Rows) {
      heads.push_back(d);
    } else {
      statistics = d;
    }
  }
  std::vector<Record> records;
  if (statistics == table.dimensions.size()) return records;
  const std::vector<size_t> column_of = columns_of_leaves(table.dimensions[statistics], columns);
  std::map<std::vector<uint32_t>, size_t> places;
  for (size_t cell = 0; cell < table.cells.size(); ++cell) {
    const uint32_t* at = table.cells.at(cell);
    std::vector<uint32_t> line;
    line.reserve(heads.size());
    for (const size_t d : heads)
      line.push_back(at[d]);
    const auto [place, is_new] = places.try_emplace(std::move(line), records.size());
    if (is_new) {
      Record& record = records.emplace_back();
      record.numbers.resize(columns.size());
      for (const size_t d : heads)
        record.heads.push_back(head_of(table.dimensions[d], at[d]));
    }
    const auto* number = std::get_if<Number>(&table.cells.values[cell]);
    const uint32_t leaf = at[statistics];
    if (number == nullptr || leaf == kNone || column_of[leaf] == kNoColumn) continue;
    records[place->second].numbers[column_of[leaf]] = *number;
  }
  return records;
}

std::vector<std::string> head_titles(const Table& table) {
  std::vector<std::string> titles;
  for (const Dimension& dimension : table.dimensions) {
    if (dimension.place == Place::Rows) titles.push_back(dimension.title.shown);
  }
  return titles;
}

const Table* table_of(const Section& section, std::string_view subtype) {
  const Table* last = nullptr;
  for (const Item& item : section.items) {
    const auto* table = std::get_if<std::unique_ptr<Table>>(&item);
    if (table != nullptr && (*table)->subtype == subtype) last = table->get();
  }
  return last;
}

}  // namespace hierfit::output
