// The data of a chart inside its picture, for programs.
#pragma once

#include <cstddef>
#include <string>

#include "output/chart.h"

namespace hierfit::report::chart {

/// Sources with more rows are counted alone: the JSON form of the report holds them.
inline constexpr size_t kMostDataRows = 20'000;

/// Appends a `metadata` element with the sources of a chart, as docs/drawing.md describes it. The
/// labels of a variable and the rows of a source that would take more than what is left of `room`
/// bytes are left out.
/// Numbers stand in the fewest digits that read back as themselves.
void append_metadata(std::string& out, const output::Chart& chart, size_t room);

}  // namespace hierfit::report::chart
