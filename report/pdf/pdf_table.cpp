#include "report/pdf/pdf_table.h"

#include <algorithm>
#include <numeric>

#include "report/chart/metrics.h"
#include "report/wording.h"

namespace hierfit::report::pdf {

using output::kNone;
using output::Text;

namespace {

constexpr TextLook kCellLook = {.size = kTableFont, .line = 1.25};
constexpr double kLine = kTableFont * 1.25;
constexpr double kRowPadding = 2.1;  ///< over and under the text of a cell
constexpr double kRow = kLine + 2 * kRowPadding;
constexpr double kHeadPadding = 2.6;
constexpr double kBaseline = kTableFont * 0.905;

constexpr double kThick = 1.3;
constexpr double kThin = 0.7;
constexpr double kHair = 0.5;
/// What the rule over a group of columns leaves at either side.
constexpr double kSpanGap = 3;

/// A table up to this part of a page is not divided; of others so many lines stay together.
constexpr double kKeptPart = 0.65;
constexpr uint32_t kFirstLines = 3;
constexpr double kKeptNotes = 120;
/// A row higher than this is cut.
constexpr double kTallestRow = 420;
constexpr uint32_t kDeepestIndent = 8;
constexpr size_t kMostLabelLines = 200;

double sum(const std::vector<double>& lengths) {
  return std::accumulate(lengths.begin(), lengths.end(), 0.0);
}

void add_marks(Runs& runs, std::string marks) {
  if (!marks.empty()) runs.push_back({.text = std::move(marks), .raised = true});
}

}  // namespace

PdfTable::PdfTable(const output::Document& document, const output::Table& table, uint32_t number)
    : document_(document),
      view_(document, table),
      page_(plan_table(view_)),
      grid_(head_grid(view_.layout)),
      number_(number) {}

// The frame.

double PdfTable::shown_width(uint32_t from, uint32_t to) const {
  constexpr double kAlone = 140;
  if (view_.layout.columns == 0) return kAlone;
  return std::accumulate(page_.columns.begin() + from, page_.columns.begin() + to, 0.0);
}

double PdfTable::stub_width() const { return sum(page_.stubs); }
double PdfTable::table_width() const { return stub_width() + shown_width(first_, end_); }

double PdfTable::at(const Pen& pen, double offset, double width) const {
  return document_.right_to_left ? pen.left() + pen.width() - offset - width : pen.left() + offset;
}

double PdfTable::start_height(Pen& pen) {
  end_ = page_.parts.front().end;
  measure_head(pen);
  const double over = caption_height(pen) + kCaptionGap + head_height() + kBlockGap;
  const double most = (pen.bottom() - pen.top()) * kKeptPart;
  const double foot = notes_height(pen);
  double height = over;
  size_t head = 0;
  for (uint32_t line = 0; line < view_.lines(); ++line) {
    if (height > most && line >= kFirstLines) {
      return over + kFirstLines * kRow;
    }
    height += line_height(pen, line, head);
    while (head < view_.layout.row_heads.size() && view_.layout.row_heads[head].first <= line)
      ++head;
  }
  return std::min(height + foot, pen.bottom() - pen.top());
}

void PdfTable::draw(Pen& pen) {
  for (const Part& part : page_.parts) {
    end_ = part.end;
    measure_head(pen);
    if (first_ > 0) {
      if (pen.room() < kBlockGap + caption_height(pen) + head_height() + 4 * kRow) {
        pen.next_page();
      } else {
        pen.y += kBlockGap;
      }
    }
    draw_fold(pen);
    first_ = part.end;
  }
  first_ = 0;
  draw_notes(pen);
}

void PdfTable::draw_fold(Pen& pen) {
  draw_caption(pen, first_ > 0);
  draw_head(pen);
  if (view_.layout.empty()) {
    draw_nothing(pen);
  } else {
    draw_lines(pen);
  }
  pen.rule(at(pen, 0, table_width()), pen.y, table_width(), kThick, Ink::Text);
}

// The caption.

Runs PdfTable::caption(bool continues) const {
  const std::string number = std::to_string(number_);
  if (continues) {
    return {{.text = filled(document_.word("Table ^1 (continued)"), number), .bold = true}};
  }
  Runs runs = {{.text = filled(document_.word("Table ^1"), number) + "\n", .bold = true},
               {.text = view_.text(view_.table.title), .italic = true}};
  add_marks(runs, mark_letters(view_.marks(view_.layout.title_notes)));
  return runs;
}

double PdfTable::caption_height(Pen& pen) const {
  return pen.height(caption(false), kCaptionLook, pen.width());
}

void PdfTable::draw_caption(Pen& pen, bool continues) {
  pen.flow(caption(continues), kCaptionLook, pen.left(), pen.width());
  pen.y += kCaptionGap;
}

// The head.

Runs PdfTable::label(const Head& head) const {
  Runs runs;
  if (const Text* text = view_.label_of(head)) {
    runs.push_back({.text = view_.text(*text), .italic = text->symbol});
  }
  add_marks(runs, mark_letters(view_.marks(head)));
  return runs;
}

/// Each head row is as high as its highest head of one row; what higher heads lack falls to their
/// last row.
void PdfTable::measure_head(Pen& pen) {
  head_heights_.assign(view_.head_rows(), kLine + 2 * kHeadPadding);
  const auto reach = [&](uint32_t level, uint32_t depth, double height) {
    double has = 0;
    for (uint32_t row = level; row < level + depth; ++row)
      has += head_heights_[row];
    if (has < height) head_heights_[level + depth - 1] += height - has;
  };
  const double most = (pen.bottom() - pen.top()) / 2;
  for (uint32_t level = 0; level < grid_.size(); ++level) {
    for (const Head* head : heads_between(grid_[level], first_, end_)) {
      if (head->level != level || view_.label_of(*head) == nullptr) continue;
      const uint32_t from = std::max(head->first, first_);
      const uint32_t to = std::min(head->first + head->span, end_);
      const double width = shown_width(from, to) - 2 * kCellPadding;
      const double height = pen.height(label(*head), kCellLook, width) + 2 * kHeadPadding;
      reach(level, head->depth, std::min(height, most));
    }
  }
  for (uint32_t stub = 0; stub < view_.stubs() && !head_heights_.empty(); ++stub) {
    const Text* title = view_.stub_title(stub);
    if (title == nullptr) continue;
    const double width = page_.stubs[stub] - 2 * kCellPadding;
    const double height = pen.height({{.text = view_.text(*title)}}, kCellLook, width);
    reach(0, view_.head_rows(), std::min(height + 2 * kHeadPadding, most));
  }
}

double PdfTable::head_height() const { return sum(head_heights_); }

void PdfTable::draw_head(Pen& pen) {
  const double top = pen.y;
  pen.rule(at(pen, 0, table_width()), top, table_width(), kThick, Ink::Text);
  if (head_heights_.empty()) return;
  const double foot = top + head_height();
  double x = 0;
  for (uint32_t stub = 0; stub < view_.stubs(); ++stub) {
    const double width = page_.stubs[stub];
    if (const Text* title = view_.stub_title(stub)) {
      const Runs runs = {{.text = view_.text(*title)}};
      const double inner = width - 2 * kCellPadding;
      const double height = pen.height(runs, kCellLook, inner);
      pen.text(runs, kCellLook, at(pen, x + kCellPadding, inner), foot - kHeadPadding - height,
               inner);
    }
    x += width;
  }
  for (uint32_t level = 0; level < grid_.size(); ++level) {
    for (const Head* each : heads_between(grid_[level], first_, end_)) {
      if (each->level == level) draw_column_head(pen, *each, top);
    }
  }
  pen.y = foot;
  pen.rule(at(pen, 0, table_width()), pen.y, table_width(), kThin, Ink::Text);
}

void PdfTable::draw_column_head(Pen& pen, const Head& head, double top) {
  const uint32_t from = std::max(head.first, first_);
  const uint32_t to = std::min(head.first + head.span, end_);
  if (view_.label_of(head) == nullptr) return;
  const double offset = stub_width() + shown_width(first_, from);
  const double width = shown_width(from, to);
  const uint32_t below = head.level + head.depth;
  const double foot =
      top + std::accumulate(head_heights_.begin(), head_heights_.begin() + below, 0.0);
  const double inner = width - 2 * kCellPadding;
  const Runs runs = label(head);
  const bool at_start = to - from == 1 && view_.cells.columns[from].mixed;
  TextLook look = kCellLook;
  look.side = at_start ? Side::Start : Side::Centre;
  const double height = pen.height(runs, look, inner);
  pen.text(runs, look, at(pen, offset + kCellPadding, inner), foot - kHeadPadding - height, inner);
  if (below == view_.head_rows()) return;
  const double length = width - 2 * kSpanGap;
  pen.rule(at(pen, offset + kSpanGap, length), foot, length, kHair, Ink::Hair);
}

// The body.

double PdfTable::cell_width(const Head& head) const {
  double width = page_.stubs[head.level];
  if (head.kind == HeadKind::Group) {
    width =
        table_width() - std::accumulate(page_.stubs.begin(), page_.stubs.begin() + head.level, 0.0);
  }
  return width - 2 * kCellPadding - kIndent * std::min(head.indent, kDeepestIndent);
}

double PdfTable::row_head_height(Pen& pen, const Head& head) const {
  const Text* text = view_.label_of(head);
  if (text == nullptr) return kRow;
  if (Pen::is_plain(text->shown, kTableFont, cell_width(head) - kTableFont)) return kRow;
  const double height = pen.height(row_label(head), kCellLook, cell_width(head)) + 2 * kRowPadding;
  // A head beside several lines has the room of all of them.
  const double beside = head.kind == HeadKind::Group ? 0 : (head.span - 1) * kRow;
  return std::min(height - beside, kTallestRow);
}

/// The label beside lines; a name that is wider than its column is divided behind its joining
/// signs.
Runs PdfTable::row_label(const Head& head) const {
  Runs runs = label(head);
  const bool has_text = view_.label_of(head) != nullptr;
  const double width = cell_width(head);
  if (!has_text || !Pen::is_ascii(runs[0].text)) return runs;
  const chart::Font font = {.size = kTableFont};
  const std::vector<std::string> lines =
      chart::fit_text(runs[0].text, font, width - 1, kMostLabelLines).lines;
  std::string joined;
  for (const std::string& line : lines)
    (joined += joined.empty() ? "" : "\n") += line;
  runs[0].text = std::move(joined);
  return runs;
}

/// The height of a line whose heads begin at that one of the row heads.
double PdfTable::line_height(Pen& pen, uint32_t line, size_t head) const {
  double height = kRow;
  const std::vector<Head>& heads = view_.layout.row_heads;
  for (; head < heads.size() && heads[head].first == line; ++head)
    height = std::max(height, row_head_height(pen, heads[head]));
  const uint32_t row = view_.layout.lines[line];
  if (row == kNone) return height;
  for (const PlacedCell& placed : shown_cells(row)) {
    const AlignedCell& cell = aligned(placed);
    if (cell.kind != CellKind::Text) continue;
    const Text& text = view_.table.texts[cell.begin];
    const double width = page_.columns[placed.column] - 2 * kCellPadding;
    if (Pen::is_plain(text.shown, kTableFont, width - kTableFont)) continue;
    const double lines = pen.height({{.text = view_.text(text)}}, kCellLook, width);
    height = std::max(height, std::min(lines + 2 * kRowPadding, kTallestRow));
  }
  return height;
}

void PdfTable::draw_lines(Pen& pen) {
  const std::vector<Head>& heads = view_.layout.row_heads;
  running_.assign(view_.stubs(), nullptr);
  size_t head = 0;
  for (uint32_t line = 0; line < view_.lines(); ++line) {
    const double height = line_height(pen, line, head);
    // A group is not parted from its first line, nor the notes from the last one.
    double needed = height + (view_.layout.lines[line] == kNone ? kRow : 0);
    if (line + 1 == view_.lines() && end_ == view_.layout.columns) {
      needed += std::min(notes_height(pen), kKeptNotes);
    }
    const bool turns = pen.y + needed > pen.bottom() && line > 0;
    if (turns) {
      pen.rule(at(pen, 0, table_width()), pen.y, table_width(), kThin, Ink::Text);
      pen.next_page();
      draw_caption(pen, true);
      draw_head(pen);
      repeat_heads(pen, line, pen.y);
    }
    pen.ink(Ink::Text);
    for (; head < heads.size() && heads[head].first == line; ++head) {
      running_[heads[head].level] = heads[head].kind == HeadKind::Group ? nullptr : &heads[head];
      draw_row_head(pen, heads[head], pen.y);
    }
    if (view_.layout.lines[line] != kNone) draw_cells(pen, view_.layout.lines[line], pen.y);
    pen.y += height;
  }
}

void PdfTable::draw_nothing(Pen& pen) {
  const Runs runs = {
      {.text = std::string(document_.word("No entries")), .italic = true, .quiet = true}};
  const double inner = table_width() - 2 * kCellPadding;
  pen.text(runs, kCellLook, at(pen, kCellPadding, inner), pen.y + 2 * kRowPadding, inner);
  pen.y += kRow + 2 * kRowPadding;
}

/// Heads that go on on a further page stand there again.
void PdfTable::repeat_heads(Pen& pen, uint32_t line, double top) {
  for (const Head* head : running_) {
    if (head != nullptr && head->first < line && head->first + head->span > line) {
      draw_row_head(pen, *head, top);
    }
  }
}

void PdfTable::draw_row_head(Pen& pen, const Head& head, double top) {
  double offset = kCellPadding + kIndent * std::min(head.indent, kDeepestIndent);
  for (uint32_t stub = 0; stub < head.level; ++stub)
    offset += page_.stubs[stub];
  const double width = cell_width(head);
  draw_text(pen, row_label(head), Side::Start, at(pen, offset, width), top + kRowPadding, width);
}

void PdfTable::draw_text(
    Pen& pen, const Runs& runs, Side side, double x, double top, double width) {
  if (runs.empty()) return;
  const bool plain = runs.size() == 1 && !runs[0].italic && !runs[0].raised &&
                     side == Side::Start && !document_.right_to_left;
  if (plain && Pen::is_plain(runs[0].text, kTableFont, width - kTableFont)) {
    return pen.plain(runs[0].text, kTableFont, x, top + kBaseline);
  }
  TextLook look = kCellLook;
  look.side = side;
  pen.text(runs, look, x, top, width);
}

std::span<const PlacedCell> PdfTable::shown_cells(uint32_t row) const {
  return cells_between(view_.layout.row(row), first_, end_);
}

const AlignedCell& PdfTable::aligned(const PlacedCell& placed) const {
  return view_.cells.cells[static_cast<size_t>(&placed - view_.layout.placed.data())];
}

void PdfTable::draw_cells(Pen& pen, uint32_t row, double top) {
  uint32_t before = first_;
  double offset = stub_width();
  for (const PlacedCell& placed : shown_cells(row)) {
    offset += shown_width(before, placed.column);
    before = placed.column;
    const AlignedCell& cell = aligned(placed);
    if (cell.kind == CellKind::Number && !view_.cells.columns[placed.column].mixed) {
      draw_number(pen, placed, cell, offset, top);
    } else {
      draw_text_cell(pen, placed, cell, offset, top);
    }
  }
}

void PdfTable::draw_text_cell(
    Pen& pen, const PlacedCell& placed, const AlignedCell& cell, double offset, double top) {
  Runs runs;
  if (cell.kind == CellKind::Text) {
    runs.push_back({.text = view_.text(view_.table.texts[cell.begin])});
  } else if (cell.kind == CellKind::Number) {
    runs.push_back({.text = std::string(view_.cells.number(cell))});
  }
  add_marks(runs, marks_at(placed));
  const double inner = page_.columns[placed.column] - 2 * kCellPadding;
  draw_text(pen, runs, Side::Start, at(pen, offset + kCellPadding, inner), top + kRowPadding,
            inner);
}

std::string PdfTable::marks_at(const PlacedCell& placed) const {
  return mark_letters(view_.marks(placed));
}

/// The numbers of a column have their decimal marks in line, and are centred together; marks of
/// notes stand behind.
void PdfTable::draw_number(
    Pen& pen, const PlacedCell& placed, const AlignedCell& cell, double offset, double top) {
  const DecimalWidths& widest = page_.decimals[placed.column];
  const DecimalWidths own = decimal_widths(view_.cells.number(cell), cell);
  const double width = page_.columns[placed.column];
  const double mark = at(pen, offset, width) + (width + widest.whole - widest.rest) / 2;
  const double baseline = top + kRowPadding + kBaseline;
  pen.plain(view_.cells.number(cell), kTableFont, mark - own.whole, baseline);
  pen.plain(marks_at(placed), kMarkFont, mark + own.rest + 0.5, baseline - 0.33 * kTableFont);
}

// The notes.

std::vector<Runs> PdfTable::notes() const {
  std::vector<Runs> notes;
  if (view_.captioned()) {
    notes.push_back({{.text = std::string(document_.word("Note.")) + " ", .italic = true},
                     {.text = view_.text(*view_.table.caption)}});
  }
  for (uint32_t mark = 0; mark < view_.layout.notes.size(); ++mark) {
    notes.push_back({{.text = mark_letters(mark), .raised = true},
                     {.text = " " + view_.text(view_.table.notes[view_.layout.notes[mark]])}});
  }
  return notes;
}

double PdfTable::notes_height(Pen& pen) const {
  double height = 0;
  for (const Runs& note : notes())
    height += kRowPadding + pen.height(note, kNoteLook, pen.width());
  return height;
}

void PdfTable::draw_notes(Pen& pen) {
  pen.y += kRowPadding;
  for (const Runs& note : notes()) {
    pen.y += kRowPadding;
    pen.flow(note, kNoteLook, pen.left(), pen.width());
  }
}

}  // namespace hierfit::report::pdf
