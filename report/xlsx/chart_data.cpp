#include "report/xlsx/chart_data.h"

#include <algorithm>
#include <vector>

#include "report/chart/binding.h"
#include "report/outline.h"

namespace hierfit::report::xlsx {

using output::ChartSource;
using output::ChartVariable;
using Kind = output::ChartColumn::Kind;

namespace {

class DataWriter {
 public:
  DataWriter(Workbook& workbook,
             lxw_worksheet* sheet,
             const output::Document& document,
             uint32_t row)
      : workbook_(workbook), sheet_(sheet), document_(document), row_(row) {}

  void write(const output::Chart& chart) {
    for (const ChartSource& source : chart.sources)
      write_source(source);
  }

 private:
  void write_source(const ChartSource& source) {
    std::vector<const ChartVariable*> shown;
    for (const ChartVariable& variable : source.variables) {
      if (!variable.label.empty() && variable.values.rows() > 0) shown.push_back(&variable);
    }
    if (shown.empty()) return;
    write_text(0, std::string(document_.word("Data of the figure")), {.bold = true});
    ++row_;
    for (uint32_t column = 0; column < shown.size(); ++column) {
      const Side side = is_text(*shown[column]) ? Side::Start : Side::End;
      write_text(column, clean(shown[column]->label),
                 {.wraps = true, .side = side, .above = Rule::Thick, .below = Rule::Thin});
    }
    ++row_;
    const size_t rows = std::min(source.rows, kMostDataRows);
    for (size_t of_source = 0; of_source < rows && row_ + 2 < kMostRows; ++of_source, ++row_)
      write_row(shown, of_source);
    if (rows < source.rows) write_rest(source.rows);
    ++row_;
  }

  void write_rest(size_t rows) {
    const std::string_view pattern =
        document_.word("The first ^1 of ^2 rows; the JSON form of the report holds all of them.");
    write_text(
        0, chart::with_arguments(pattern, {std::to_string(kMostDataRows), std::to_string(rows)}),
        {});
    ++row_;
  }

  static bool is_text(const ChartVariable& variable) {
    return variable.categorical || !variable.number_labels.empty() ||
           !variable.values.all_numbers();
  }

  void write_row(const std::vector<const ChartVariable*>& shown, size_t row) {
    for (uint32_t column = 0; column < shown.size(); ++column) {
      const ChartVariable& variable = *shown[column];
      if (!chart::has_value(variable, row)) continue;
      const bool number = variable.values.kind(row) == Kind::Number;
      if (number && variable.label_of(variable.values.number(row)) == nullptr) {
        write_number(column, variable, variable.values.number(row));
      } else {
        write_text(column, clean(chart::shown_value(variable, row, document_.numbers)), {});
      }
    }
  }

  void write_number(uint32_t column, const ChartVariable& variable, double value) {
    Look look;
    look.side = is_text(variable) ? Side::Start : Side::End;
    worksheet_write_number(sheet_, row_, static_cast<lxw_col_t>(column), value,
                           workbook_.format(look));
  }

  void write_text(uint32_t column, const std::string& text, const Look& look) {
    write_runs(workbook_, sheet_, row_, column, {{text, look}}, look);
  }

  Workbook& workbook_;
  lxw_worksheet* sheet_;
  const output::Document& document_;
  uint32_t row_;
};

}  // namespace

void write_chart_data(Workbook& workbook,
                      lxw_worksheet* sheet,
                      const output::Document& document,
                      const output::Chart& chart,
                      uint32_t row) {
  DataWriter(workbook, sheet, document, row).write(chart);
}

}  // namespace hierfit::report::xlsx
