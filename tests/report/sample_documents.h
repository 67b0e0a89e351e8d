// Documents like those that a run leaves, made by hand.
#pragma once

#include "output/document.h"

namespace hierfit::test {

/// A report with each kind of table that the procedure makes.
output::Document procedure_document();

/// What is hard to show: tables without dimensions or categories, forty columns, long, hostile,
/// right-to-left and wide labels, numbers of every form.
output::Document awkward_document();

/// One table of `rows` rows and seven columns under two head rows.
output::Document large_document(int rows);

}  // namespace hierfit::test
