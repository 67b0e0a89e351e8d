#include "report/xlsx/table_sheets.h"

#include <algorithm>

#include "report/chart/metrics.h"
#include "report/typeset/table_rows.h"
#include "report/wording.h"
#include "report/xlsx/column_widths.h"
#include "report/xlsx/number_format.h"

namespace hierfit::report::xlsx {

using output::Document;
using output::Text;

namespace {

constexpr chart::Font kFont = {.size = kFontSize};

/// In points. Notes run at least so wide.
constexpr double kNoteWidth = 420;
/// What fits side by side on upright paper in points, and what may be shrunk to fit on any.
constexpr double kPortrait = 480;
constexpr double kShrinkable = 1500;
constexpr double kLineHeight = 13.5;
constexpr double kTallestRow = 400;
/// Heads beyond this would leave no room in a window to scroll in.
constexpr double kTallestFrozenHead = 200;
constexpr double kWidestFrozen = 360;
constexpr uint8_t kDeepestIndent = 15;

class TableSheets {
 public:
  TableSheets(Workbook& workbook, const Document& document, const Block& block)
      : workbook_(workbook),
        document_(document),
        block_(block),
        view_(document, *block.as<output::Table>()),
        widths_(measure_columns(view_)) {}

  void write(const SheetLimits& limits) {
    const auto notes = static_cast<uint32_t>(view_.layout.notes.size()) + 1;
    const uint32_t around = kTitleRows + view_.head_rows() + notes;
    const uint32_t lines = limits.lines > around ? limits.lines - around : 1;
    // A sheet has room for so many columns, whatever their widths.
    const Needs counted = {std::vector<Need>(view_.stubs(), {1, 1}),
                           std::vector<Need>(view_.layout.columns, {1, 1})};
    std::vector<TableRows> walks;
    for (const Part& part : divide(view_, counted, limits.columns))
      walks.emplace_back(view_, part, lines);
    do {
      for (TableRows& rows : walks)
        write_sheet(rows);
    } while (go_on(walks));
  }

 private:
  static bool go_on(std::vector<TableRows>& walks) {
    bool goes_on = true;
    for (TableRows& rows : walks)
      goes_on = rows.next_slice();
    return goes_on;
  }

  double width_of(const Part& part, uint32_t column) const {
    const uint32_t stubs = view_.stubs();
    return column < stubs ? widths_.needs.stubs[column].wanted
                          : widths_.needs.columns[part.first + column - stubs].wanted;
  }

  // A sheet.

  void write_sheet(TableRows& rows) {
    sheet_ = workbook_.add_sheet(next_name());
    set_columns(rows);
    write_caption(rows.continues());
    row_ = kTitleRows;
    head_height_ = 0;
    while (rows.next()) {
      if (rows.in_head()) {
        write_head_row(rows);
      } else {
        write_line(rows);
      }
      ++row_;
    }
    if (view_.layout.empty()) write_nothing(rows);
    write_notes(rows);
    const bool low_head = head_height_ <= kTallestFrozenHead;
    worksheet_freeze_panes(sheet_, low_head ? kTitleRows + view_.head_rows() : 0, frozen_columns());
  }

  std::string next_name() {
    ++sheets_;
    if (sheets_ == 1) return sheet_name(block_, document_);
    return sheet_name(numbered(block_, document_) + " (" + std::to_string(sheets_) + ") " +
                      view_.text(view_.table.title));
  }

  lxw_col_t frozen_columns() const {
    double width = 0;
    for (const Need& stub : widths_.needs.stubs)
      width += stub.wanted - kColumnPadding;
    return width > kWidestFrozen ? 0 : static_cast<lxw_col_t>(view_.stubs());
  }

  void set_columns(const TableRows& rows) {
    double total = 0;
    for (uint32_t column = 0; column < rows.columns() && !view_.layout.empty(); ++column) {
      const double width = width_of(rows.part(), column);
      total += width;
      const auto at = static_cast<lxw_col_t>(column);
      worksheet_set_column(sheet_, at, at, column_width(width - kColumnPadding), nullptr);
    }
    set_up(sheet_, document_, total > kPortrait);
    if (total <= kShrinkable) worksheet_fit_to_pages(sheet_, 1, 0);
    if (view_.stubs() > 0 && total > kShrinkable) {
      worksheet_repeat_columns(sheet_, 0, static_cast<lxw_col_t>(view_.stubs() - 1));
    }
    if (view_.head_rows() > 0) {
      worksheet_repeat_rows(sheet_, kTitleRows, kTitleRows + view_.head_rows() - 1);
    }
    worksheet_ignore_errors(sheet_, LXW_IGNORE_NUMBER_STORED_AS_TEXT, "A1:XFD1048576");
  }

