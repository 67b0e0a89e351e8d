// The keys of the report's own words.
#pragma once

#include <string_view>

namespace hierfit {

/// What a renderer asks `output::Document::word` for.
inline constexpr std::string_view kReportWords[] = {
    "Along x: ^1 (^2).",
    "Along x: ^1, from ^2 to ^3.",
    "Along y: ^1, from ^2 to ^3.",
    "By colour: ^1.",
    "Category",
    "Chart:",
    "Contents",
    "Data of the figure",
    "Details",
    "Error:",
    "Figure ^1",
    "Frequency",
    "From",
    "Highest: ^1 (^2); lowest: ^3 (^4).",
    "Interval",
    "Kind",
    "Means with intervals: ^1 marks.",
    "Name",
    "Network of ^1 nodes and ^2 comparisons.",
    "Network of ^1 nodes joined to ^2: ^3.",
    "No data to show",
    "No entries",
    "Node",
    "Note.",
    "Note:",
    "Report",
    "Scatter plot of ^1 points.",
    "Skip to the results",
    "Some panels are not shown: they are too many.",
    "Table ^1",
    "Table ^1 (continued)",
    "The first ^1 of ^2 rows; the JSON form of the report holds all of them.",
    "Theme: automatic",
    "Theme: dark",
    "Theme: light",
    "To",
    "Value",
    "Warning:",
    "Weight",
    "^1 panels.",
    "^1: ^2 (^3).",
    "^1: ^2.",
    "and ^1 more",
    "few",
    "many",
    "missing",
};

}  // namespace hierfit
