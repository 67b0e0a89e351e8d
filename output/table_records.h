// The lines of a table as records, so that a chart of the same block can be read against them.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "output/document.h"

namespace hierfit::output {

/// A column of a table by the keys of its head and, where several have one, of the group above.
struct ColumnKey {
  std::string_view key;
  std::string_view group{};  ///< empty: any, or none
};

/// A line of a table.
struct Record {
  std::vector<std::string> heads;  ///< by dimension of rows, in the order of their making
  std::vector<Number> numbers;     ///< by column; missing where the line has none
};

/// The lines in the order in which they were written. Of several columns that a key fits the first
/// counts.
std::vector<Record> records_of(const Table& table, std::span<const ColumnKey> columns);

/// What the dimensions of rows are called, in the order of their making.
std::vector<std::string> head_titles(const Table& table);

/// The last table of a subtype under a heading, or null.
const Table* table_of(const Section& section, std::string_view subtype);

}  // namespace hierfit::output
