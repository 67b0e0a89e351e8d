// Writes one table of a text document, or the facts about its result as one.
#pragma once

#include <cstdint>
#include <string>

#include "report/typeset/paper.h"
#include "report/typeset/texts.h"

namespace hierfit::report::docx {

/// Appends the table of a block with its caption and notes; `bookmarks` counts the bookmarks of the
/// document.
void append_table(std::string& out,
                  const output::Document& document,
                  const PaperBlock& block,
                  uint32_t& bookmarks);

/// Appends the facts about a result as a table of two columns without rules.
void append_facts(std::string& out,
                  const output::Document& document,
                  const output::About& about,
                  const Texts& texts);

}  // namespace hierfit::report::docx
