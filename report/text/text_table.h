// Writes one table for a terminal.
#pragma once

#include <string>

#include "report/report.h"
#include "report/typeset/blocks.h"

namespace hierfit::report::text {

/// Appends the table of a block with its title and notes. Fitted to `options.width`: long labels
/// wrap, and columns that do not fit follow in further parts that repeat the row heads.
void append_table(std::string& out,
                  const output::Document& document,
                  const Block& block,
                  const Options& options);

/// Appends the lines of a text, wrapped to the width; lines behind the first begin with `indent`
/// blanks.
void append_wrapped(std::string& out, std::string_view text, const Options& options, size_t indent);
/// The same behind a head, as wide as which the further lines are indented.
void append_wrapped(std::string& out,
                    std::string_view head,
                    std::string_view text,
                    const Options& options);

}  // namespace hierfit::report::text
