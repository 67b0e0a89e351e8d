// Writes one table for a terminal.
#pragma once

#include <cstdint>
#include <string>

#include "output/document.h"
#include "report/report.h"

namespace hierfit::report::text {

/// Appends the table with its title and notes, `number` its place among the tables, from 1. Fitted
/// to `options.width`: long labels wrap, and columns that do not fit follow in further blocks that
/// repeat the row heads.
void append_table(std::string& out,
                  const output::Document& document,
                  const output::Table& table,
                  uint32_t number,
                  const Options& options);

/// Appends the lines of a text, wrapped to the width; lines behind the first begin with `indent`
/// blanks.
void append_wrapped(std::string& out, std::string_view text, const Options& options, size_t indent);

}  // namespace hierfit::report::text
