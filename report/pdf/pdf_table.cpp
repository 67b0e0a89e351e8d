#include "report/pdf/pdf_table.h"

#include <algorithm>
#include <numeric>

#include "output/utf8.h"
#include "report/append.h"
#include "report/chart/metrics.h"
#include "report/wording.h"

namespace hierfit::report::pdf {

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

void add_marks(Runs& runs, const std::vector<uint32_t>& marks) {
  if (!marks.empty()) runs.push_back({.text = mark_letters(marks), .raised = true});
}

}  // namespace

PdfTable::PdfTable(const output::Document& document, const PaperBlock& block)
    : document_(document),
      block_(block.block),
      view_(block.table->view),
      page_(block.table->page) {}

// The frame.

double PdfTable::at(const Pen& pen, double offset, double width) const {
  return document_.right_to_left ? pen.left() + pen.width() - offset - width : pen.left() + offset;
}

double PdfTable::inner_width(const Part& part, const RowCell& cell) const {
  const uint32_t indent = cell.head == nullptr ? 0 : std::min(cell.head->indent, kDeepestIndent);
  return page_.width(part, cell.column, cell.columns) - 2 * kCellPadding - kIndent * indent;
}

double PdfTable::start_height(Pen& pen) {
  TableRows rows(view_, page_.parts.front());
  measure_head(pen, rows);
  const double over = caption_height(pen) + kCaptionGap + head_height() + kBlockGap;
  const double most = (pen.bottom() - pen.top()) * kKeptPart;
  double height = over;
  while (rows.next()) {
    if (height > most && rows.line() >= kFirstLines) return over + kFirstLines * kRow;
    height += line_height(pen, rows);
  }
  return std::min(height + notes_height(pen), pen.bottom() - pen.top());
}

void PdfTable::draw(Pen& pen) {
  for (const Part& part : page_.parts) {
    TableRows rows(view_, part);
    measure_head(pen, rows);
    if (part.first > 0) {
      if (pen.room() < kBlockGap + caption_height(pen) + head_height() + 4 * kRow) {
        pen.next_page();
      } else {
        pen.y += kBlockGap;
      }
    }
    draw_part(pen, rows);
  }
  draw_notes(pen);
}

void PdfTable::draw_part(Pen& pen, TableRows& rows) {
  draw_caption(pen, rows.continues());
  draw_head(pen, rows.part());
  if (view_.layout.empty()) draw_nothing(pen, rows.part());
  while (rows.next())
    draw_line(pen, rows);
  draw_rule(pen, rows.part(), kThick);
}

/// A rule under what has been drawn of a part.
void PdfTable::draw_rule(Pen& pen, const Part& part, double thickness) const {
  const double width = page_.width(part);
  pen.rule(at(pen, 0, width), pen.y, width, thickness, Ink::Text);
}

// The caption.

