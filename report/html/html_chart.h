// Writes one chart as HTML.
#pragma once

#include <string>

#include "report/typeset/blocks.h"

namespace hierfit::report::html {

/// Appends the chart of a block as a figure: its title and notes as text of the page, the picture,
/// and below it the data as tables that open. The figure has the block's anchor as its id; every
/// other id of it begins with that and a letter.
void append_chart(std::string& out, const output::Document& document, const Block& block);

}  // namespace hierfit::report::html
