// What the host puts into the charts by itself: built-in templates, style, translated words.
#pragma once

#include <string_view>

#include "embedded/chart/parse_markup.h"
#include "embedded/strings/string_table.h"

namespace hierfit::chart {

/// The text of the built-in template of that name; empty when there is none.
std::string_view built_in_template(std::string_view name);

/// The style sheet of all charts, the text of a `style` element.
extern const std::string_view kStyleSheet;

/// Puts the style sheet into a chart, in the place of the one that is there.
void apply_style(Element& chart);

/// Fills each element that has a `key` with the text of that key.
void translate(Element& chart, const StringTable& strings);

/// What a chart document is called in messages.
inline constexpr char kDocumentName[] = "chart document";

}  // namespace hierfit::chart
