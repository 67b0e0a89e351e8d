// The keys of the report's own words.
#pragma once

#include <string_view>

namespace hierfit {

/// What a renderer asks `output::Document::word` for.
inline constexpr std::string_view kReportWords[] = {
    "Contents", "Table ^1", "Note", "missing", "Warning", "Error", "Skip to content",
};

}  // namespace hierfit
