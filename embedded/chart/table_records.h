// The lines of a table as records, so that a chart of the same block can be read against them.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "output/document.h"

namespace hierfit::chart {

/// A line of a table.
struct Record {
  std::vector<std::string> heads;       ///< by dimension of rows, in the order of their making
  std::vector<output::Number> numbers;  ///< by column; missing where the line has none
};

/// The lines in the order in which they were written. A column goes by the key of its head; of
/// several columns with one key the first counts.
std::vector<Record> records_of(const output::Table& table,
                               std::span<const std::string_view> columns);

/// What the dimensions of rows are called, in the order of their making.
std::vector<std::string> head_titles(const output::Table& table);

/// The last table of a subtype under a heading, or null.
const output::Table* table_of(const output::Section& section, std::string_view subtype);

}  // namespace hierfit::chart
