#include "report/xlsx/column_widths.h"

#include <algorithm>

#include "report/chart/metrics.h"
#include "report/wording.h"
#include "report/xlsx/number_format.h"
#include "report/xlsx/workbook.h"

namespace hierfit::report::xlsx {

using output::Text;

namespace {

constexpr chart::Font kFont = {.size = kFontSize};

/// In points: the widest that labels, heads and texts make a column, and a column at the least.
constexpr double kWidestLabel = 220;
constexpr double kWidestHead = 110;
constexpr double kNarrowest = 30;

/// Labels that go on beside long tables are measured up to here.
constexpr size_t kMostMeasured = 20000;

class Measure {
 public:
  explicit Measure(const TableView& view) : view_(view) {}

  ColumnWidths measure() {
    const size_t columns = view_.layout.columns;
    widths_.stubs.assign(view_.stubs(), kNarrowest);
    widths_.columns.assign(columns, kNarrowest);
    widths_.right.assign(columns, 0);
    widths_.marks.assign(columns, "");
    measure_heads();
    measure_cells();
    measure_spans();
    return std::move(widths_);
  }

 private:
  void measure_heads() {
    for (uint32_t stub = 0; stub < view_.stubs(); ++stub) {
      if (const Text* title = view_.stub_title(stub)) {
        widen(widths_.stubs[stub], *title, kWidestLabel);
      }
    }
    size_t measured = 0;
    for (const Head& head : view_.layout.row_heads) {
      const Text* label = view_.label_of(head);
      if (label == nullptr || head.kind == HeadKind::Group || ++measured > kMostMeasured) continue;
      widen(widths_.stubs[head.level], *label, kWidestLabel, kFontSize * (head.indent + 1));
    }
    for (const Head& head : view_.layout.column_heads) {
      const Text* label = view_.label_of(head);
      if (label == nullptr || head.kind == HeadKind::Title) continue;
      if (head.span == 1) widen(widths_.columns[head.first], *label, kWidestHead);
    }
  }

  void measure_cells() {
    const double digit = chart::text_width("0", kFont);
    const TableLayout& layout = view_.layout;
    for (size_t i = 0; i < layout.placed.size(); ++i) {
      const AlignedCell& cell = view_.cells.cells[i];
      const uint32_t column = layout.placed[i].column;
      if (cell.kind == CellKind::Text) {
        widen(widths_.columns[column], view_.table.texts[cell.begin], kWidestLabel, kFontSize);
        continue;
      }
      widths_.right[column] = std::max(widths_.right[column], right_length(cell));
      std::string marks = mark_letters(view_.marks(layout.placed[i]));
      if (marks.size() > widths_.marks[column].size()) widths_.marks[column] = std::move(marks);
    }
    for (size_t column = 0; column < widths_.columns.size(); ++column) {
      const size_t characters =
          view_.cells.columns[column].whole + widths_.right[column] + widths_.marks[column].size();
      widths_.columns[column] =
          std::max(widths_.columns[column], static_cast<double>(characters) * digit);
    }
  }

  /// Columns under a common head share what it lacks.
  void measure_spans() {
    for (const Head& head : view_.layout.column_heads) {
      const Text* label = view_.label_of(head);
      if (label == nullptr || head.span == 1) continue;
      double lacks = std::min(chart::text_width(label->shown, kFont), 2 * kWidestHead);
      for (uint32_t column = head.first; column < head.first + head.span && lacks > 0; ++column)
        lacks -= widths_.columns[column] + kColumnPadding;
      if (lacks <= 0) continue;
      for (uint32_t column = head.first; column < head.first + head.span; ++column)
        widths_.columns[column] += lacks / head.span;
    }
  }

  void widen(double& width, const Text& text, double most, double besides = 0) const {
    const double line = chart::fit_text(text.shown, kFont, most, 100).width(kFont);
    const double word = std::min(chart::widest_word(text.shown, kFont), kWidestLabel);
    width = std::max(width, std::max(line, word) + besides);
  }

  const TableView& view_;
  ColumnWidths widths_;
};

}  // namespace

ColumnWidths measure_columns(const TableView& view) { return Measure(view).measure(); }

}  // namespace hierfit::report::xlsx
