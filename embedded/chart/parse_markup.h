// Reads the text of a chart document.
#pragma once

#include <string>
#include <string_view>

#include "output/markup.h"

namespace hierfit::chart {

using output::Element;

/// Reads a document. Throws `DocumentError` with the place when the text is not well-formed, nests
/// deeper than 512, or declares a document type. `name` is for that message. Comments and
/// processing instructions go.
Element parse_markup(std::string_view text, const std::string& name);

}  // namespace hierfit::chart
