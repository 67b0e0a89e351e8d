// Joins a chart document with its data for the output.
#pragma once

#include <string>
#include <vector>

#include "embedded/chart/parse_markup.h"
#include "output/chart.h"

namespace hierfit::chart {

/// The chart of a document, described by it, with these data. Values that stand inside the document
/// move out of it into the data; a source of an embedded graph gets a name of its own where another
/// has it.
output::Chart join(Element& document,
                   std::vector<output::ChartSource> data,
                   std::string description);

}  // namespace hierfit::chart
