// Writes one table of a text document.
#pragma once

#include <cstdint>
#include <string>

#include "report/typeset/paper.h"

namespace hierfit::report::docx {

/// Appends the table of a block with its caption and notes; `bookmarks` counts the bookmarks of the
/// document.
void append_table(std::string& out,
                  const output::Document& document,
                  const PaperBlock& block,
                  uint32_t& bookmarks);

}  // namespace hierfit::report::docx
