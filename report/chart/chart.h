// A chart of the output document as a picture.
#pragma once

#include <string>

#include "output/chart.h"
#include "output/document.h"

namespace hierfit::report {

/// A chart as an SVG file with literal colours, titles and notes, laid out for `width` pixels.
/// `document` gives the report's words and its way to write numbers.
std::string render_svg(const output::Chart& chart,
                       const output::Document& document,
                       double width = 720);

/// What a chart shows, in sentences made from its data: its kind, axes and ranges, the highest and
/// lowest mean, the pairs that differ.
std::string describe_chart(const output::Chart& chart, const output::Document& document);

}  // namespace hierfit::report