Runs PdfTable::caption(bool continues) const {
  if (continues) return {{.text = continued(block_, document_), .bold = true}};
  Runs runs = {{.text = numbered(block_, document_) + "\n", .bold = true},
               {.text = view_.text(view_.table.title), .italic = true}};
  add_marks(runs, view_.marks(view_.layout.title_notes));
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

Runs PdfTable::label(const RowCell& cell) const {
  Runs runs;
  if (cell.label != nullptr) {
    const bool symbol = cell.head != nullptr && cell.label->symbol;
    runs.push_back({.text = view_.text(*cell.label), .italic = symbol});
  }
  add_marks(runs, cell.marks);
  return runs;
}

double PdfTable::tallest_head(const Pen& pen) {
  return (pen.bottom() - pen.top()) / 2 - 2 * kHeadPadding;
}

/// Takes the rows of the head from the walk. What a head that reaches down lacks falls to its last
/// row.
void PdfTable::measure_head(Pen& pen, TableRows& rows) {
  head_heights_.clear();
  const double most = tallest_head(pen) + 2 * kHeadPadding;
  while (head_heights_.size() < view_.head_rows() && rows.next()) {
    double height = kLine + 2 * kHeadPadding;
    for (const RowCell& cell : rows.cells()) {
      if (!cell.ends() || cell.label == nullptr) continue;
      const double text = pen.height(label(cell), kCellLook, inner_width(rows.part(), cell));
      const double above =
          std::accumulate(head_heights_.end() - cell.above, head_heights_.end(), 0.0);
      height = std::max(height, std::min(text + 2 * kHeadPadding, most) - above);
    }
    head_heights_.push_back(height);
  }
}

double PdfTable::head_height() const { return sum(head_heights_); }

void PdfTable::draw_head(Pen& pen, const Part& part) {
  draw_rule(pen, part, kThick);
  if (head_heights_.empty()) return;
  const double top = pen.y;
  TableRows rows(view_, part);
  for (size_t row = 0; row < head_heights_.size() && rows.next(); ++row) {
    for (const RowCell& cell : rows.cells()) {
      if (!cell.begins() || cell.label == nullptr) continue;
      const auto end = head_heights_.begin() + static_cast<std::ptrdiff_t>(row) + cell.below + 1;
      draw_over(pen, part, cell, std::accumulate(head_heights_.begin(), end, top));
    }
  }
  pen.y = top + head_height();
  draw_rule(pen, part, kThin);
}

/// A title or head, at the foot of its cell.
void PdfTable::draw_over(Pen& pen, const Part& part, const RowCell& cell, double foot) {
  const double offset = page_.width(part, 0, cell.column);
  const double inner = inner_width(part, cell);
  TextLook look = kCellLook;
  const bool centred = cell.role == RowCell::Role::ColumnHead && !cell.at_start;
  look.side = centred ? Side::Centre : Side::Start;
  const Runs runs =
      fitting(pen, label(cell), view_.text(*cell.label), tallest_head(pen), look, inner);
  const double height = pen.height(runs, look, inner);
  pen.text(runs, look, at(pen, offset + kCellPadding, inner), foot - kHeadPadding - height, inner);
  if (!cell.over_heads) return;
  const double length = inner + 2 * kCellPadding - 2 * kSpanGap;
  pen.rule(at(pen, offset + kSpanGap, length), foot, length, kHair, Ink::Hair);
}

// The body.

double PdfTable::row_head_height(Pen& pen, const Part& part, const RowCell& cell) const {
  if (cell.label == nullptr) return kRow;
  const double width = inner_width(part, cell);
  if (Pen::is_plain(cell.label->shown, kTableFont, width - kTableFont)) return kRow;
  const double height = pen.height(row_label(cell, width), kCellLook, width) + 2 * kRowPadding;
  // A head beside several lines has the room of all of them.
  return std::min(height - cell.below * kRow, kTallestRow);
}

/// The label beside lines; a name that is wider than its column is divided behind its joining
/// signs.
Runs PdfTable::row_label(const RowCell& cell, double width) const {
  Runs runs = label(cell);
  if (cell.label == nullptr || !Pen::is_ascii(runs[0].text)) return runs;
  const chart::Font font = {.size = kTableFont};
  const std::vector<std::string> lines =
      chart::fit_text(runs[0].text, font, width - 1, kMostLabelLines).lines;
  std::string joined;
  for (const std::string& line : lines)
    append(joined, joined.empty() ? "" : "\n", line);
  runs[0].text = std::move(joined);
  return runs;
}

double PdfTable::line_height(Pen& pen, const TableRows& rows) const {
  double height = kRow;
  for (const RowCell& cell : rows.cells()) {
    if (cell.head != nullptr && cell.begins()) {
      height = std::max(height, row_head_height(pen, rows.part(), cell));
    } else if (cell.cell != nullptr && cell.cell->kind == CellKind::Text) {
      height = std::max(height, content_height(pen, rows.part(), cell));
    }
  }
  return height;
}

double PdfTable::content_height(Pen& pen, const Part& part, const RowCell& cell) const {
  const Text& text = view_.table.texts[cell.cell->begin];
  const double width = inner_width(part, cell);
  if (Pen::is_plain(text.shown, kTableFont, width - kTableFont)) return kRow;
  const double lines = pen.height({{.text = view_.text(text)}}, kCellLook, width);
  return std::min(lines + 2 * kRowPadding, kTallestRow);
}

void PdfTable::draw_line(Pen& pen, const TableRows& rows) {
  const double height = line_height(pen, rows);
  const bool of_group = rows.cells().back().role == RowCell::Role::Group;
  // A group is not parted from its first line, nor the notes from the last one.
  double needed = height + (of_group ? kRow : 0);
  if (rows.is_last() && rows.ends_table()) needed += std::min(notes_height(pen), kKeptNotes);
  const bool turns = pen.y + needed > pen.bottom() && rows.line() > 0;
  if (turns) turn_page(pen, rows);
  pen.ink(Ink::Text);
  for (const RowCell& cell : rows.cells()) {
    if (cell.begins()) draw_cell(pen, rows.part(), cell);
  }
  pen.y += height;
}

/// Heads that go on on a further page stand there again.
void PdfTable::turn_page(Pen& pen, const TableRows& rows) {
  draw_rule(pen, rows.part(), kThin);
  pen.next_page();
  draw_caption(pen, true);
  draw_head(pen, rows.part());
  for (const RowCell& cell : rows.cells()) {
    if (!cell.begins()) draw_row_head(pen, rows.part(), cell);
  }
}

void PdfTable::draw_nothing(Pen& pen, const Part& part) {
  const Runs runs = {
      {.text = std::string(document_.word("No entries")), .italic = true, .quiet = true}};
  const double inner = page_.width(part) - 2 * kCellPadding;
  pen.text(runs, kCellLook, at(pen, kCellPadding, inner), pen.y + 2 * kRowPadding, inner);
  pen.y += kRow + 2 * kRowPadding;
}

void PdfTable::draw_cell(Pen& pen, const Part& part, const RowCell& cell) {
  if (cell.head != nullptr) return draw_row_head(pen, part, cell);
  if (cell.cell == nullptr) return;
  if (cell.cell->kind == CellKind::Number && !cell.at_start) {
    draw_number(pen, cell, page_.width(part, 0, cell.column));
  } else {
    draw_text_cell(pen, part, cell);
  }
}

void PdfTable::draw_row_head(Pen& pen, const Part& part, const RowCell& cell) {
  const double offset = page_.width(part, 0, cell.column) + kCellPadding +
                        kIndent * std::min(cell.head->indent, kDeepestIndent);
  const double width = inner_width(part, cell);
  const std::string whole = cell.label == nullptr ? std::string() : view_.text(*cell.label);
  draw_text(pen, row_label(cell, width), whole, at(pen, offset, width), width);
}

/// A text at the start of a cell of the line at the pen.
void PdfTable::draw_text(
    Pen& pen, const Runs& runs, const std::string& whole, double x, double width) {
  if (runs.empty()) return;
  const double top = pen.y + kRowPadding;
  const bool plain =
      runs.size() == 1 && !runs[0].italic && !runs[0].raised && !document_.right_to_left;
  if (plain && Pen::is_plain(runs[0].text, kTableFont, width - kTableFont)) {
    return pen.plain(runs[0].text, kTableFont, x, top + kBaseline);
  }
  constexpr double kMost = kTallestRow - 2 * kRowPadding;
  pen.text(fitting(pen, runs, whole, kMost, kCellLook, width), kCellLook, x, top, width);
}

/// The text with its end left out where it is higher than its place. Nothing of it is lost: all of
/// it stands among the notes.
Runs PdfTable::fitting(Pen& pen,
                       const Runs& runs,
                       const std::string& whole,
                       double most,
                       const TextLook& look,
                       double width) {
  double height = pen.height(runs, look, width);
  if (height <= most || runs.empty()) return runs;
  if (std::ranges::find(long_texts_, whole) == long_texts_.end()) long_texts_.push_back(whole);
  Runs fitted = runs;
  std::string& text = fitted[0].text;
  for (; height > most && text.size() > 8; height = pen.height(fitted, look, width)) {
    const auto bytes = static_cast<size_t>(static_cast<double>(text.size()) * 0.9 * most / height);
    text = std::string(utf8::first_bytes(text, std::min(bytes, text.size() - 4))) + "\u2026";
  }
  return fitted;
}

void PdfTable::draw_text_cell(Pen& pen, const Part& part, const RowCell& content) {
  const AlignedCell& cell = *content.cell;
  Runs runs;
  if (cell.kind == CellKind::Text) {
    runs.push_back({.text = view_.text(view_.table.texts[cell.begin])});
  } else if (cell.kind == CellKind::Number) {
    runs.push_back({.text = std::string(view_.cells.number(cell))});
  }
  add_marks(runs, content.marks);
  const double inner = inner_width(part, content);
  const double offset = page_.width(part, 0, content.column) + kCellPadding;
  const std::string whole = runs.empty() ? std::string() : runs[0].text;
  draw_text(pen, runs, whole, at(pen, offset, inner), inner);
}

/// The numbers of a column have their decimal marks in line, and are centred together; marks of
/// notes stand behind.
void PdfTable::draw_number(Pen& pen, const RowCell& content, double offset) {
  const uint32_t column = content.placed->column;
  const std::string_view number = view_.cells.number(*content.cell);
  const DecimalWidths& widest = page_.decimals[column];
  const DecimalWidths own = decimal_widths(number, *content.cell);
  const double width = page_.columns[column];
  const double mark = at(pen, offset, width) + (width + widest.whole - widest.rest) / 2;
  const double baseline = pen.y + kRowPadding + kBaseline;
  pen.plain(number, kTableFont, mark - own.whole, baseline);
  pen.plain(mark_letters(content.marks), kMarkFont, mark + own.rest + 0.5,
            baseline - 0.33 * kTableFont);
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
  for (const std::string& text : long_texts_) {
    pen.y += kRowPadding;
    pen.flow({{.text = one_line(text)}}, kNoteLook, pen.left(), pen.width());
  }
}

}  // namespace hierfit::report::pdf
