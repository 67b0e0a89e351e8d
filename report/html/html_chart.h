// Writes one chart as HTML.
#pragma once

#include <cstdint>
#include <string>

#include "output/document.h"

namespace hierfit::report::html {

/// Appends the chart as a figure, `number` its place among the figures of the report, from 1: its
/// title and notes as text of the page, the picture, and below it the data as tables that open. The
/// figure has the id "c" + number; every other id of it begins with that id and a letter.
void append_chart(std::string& out,
                  const output::Document& document,
                  const output::Chart& chart,
                  uint32_t number);

}  // namespace hierfit::report::html
