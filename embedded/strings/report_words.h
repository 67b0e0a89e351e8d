// The keys of the report's own words.
#pragma once

#include <string_view>

namespace hierfit {

/// What a renderer asks `output::Document::word` for.
inline constexpr std::string_view kReportWords[] = {
    "Contents",
    "Error:",
    "No entries",
    "Note.",
    "Note:",
    "Report",
    "Skip to the results",
    "Table ^1",
    "Table ^1 (continued)",
    "Theme: automatic",
    "Theme: dark",
    "Theme: light",
    "Warning:",
    "missing",
};

}  // namespace hierfit
