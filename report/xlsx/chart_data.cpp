#include "report/xlsx/chart_data.h"

#include "report/chart/figure_table.h"
#include "report/typeset/texts.h"

namespace hierfit::report::xlsx {

namespace {

/// Rows of a source beyond this are left to the JSON form.
constexpr size_t kMostDataRows = 100'000;

class DataWriter {
 public:
  DataWriter(Workbook& workbook,
             lxw_worksheet* sheet,
             const output::Document& document,
             uint32_t row)
      : workbook_(workbook), sheet_(sheet), texts_(document), row_(row) {}

  void write(const chart::FigureTable& data) {
    const output::Table& table = data.table;
    write_text(0, table.title, {.bold = true});
    ++row_;
    for (uint32_t column = 0; column < data.texts.size(); ++column) {
      write_text(column, table.dimensions[1].nodes[column].label,
                 {.wraps = true,
                  .side = side_of(data, column),
                  .above = Rule::Thick,
                  .below = Rule::Thin});
    }
    ++row_;
    const uint32_t first = row_;
    chart::for_cells(table, [&](uint32_t row, uint32_t column, const output::CellValue* value) {
      row_ = first + row;
      if (value != nullptr && row_ + 2 < kMostRows) write_cell(data, column, *value);
    });
    row_ =
        std::min(first + static_cast<uint32_t>(table.dimensions[0].leaves.size()), kMostRows - 2);
    if (table.caption) {
      write_text(0, *table.caption, {});
      ++row_;
    }
    ++row_;
  }

 private:
  static Side side_of(const chart::FigureTable& data, uint32_t column) {
    return data.texts[column] ? Side::Start : Side::End;
  }

  void write_cell(const chart::FigureTable& data, uint32_t column, const output::CellValue& value) {
    const Look look = {.side = side_of(data, column)};
    if (const auto* number = std::get_if<output::Number>(&value)) {
      worksheet_write_number(sheet_, row_, static_cast<lxw_col_t>(column), number->value,
                             workbook_.format(look));
    } else {
      write_text(column, data.table.texts[std::get<uint32_t>(value)], look);
    }
  }

  void write_text(uint32_t column, const output::Text& text, const Look& look) {
    write_runs(workbook_, sheet_, row_, column, {{texts_.shown(text), look}}, look);
  }

  Workbook& workbook_;
  lxw_worksheet* sheet_;
  Texts texts_;
  uint32_t row_;
};

}  // namespace

void write_chart_data(Workbook& workbook,
                      lxw_worksheet* sheet,
                      const output::Document& document,
                      const chart::Figure& figure,
                      uint32_t row) {
  DataWriter writer(workbook, sheet, document, row);
  for (const chart::FigureTable& data : chart::figure_tables(figure.binding(), kMostDataRows))
    writer.write(data);
}

}  // namespace hierfit::report::xlsx
