// How the marks of a Vega-Lite chart look: colours, symbols, widths and opacities, with legends.
#pragma once

#include <nlohmann/json.hpp>

#include "report/chart/binding.h"
#include "report/vega/vega_rows.h"

namespace hierfit::report::vega {

/// Members stay in the order in which they are written.
using Json = nlohmann::ordered_json;

/// The names of the colours that occur, in the order of their legend.
Json shown_colors(const chart::Binding& binding);

/// Adds the channels of an element's looks to its encoding.
void write_looks(Json& encoding,
                 const chart::BoundElement& element,
                 const chart::Binding& binding,
                 const DataFacts& facts);

}  // namespace hierfit::report::vega
