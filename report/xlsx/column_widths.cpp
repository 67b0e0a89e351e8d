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

/// Points.
class SheetRuler : public Ruler {
 public:
  SheetRuler(const TableView& view, const ColumnWidths& widths) : view_(view), widths_(widths) {}

  Need narrowest() const override { return need(kNarrowest); }
  Need stub_title(const Text& title) const override { return need(width(title, kWidestLabel)); }
  Need row_head(const Head& head) const override {
    const Text* label = view_.label_of(head);
    if (label == nullptr) return {};
    return need(width(*label, kWidestLabel) + kFontSize * (head.indent + 1));
  }
  Need column_head(const Head& head) const override {
    const Text* label = view_.label_of(head);
    if (label == nullptr) return {};
    if (head.span > 1) {
      const double line = std::min(chart::text_width(label->shown, kFont), 2 * kWidestHead);
      return {line, line};  // which may use the padding
    }
    return head.kind == HeadKind::Title ? Need() : need(width(*label, kWidestHead));
  }
  Need text_cell(const PlacedCell&, const Text& text) const override {
    return need(width(text, kWidestLabel) + kFontSize);
  }
  Need numbers(uint32_t column) const override {
    const size_t characters =
        view_.cells.columns[column].whole + widths_.right[column] + widths_.marks[column].size();
    return need(static_cast<double>(characters) * chart::text_width("0", kFont));
  }

 private:
  static Need need(double width) { return {width + kColumnPadding, width + kColumnPadding}; }

  static double width(const Text& text, double most) {
    const double line = chart::fit_text(text.shown, kFont, most, 100).width(kFont);
    return std::max(line, std::min(chart::widest_word(text.shown, kFont), kWidestLabel));
  }

  const TableView& view_;
  const ColumnWidths& widths_;
};

void measure_numbers(const TableView& view, ColumnWidths& widths) {
  for (size_t i = 0; i < view.layout.placed.size(); ++i) {
    const AlignedCell& cell = view.cells.cells[i];
    const uint32_t column = view.layout.placed[i].column;
    if (cell.kind == CellKind::Text) continue;
    widths.right[column] = std::max(widths.right[column], right_length(cell));
    std::string marks = mark_letters(view.marks(view.layout.placed[i]));
    if (marks.size() > widths.marks[column].size()) widths.marks[column] = std::move(marks);
  }
}

}  // namespace

ColumnWidths measure_columns(const TableView& view) {
  ColumnWidths widths;
  widths.right.assign(view.layout.columns, 0);
  widths.marks.assign(view.layout.columns, "");
  measure_numbers(view, widths);
  widths.needs = measure(view, SheetRuler(view, widths));
  return widths;
}

}  // namespace hierfit::report::xlsx
