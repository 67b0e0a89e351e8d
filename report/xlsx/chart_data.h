// Writes the data of a chart under its picture.
#pragma once

#include "output/document.h"
#include "report/chart/figure.h"
#include "report/xlsx/workbook.h"

namespace hierfit::report::xlsx {

/// Writes the tables of a figure's data from `row` on. Numbers are whole.
void write_chart_data(Workbook& workbook,
                      lxw_worksheet* sheet,
                      const output::Document& document,
                      const chart::Figure& figure,
                      uint32_t row);

}  // namespace hierfit::report::xlsx