  void write_caption(bool continues) {
    if (continues) {
      write_title(workbook_, sheet_, continued(block_, document_), {});
      return;
    }
    std::vector<Run> title = {{view_.text(view_.table.title), {.italic = true}}};
    add_marks(title, view_.marks(view_.layout.title_notes));
    write_title(workbook_, sheet_, numbered(block_, document_), title);
  }

  static void add_marks(std::vector<Run>& runs, const std::vector<uint32_t>& marks) {
    if (!marks.empty()) runs.push_back({mark_letters(marks), {.raised = true}});
  }

  void write(uint32_t column, const std::vector<Run>& runs, const Look& look) {
    write_runs(workbook_, sheet_, row_, column, runs, look);
  }

  void write_blanks(uint32_t from, uint32_t to, const Look& look) {
    for (; from < to; ++from)
      write(from, {}, look);
  }

  // The heads.

  void write_head_row(const TableRows& rows) {
    const bool last = row_ + 1 == kTitleRows + view_.head_rows();
    const Look look = {.wraps = true,
                       .low = true,
                       .above = rows.is_first() ? Rule::Thick : Rule::None,
                       .below = last ? Rule::Thin : Rule::None};
    row_height_ = kLineHeight + 3;
    write_blanks(0, rows.columns(), look);
    // A head that reaches down stands at its foot, so that each row is written once.
    for (const RowCell& cell : rows.cells()) {
      if (cell.ends() && cell.label != nullptr) write_over(rows.part(), cell, look);
    }
    worksheet_set_row(sheet_, row_, row_height_, nullptr);
    head_height_ += row_height_;
  }

  void grow(const Text& text, double width) {
    const size_t lines = chart::fit_text(text.shown, kFont, width, 25).lines.size();
    row_height_ = std::max(row_height_, static_cast<double>(lines) * kLineHeight + 3);
  }

  void write_over(const Part& part, const RowCell& cell, Look look) {
    if (cell.role == RowCell::Role::ColumnHead) {
      look.side = cell.over_heads || cell.columns > 1 ? Side::Centre
                  : cell.at_start                     ? Side::Start
                                                      : Side::End;
      if (look.side == Side::Start) look.indent = 1;
      if (cell.over_heads) look.below = Rule::Hair;
    }
    Look run = look;
    run.italic = cell.head != nullptr && cell.label->symbol;
    std::vector<Run> runs = {{view_.text(*cell.label), run}};
    add_marks(runs, cell.marks);
    double width = 0;
    for (uint32_t column = cell.column; column < cell.end(); ++column)
      width += width_of(part, column);
    merge(cell.column, cell.end() - 1, look);
    write(cell.column, runs, look);
    grow(*cell.label, width);
  }

  void merge(uint32_t first, uint32_t last, const Look& look) {
    if (first == last) return;
    worksheet_merge_range(sheet_, row_, static_cast<lxw_col_t>(first), row_,
                          static_cast<lxw_col_t>(last), "", workbook_.format(look));
  }

  // The body.

  void write_nothing(const TableRows& rows) {
    const Look look = {.italic = true,
                       .quiet = true,
                       .above = view_.head_rows() == 0 ? Rule::Thick : Rule::None,
                       .below = Rule::Thick};
    write_blanks(0, rows.columns(), look);
    write(0, {{std::string(document_.word("No entries")), look}}, look);
    ++row_;
  }

  void write_line(const TableRows& rows) {
    Look look;
    if (rows.is_last()) look.below = Rule::Thick;
    if (rows.is_first()) look.above = Rule::Thick;
    for (const RowCell& cell : rows.cells()) {
      if (cell.role == RowCell::Role::Content) {
        write_content(cell, look);
      } else if (cell.head == nullptr) {
        write_gap(cell.column, cell.end(), look);
      } else if (cell.begins() || rows.is_first_line()) {
        write_row_head(cell, look);
      } else {
        write_blanks(cell.column, cell.end(), look);
      }
    }
  }

  void write_row_head(const RowCell& cell, const Look& line) {
    Look look = line;
    look.wraps = cell.role != RowCell::Role::Group;
    look.indent = static_cast<uint8_t>(std::min<uint32_t>(cell.head->indent, kDeepestIndent));
    std::vector<Run> runs;
    if (cell.label != nullptr) {
      runs.push_back({view_.text(*cell.label), {.italic = cell.label->symbol}});
    }
    add_marks(runs, cell.marks);
    write(cell.column, runs, look);
    if (cell.columns == 1) return;
    write_blanks(cell.column + 1, view_.stubs(), line);
    write_gap(view_.stubs(), cell.end(), line);
  }

