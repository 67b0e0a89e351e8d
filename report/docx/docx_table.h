// Writes one table of a text document.
#pragma once

#include <cstdint>
#include <string>

#include "output/document.h"

namespace hierfit::report::docx {

/// Appends a table with its caption and notes; `bookmarks` counts the bookmarks of the document.
void append_table(std::string& out,
                  const output::Document& document,
                  const output::Table& table,
                  uint32_t number,
                  uint32_t& bookmarks);

}  // namespace hierfit::report::docx
