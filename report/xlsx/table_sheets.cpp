#include "report/xlsx/table_sheets.h"

#include <algorithm>

#include "report/chart/binding.h"
#include "report/chart/metrics.h"
#include "report/wording.h"
#include "report/xlsx/column_widths.h"
#include "report/xlsx/number_format.h"

namespace hierfit::report::xlsx {

using output::Document;
using output::kNone;
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

/// The lines and columns of a sheet.
struct Piece {
  uint32_t first_line = 0;
  uint32_t end_line = 0;
  uint32_t first_column = 0;
  uint32_t end_column = 0;
};

class TableSheets {
 public:
  TableSheets(Workbook& workbook, const Document& document, const Entry& entry)
      : workbook_(workbook),
        document_(document),
        entry_(entry),
        view_(document, *entry.as<output::Table>()),
        widths_(measure_columns(view_)) {}

  void write(const SheetLimits& limits) {
    const auto notes = static_cast<uint32_t>(view_.layout.notes.size()) + 1;
    const uint32_t around = kTitleRows + view_.head_rows() + notes;
    const uint32_t lines = limits.lines > around ? limits.lines - around : 1;
    const uint32_t columns = limits.columns > view_.stubs() ? limits.columns - view_.stubs() : 1;
    Piece piece;
    do {
      piece.end_line = std::min(view_.lines(), piece.first_line + lines);
      piece.first_column = 0;
      do {
        piece.end_column = std::min(view_.layout.columns, piece.first_column + columns);
        write_piece(piece);
        piece.first_column = piece.end_column;
      } while (piece.end_column < view_.layout.columns);
      piece.first_line = piece.end_line;
    } while (piece.end_line < view_.lines());
  }

 private:
  double width_of(uint32_t sheet_column, const Piece& piece) const {
    const uint32_t column = sheet_column - view_.stubs() + piece.first_column;
    return sheet_column < view_.stubs() ? widths_.stubs[sheet_column] : widths_.columns[column];
  }

  uint32_t used_columns(const Piece& piece) const {
    return view_.stubs() + std::max(piece.end_column - piece.first_column, 1U);
  }

  // A sheet.

  void write_piece(const Piece& piece) {
    sheet_ = workbook_.add_sheet(next_name());
    const bool continues = piece.first_line > 0 || piece.first_column > 0;
    set_columns(piece);
    write_caption(continues);
    row_ = kTitleRows;
    write_heads(piece);
    if (view_.layout.empty()) {
      write_nothing(piece);
    } else {
      for (uint32_t line = piece.first_line; line < piece.end_line; ++line)
        write_line(piece, line);
    }
    write_notes(piece);
    const bool low_head = head_height_ <= kTallestFrozenHead;
    worksheet_freeze_panes(sheet_, low_head ? kTitleRows + view_.head_rows() : 0, frozen_columns());
  }

  std::string next_name() {
    ++sheets_;
    if (sheets_ == 1) return sheet_name(entry_, document_);
    return sheet_name(numbered(entry_, document_) + " (" + std::to_string(sheets_) + ") " +
                      view_.text(view_.table.title));
  }

  lxw_col_t frozen_columns() const {
    double width = 0;
    for (const double each : widths_.stubs)
      width += each;
    return width > kWidestFrozen ? 0 : static_cast<lxw_col_t>(view_.stubs());
  }

  void set_columns(const Piece& piece) {
    double total = 0;
    for (uint32_t column = 0; column < used_columns(piece) && !view_.layout.empty(); ++column) {
      const double width = width_of(column, piece);
      total += width + kColumnPadding;
      const auto at = static_cast<lxw_col_t>(column);
      worksheet_set_column(sheet_, at, at, column_width(width), nullptr);
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
      const std::string number = std::to_string(entry_.number);
      write_title(workbook_, sheet_, filled(document_.word("Table ^1 (continued)"), number), {});
      return;
    }
    std::vector<Run> title = {{view_.text(view_.table.title), {.italic = true}}};
    add_marks(title, mark_letters(view_.marks(view_.layout.title_notes)));
    write_title(workbook_, sheet_, numbered(entry_, document_), title);
  }

  static void add_marks(std::vector<Run>& runs, std::string marks) {
    if (!marks.empty()) runs.push_back({std::move(marks), {.raised = true}});
  }

  void write(uint32_t column, const std::vector<Run>& runs, const Look& look) {
    write_runs(workbook_, sheet_, row_, column, runs, look);
  }

  void write_blank(uint32_t column, const Look& look) { write(column, {}, look); }

  // The heads.