  /// Cells that are not there are left alone, but for the rules that run through them.
  void write_gap(uint32_t from, uint32_t to, const Look& look) {
    if (look.above != Rule::None || look.below != Rule::None) write_blanks(from, to, look);
  }

  void write_content(const RowCell& content, Look look) {
    const AlignedCell& cell = *content.cell;
    const uint32_t column = content.placed->column;
    const bool mixed = content.at_start;
    look.side = mixed ? Side::Start : Side::End;
    look.indent = mixed ? 1 : 0;
    if (cell.kind != CellKind::Number) {
      look.wraps = cell.kind == CellKind::Text;
      std::vector<Run> runs;
      if (look.wraps) runs.push_back({view_.text(view_.table.texts[cell.begin]), look});
      add_marks(runs, content.marks);
      return write(content.column, runs, look);
    }
    look.number = number_format(view_.number_of(*content.placed), cell, view_.cells.columns[column],
                                mixed ? 0 : widths_.right[column], document_.numbers,
                                mark_letters(content.marks),
                                mixed ? "" : std::string_view(widths_.marks[column]));
    worksheet_write_number(sheet_, row_, static_cast<lxw_col_t>(content.column), cell.value,
                           workbook_.format(look));
  }

  // The notes.

  void write_notes(const TableRows& rows) {
    if (view_.captioned()) {
      write_note(rows, {{std::string(document_.word("Note.")) + " ", {.italic = true}},
                        {view_.text(*view_.table.caption), {}}});
    }
    for (uint32_t mark = 0; mark < view_.layout.notes.size() && row_ < kMostRows; ++mark) {
      write_note(rows, {{mark_letters(mark), {.raised = true}},
                        {" " + view_.text(view_.table.notes[view_.layout.notes[mark]]), {}}});
    }
  }

  /// Notes run over the columns of the table, and over further ones where it is narrow.
  void write_note(const TableRows& rows, const std::vector<Run>& runs) {
    constexpr double kPlainColumn = 48;
    double width = 0;
    uint32_t columns = 0;
    while (width < kNoteWidth && columns < kMostColumns) {
      const bool used = columns < rows.columns() && !view_.layout.empty();
      width += used ? width_of(rows.part(), columns) : kPlainColumn;
      ++columns;
    }
    std::string text;
    for (const Run& run : runs)
      text += run.text;
    const size_t lines = chart::fit_text(text, kFont, width - kColumnPadding, 30).lines.size();
    const double height = std::min(static_cast<double>(lines) * kLineHeight + 2, kTallestRow);
    worksheet_set_row(sheet_, row_, height, nullptr);
    const Look look = {.wraps = true};
    merge(0, columns - 1, look);
    write(0, runs, look);
    ++row_;
  }

  Workbook& workbook_;
  const Document& document_;
  const Block& block_;
  TableView view_;
  ColumnWidths widths_;
  lxw_worksheet* sheet_ = nullptr;
  uint32_t row_ = 0;
  double row_height_ = 0;
  double head_height_ = 0;
  uint32_t sheets_ = 0;
};

}  // namespace

std::string sheet_name(const Block& block, const Document& document) {
  return sheet_name(numbered(block, document) + " " + clean(title_of(block).shown));
}

void write_table(Workbook& workbook,
                 const Document& document,
                 const Block& block,
                 const SheetLimits& limits) {
  TableSheets(workbook, document, block).write(limits);
}

void write_title(Workbook& workbook,
                 lxw_worksheet* sheet,
                 const std::string& number,
                 const std::vector<Run>& title) {
  const Look bold = {.size = 11, .bold = true};
  write_runs(workbook, sheet, 0, 0, {{number, bold}}, bold);
  if (!title.empty()) write_runs(workbook, sheet, 1, 0, title, {.italic = true});
}

void set_up(lxw_worksheet* sheet, const Document& document, bool landscape) {
  constexpr uint8_t kA4 = 9;
  worksheet_set_paper(sheet, kA4);
  if (landscape) worksheet_set_landscape(sheet);
  if (document.right_to_left) worksheet_right_to_left(sheet);
  worksheet_gridlines(sheet, LXW_HIDE_ALL_GRIDLINES);
  std::string pattern(document.word("Page ^1 of ^2"));
  for (size_t at = 0; (at = pattern.find('&', at)) != std::string::npos; at += 2)
    pattern.insert(at, 1, '&');
  const std::string footer = "&C" + filled(pattern, "&P", "&N");
  worksheet_set_footer(sheet, footer.c_str());
}

}  // namespace hierfit::report::xlsx
