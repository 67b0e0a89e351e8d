// Columns of raw data.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "import/fit.h"

namespace hierfit::fit {

void add_number(Column& column, double number);
/// Each text is kept once.
void add_text(Column& column, const std::string& text);

/// Whether every value is a text; none at all is none.
bool holds_texts_only(const Column& column);

/// The column of that name, or null.
const Column* find_column(const Data& data, std::string_view name);

/// The value of a record; empty where there is none.
std::string text_at(const Column& column, size_t record);

/// A column as positions in a list of values: of each record, or -1 where its value is none of
/// them.
std::vector<int32_t> positions_in(const std::vector<Value>& values, const Column& column);

/// The values that a column has, each once: in the order of numbers when all are, else of texts.
std::vector<Value> distinct_values(const Column& column);

}  // namespace hierfit::fit
