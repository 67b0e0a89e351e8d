// Tables in LaTeX.
#pragma once

#include <string>

#include "report/latex/latex_text.h"
#include "report/typeset/paper.h"

namespace hierfit::report::latex {

/// Appends a table with its title and notes: a `longtable` for each part of its columns that fits
/// on a page, on its side where that helps.
void append_table(std::string& out,
                  TextWriter& texts,
                  const output::Document& document,
                  const PaperBlock& block);

}  // namespace hierfit::report::latex
