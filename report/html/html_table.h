// Writes one table as HTML.
#pragma once

#include <cstdint>
#include <string>

#include "output/document.h"

namespace hierfit::report::html {

/// Appends the table, `number` its place among the tables of the report, from 1. The caption has
/// the id "t" + number; every other id of the table begins with that id and a letter.
void append_table(std::string& out,
                  const output::Document& document,
                  const output::Table& table,
                  uint32_t number);

}  // namespace hierfit::report::html
