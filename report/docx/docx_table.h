// Writes one table of a text document.
#pragma once

#include <cstdint>
#include <string>

#include "embedded/output/document.h"

namespace hierfit::report::docx {

/// Appends a table with its caption and notes; `bookmarks` counts the bookmarks of the document.
void append_table(std::string& out,
                  const output::Document& document,
                  const output::Table& table,
                  uint32_t number,
                  uint32_t& bookmarks);

/// The first paragraph of a caption: a word and number ("Table ^1", the number a field that counts
/// parts called `sequence`), then the title, given as runs.
void append_caption(std::string& out,
                    std::string_view pattern,
                    std::string_view sequence,
                    uint32_t number,
                    std::string_view bookmark,
                    std::string_view title,
                    uint32_t& bookmarks);

}  // namespace hierfit::report::docx
