// Tables and charts that show what an earlier one shows.
#pragma once

#include "output/document.h"

namespace hierfit::report {

/// Takes out each table that has the heads, cells and notes of an earlier one, each chart that has
/// the title and the data of an earlier one, and the headings that hold nothing then.
void leave_out_repeats(output::Document& document);

}  // namespace hierfit::report