  void write_heads(const Piece& piece) {
    const uint32_t rows = view_.head_rows();
    head_height_ = 0;
    for (uint32_t level = 0; level < rows; ++level, ++row_) {
      const Look look = {.wraps = true,
                         .low = true,
                         .above = level == 0 ? Rule::Thick : Rule::None,
                         .below = level + 1 == rows ? Rule::Thin : Rule::None};
      row_height_ = kLineHeight + 3;
      for (uint32_t column = 0; column < used_columns(piece); ++column)
        write_blank(column, look);
      if (level + 1 == rows) write_stub_titles(look);
      // A head that reaches down stands at its foot, so that each row is written once.
      for (const Head& head : view_.layout.column_heads) {
        if (head.level + head.depth - 1 == level) write_column_head(head, piece, look, rows);
      }
      worksheet_set_row(sheet_, row_, row_height_, nullptr);
      head_height_ += row_height_;
    }
  }

  void write_stub_titles(const Look& look) {
    for (uint32_t stub = 0; stub < view_.stubs(); ++stub) {
      const Text* title = view_.stub_title(stub);
      if (title == nullptr) continue;
      write(stub, {{view_.text(*title), look}}, look);
      grow(*title, widths_.stubs[stub] + kColumnPadding);
    }
  }

  void grow(const Text& text, double width) {
    const size_t lines = chart::fit_text(text.shown, kFont, width, 25).lines.size();
    row_height_ = std::max(row_height_, static_cast<double>(lines) * kLineHeight + 3);
  }

  void write_column_head(const Head& head, const Piece& piece, Look look, uint32_t rows) {
    const uint32_t first = std::max(head.first, piece.first_column);
    const uint32_t end = std::min(head.first + head.span, piece.end_column);
    const Text* label = view_.label_of(head);
    if (first >= end || label == nullptr) return;
    const bool over_heads = head.level + head.depth < rows;
    look.side = over_heads || end - first > 1      ? Side::Centre
                : view_.cells.columns[first].mixed ? Side::Start
                                                   : Side::End;
    if (look.side == Side::Start) look.indent = 1;
    if (over_heads) look.below = Rule::Hair;
    Look run = look;
    run.italic = label->symbol;
    std::vector<Run> runs = {{view_.text(*label), run}};
    add_marks(runs, mark_letters(view_.marks(head)));
    const uint32_t at = view_.stubs() + first - piece.first_column;
    double width = 0;
    for (uint32_t column = first; column < end; ++column)
      width += widths_.columns[column] + kColumnPadding;
    merge(at, at + end - first - 1, look);
    write(at, runs, look);
    grow(*label, width);
  }

  void merge(uint32_t first, uint32_t last, const Look& look) {
    if (first == last) return;
    worksheet_merge_range(sheet_, row_, static_cast<lxw_col_t>(first), row_,
                          static_cast<lxw_col_t>(last), "", workbook_.format(look));
  }

  // The body.

  void write_nothing(const Piece& piece) {
    const Look look = {.italic = true,
                       .quiet = true,
                       .above = view_.head_rows() == 0 ? Rule::Thick : Rule::None,
                       .below = Rule::Thick};
    for (uint32_t column = 0; column < used_columns(piece); ++column)
      write_blank(column, look);
    write(0, {{std::string(document_.word("No entries")), look}}, look);
    ++row_;
  }

  void write_line(const Piece& piece, uint32_t line) {
    Look look;
    if (line + 1 == piece.end_line) look.below = Rule::Thick;
    if (line == piece.first_line && view_.head_rows() == 0) look.above = Rule::Thick;
    const auto heads = heads_of(piece, line);
    uint32_t stub = 0;
    for (const Head* head : heads) {
      for (; stub < head->level; ++stub)
        write_blank(stub, look);
      write_row_head(*head, look);
      stub = head->level + 1;
    }
    const bool of_group = view_.layout.lines[line] == kNone;
    for (; stub < view_.stubs(); ++stub)
      write_blank(stub, look);
    write_cells(
        piece,
        of_group ? std::span<const PlacedCell>() : view_.layout.row(view_.layout.lines[line]),
        of_group ? 0 : view_.layout.row_begin[view_.layout.lines[line]], look);
    ++row_;
  }

  /// The heads beside a line: those that begin there, and on the first line of a sheet those that
  /// go on. Lines come in order, once for each group of columns.
  std::vector<const Head*> heads_of(const Piece& piece, uint32_t line) {
    const std::vector<Head>& heads = view_.layout.row_heads;
    auto head = std::ranges::lower_bound(heads, line, {}, &Head::first);
    std::vector<const Head*> found;
    if (line == piece.first_line && line > 0) found = running_heads(line);
    for (; head != heads.end() && head->first == line; ++head)
      found.push_back(&*head);
    return found;
  }

