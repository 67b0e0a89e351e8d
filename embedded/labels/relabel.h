// The labels of fields in what a run left.
#pragma once

#include <string_view>

#include "embedded/dictionary/data_dictionary.h"
#include "embedded/strings/string_table.h"
#include "output/document.h"

namespace hierfit {

/// A procedure gives the names of fields where effects, terms and parameters are called by
/// expressions. In tables and charts their labels take their place, so that a report calls a thing
/// the same everywhere.
/// The thresholds of an ordinal target are called by the labels of its values.
void relabel(output::Document& document,
             const DataDictionary& dictionary,
             const StringTable& strings,
             std::string_view target);

}  // namespace hierfit
