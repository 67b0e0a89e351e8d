// Lays over the charts of a run what its tables and its dictionary know. The data of a chart hold 0
// where there is no number, keys in place of categories, and rounded numbers inside texts; a chart
// does not tell either what its marks are.
#pragma once

#include "embedded/dictionary/data_dictionary.h"
#include "embedded/strings/string_table.h"
#include "output/document.h"

namespace hierfit::chart {

/// A number that a table of the same block shows as missing is missing in its chart, and a note
/// names it; nodes are categories; significances are numbers; notes say what intervals are.
void complete_charts(output::Document& document,
                     const StringTable& strings,
                     const DataDictionary& dictionary);

}  // namespace hierfit::chart
