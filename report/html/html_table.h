// Writes one table as HTML.
#pragma once

#include <string>

#include "report/typeset/blocks.h"

namespace hierfit::report::html {

/// Appends the table of a block. The caption has the block's anchor as its id; every other id of
/// the table begins with that and a letter.
void append_table(std::string& out, const output::Document& document, const Block& block);

}  // namespace hierfit::report::html
