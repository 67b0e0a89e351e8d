// Writes the data of a chart under its picture.
#pragma once

#include "output/document.h"
#include "report/xlsx/workbook.h"

namespace hierfit::report::xlsx {

/// Rows of a source beyond this are left to the JSON form, and said to be.
inline constexpr size_t kMostDataRows = 100'000;

/// Writes the variables that have a label, source by source, from `row` on. Numbers are numbers;
/// values with a label show as it.
void write_chart_data(Workbook& workbook,
                      lxw_worksheet* sheet,
                      const output::Document& document,
                      const output::Chart& chart,
                      uint32_t row);

}  // namespace hierfit::report::xlsx