  std::vector<const Head*> running_heads(uint32_t line) const {
    std::vector<const Head*> running(view_.stubs(), nullptr);
    for (const Head& head : view_.layout.row_heads) {
      if (head.first >= line) break;
      if (head.first + head.span > line && head.kind != HeadKind::Group)
        running[head.level] = &head;
    }
    std::erase(running, nullptr);
    return running;
  }

  void write_row_head(const Head& head, Look look) {
    const Text* label = view_.label_of(head);
    look.wraps = head.kind != HeadKind::Group;
    look.indent = static_cast<uint8_t>(std::min<uint32_t>(head.indent, kDeepestIndent));
    std::vector<Run> runs;
    if (label != nullptr) runs.push_back({view_.text(*label), {.italic = label->symbol}});
    add_marks(runs, mark_letters(view_.marks(head)));
    write(head.level, runs, look);
  }

  void write_cells(const Piece& piece,
                   std::span<const PlacedCell> row,
                   size_t begin,
                   const Look& look) {
    uint32_t next = piece.first_column;
    for (size_t i = 0; i < row.size(); ++i) {
      const uint32_t column = row[i].column;
      if (column < piece.first_column || column >= piece.end_column) continue;
      write_gap(piece, next, column, look);
      write_cell(view_.stubs() + column - piece.first_column, row[i], view_.cells.cells[begin + i],
                 look);
      next = column + 1;
    }
    write_gap(piece, next, piece.end_column, look);
  }

  /// Cells that are not there are left alone, but for the rules that run through them.
  void write_gap(const Piece& piece, uint32_t from, uint32_t to, const Look& look) {
    if (look.above == Rule::None && look.below == Rule::None) return;
    for (; from < to; ++from)
      write_blank(view_.stubs() + from - piece.first_column, look);
  }

  void write_cell(uint32_t at, const PlacedCell& placed, const AlignedCell& cell, Look look) {
    const bool mixed = view_.cells.columns[placed.column].mixed;
    look.side = mixed ? Side::Start : Side::End;
    look.indent = mixed ? 1 : 0;
    const std::string marks = mark_letters(view_.marks(placed));
    if (cell.kind != CellKind::Number) {
      look.wraps = cell.kind == CellKind::Text;
      std::vector<Run> runs;
      if (look.wraps) runs.push_back({view_.text(view_.table.texts[cell.begin]), look});
      add_marks(runs, marks);
      return write(at, runs, look);
    }
    look.number = number_format(view_.number_of(placed), cell, view_.cells.columns[placed.column],
                                mixed ? 0 : widths_.right[placed.column], document_.numbers, marks,
                                mixed ? "" : std::string_view(widths_.marks[placed.column]));
    worksheet_write_number(sheet_, row_, static_cast<lxw_col_t>(at), cell.value,
                           workbook_.format(look));
  }

  // The notes.

  void write_notes(const Piece& piece) {
    if (view_.captioned()) {
      write_note(piece, {{std::string(document_.word("Note.")) + " ", {.italic = true}},
                         {view_.text(*view_.table.caption), {}}});
    }
    for (uint32_t mark = 0; mark < view_.layout.notes.size() && row_ < kMostRows; ++mark) {
      write_note(piece, {{mark_letters(mark), {.raised = true}},
                         {" " + view_.text(view_.table.notes[view_.layout.notes[mark]]), {}}});
    }
  }

  /// Notes run over the columns of the table, and over further ones where it is narrow.
  void write_note(const Piece& piece, const std::vector<Run>& runs) {
    constexpr double kPlainColumn = 48;
    double width = 0;
    uint32_t columns = 0;
    while (width < kNoteWidth && columns < kMostColumns) {
      const bool used = columns < used_columns(piece) && !view_.layout.empty();
      width += used ? width_of(columns, piece) + kColumnPadding : kPlainColumn;
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
  const Entry& entry_;
  TableView view_;
  ColumnWidths widths_;
  lxw_worksheet* sheet_ = nullptr;
  uint32_t row_ = 0;
  double row_height_ = 0;
  double head_height_ = 0;
  uint32_t sheets_ = 0;
};

}  // namespace

std::string sheet_name(const Entry& entry, const Document& document) {
  return sheet_name(numbered(entry, document) + " " + clean(title_of(entry).shown));
}

void write_table(Workbook& workbook,
                 const Document& document,
                 const Entry& entry,
                 const SheetLimits& limits) {
  TableSheets(workbook, document, entry).write(limits);
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
  const std::string footer = "&C" + chart::with_arguments(pattern, {"&P", "&N"});
  worksheet_set_footer(sheet, footer.c_str());
}

}  // namespace hierfit::report::xlsx
