// Writes a table into sheets of a workbook.
#pragma once

#include <string>

#include "report/typeset/blocks.h"
#include "report/typeset/table_view.h"
#include "report/xlsx/workbook.h"

namespace hierfit::report::xlsx {

/// How much of a table one sheet takes.
struct SheetLimits {
  uint32_t lines = kMostRows;
  uint32_t columns = kMostColumns;
};

/// The name of the first sheet of a table or chart.
std::string sheet_name(const Block& block, const output::Document& document);

/// Writes a table. What lies beyond the rows or columns of a sheet follows on further sheets, each
/// with its heads, row heads and notes.
void write_table(Workbook& workbook,
                 const output::Document& document,
                 const Block& block,
                 const SheetLimits& limits = {});

/// The number over a part, then its title; both on rows of their own from the top.
void write_title(Workbook& workbook,
                 lxw_worksheet* sheet,
                 const std::string& number,
                 const std::vector<Run>& title);

/// Paper, direction, page number and the settings that all sheets share.
void set_up(lxw_worksheet* sheet, const output::Document& document, bool landscape);

/// The rows that the title takes, with the empty one behind it.
inline constexpr uint32_t kTitleRows = 3;

}  // namespace hierfit::report::xlsx
