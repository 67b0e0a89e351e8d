#include "report/typeset/paper.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "report/chart/metrics.h"
#include "report/typeset/columns.h"
#include "report/wording.h"

namespace hierfit::report {

using output::Text;

namespace {

constexpr chart::Font kFont = {.size = kTableFont};
constexpr double kPortraitWidth = kPaperWidth - 2 * kSideMargin;
constexpr double kLandscapeWidth = kPaperHeight - 2 * kSideMargin;

/// The most that a text asks for: in one line, and as a word that is not broken.
struct Caps {
  double line;
  double word;
};
constexpr Caps kLabel = {190, 110};
constexpr Caps kHead = {100, 84};
constexpr Caps kSpan = {200, 110};
constexpr Caps kCell = {240, 90};
/// What a column has around its text where there is room.
constexpr double kAir = 8;
constexpr double kNarrowest = 14;
constexpr double kWidestColumn = 300;
/// How much of the room row heads take beside the parts of a divided table.
constexpr double kMostOfRoom = 0.4;

/// Of the words between blanks: they are divided only where they are wider than a column may be.
double widest_word(std::string_view text) {
  double widest = 0;
  for (size_t begin = 0; begin < text.size();) {
    const size_t end = std::min(text.find_first_of(" \n", begin), text.size());
    widest = std::max(widest, chart::text_width(text.substr(begin, end - begin), kFont));
    begin = end + 1;
  }
  return widest;
}

double mark_width(const TableView& view, const Head& head) {
  return kMarkFont / 2 * static_cast<double>(mark_letters(view.marks(head)).size());
}

/// Points.
class PaperRuler : public Ruler {
 public:
  PaperRuler(const TableView& view, const std::vector<DecimalWidths>& decimals)
      : view_(view), decimals_(decimals) {}

  Need narrowest() const override { return {kNarrowest, kNarrowest}; }
  Need stub_title(const Text& title) const override { return need(&title, kLabel); }
  Need row_head(const Head& head) const override {
    return need(view_.label_of(head), kLabel, kIndent * head.indent + mark_width(view_, head));
  }
  Need column_head(const Head& head) const override {
    return need(view_.label_of(head), head.span == 1 ? kHead : kSpan);
  }
  Need text_cell(const PlacedCell&, const Text& text) const override { return need(&text, kCell); }
  Need numbers(uint32_t column) const override {
    const DecimalWidths& widest = decimals_[column];
    const double asked = std::min<double>(view_.table.min_data_column_width, kWidestColumn);
    const double width = widest.whole + widest.rest + 2 * kCellPadding + 1;
    return {width, std::max(width + kAir, asked)};
  }

 private:
  static Need need(const Text* text, const Caps& caps, double besides = 0) {
    if (text == nullptr) return {};
    const double around = 2 * kCellPadding + besides;
    const double line = chart::fit_text(text->shown, kFont, caps.line, 100).width(kFont);
    const double word = std::min(widest_word(text->shown), caps.word);
    return {word + around + 0.5, line + around + kAir};
  }

  const TableView& view_;
  const std::vector<DecimalWidths>& decimals_;
};

std::vector<DecimalWidths> widest_decimals(const TableView& view) {
  std::vector<DecimalWidths> decimals(view.layout.columns);
  for (size_t i = 0; i < view.layout.placed.size(); ++i) {
    const AlignedCell& cell = view.cells.cells[i];
    if (cell.kind != CellKind::Number) continue;
    const DecimalWidths widths = decimal_widths(view.cells.number(cell), cell);
    DecimalWidths& widest = decimals[view.layout.placed[i].column];
    widest.whole = std::max(widest.whole, widths.whole);
    widest.rest = std::max(widest.rest, widths.rest);
  }
  return decimals;
}

/// The row heads of a table that is divided are as wide at each part, and leave room.
void fix_stubs(std::vector<Need>& stubs, double room) {
  const double most = room * kMostOfRoom / static_cast<double>(std::max<size_t>(stubs.size(), 1));
  for (Need& need : stubs)
    need.least = need.wanted = std::min(need.wanted, most);
}

/// Gives each column of a part its least and as much of what it would have as there is room for.
/// The stubs are as wide as in the first part.
void spread(PageTable& page, const Needs& needs, const Part& part, double room) {
  const auto [least, wanted] = needs.of(part);
  const double scale =
      wanted <= least ? 0 : std::clamp((room - least) / (wanted - least), 0.0, 1.0);
  const auto width = [&](const Need& need) {
    return need.least + scale * (need.wanted - need.least);
  };
  if (part.first == 0) std::ranges::transform(needs.stubs, std::back_inserter(page.stubs), width);
  for (uint32_t column = part.first; column < part.end; ++column)
    page.columns.push_back(width(needs.columns[column]));
}

}  // namespace

PageTable plan_table(const TableView& view) {
  PageTable page;
  page.decimals = widest_decimals(view);
  Needs needs = measure(view, PaperRuler(view, page.decimals));
  const double least = needs.of({0, view.layout.columns}).least;
  page.landscape = least > kPortraitWidth;
  const double room = page.landscape ? kLandscapeWidth : kPortraitWidth;
  if (least > room) fix_stubs(needs.stubs, room);
  page.parts = divide(view, needs, room);
  for (const Part& part : page.parts)
    spread(page, needs, part, room);
  return page;
}

double PageTable::column_width(const Part& part) const {
  if (columns.empty()) return kNoColumns;
  return std::accumulate(columns.begin() + part.first, columns.begin() + part.end, 0.0);
}

double PageTable::width(const Part& part) const {
  return std::accumulate(stubs.begin(), stubs.end(), column_width(part));
}

double PageTable::width(const Part& part, uint32_t column, uint32_t count) const {
  double sum = 0;
  for (; count > 0; --count, ++column) {
    if (column < stubs.size()) {
      sum += stubs[column];
    } else {
      sum += columns.empty() ? kNoColumns : columns[part.first + column - stubs.size()];
    }
  }
  return sum;
}

DecimalWidths decimal_widths(std::string_view number, const AlignedCell& cell) {
  size_t bytes = 0;
  for (uint8_t character = 0; character < cell.whole; ++character) {
    do {
      ++bytes;
    } while (bytes < number.size() && (number[bytes] & '\xC0') == '\x80');
  }
  return {chart::text_width(number.substr(0, bytes), kFont),
          chart::text_width(number.substr(bytes), kFont)};
}

std::vector<PaperBlock> paper_blocks(const output::Document& document) {
  std::vector<PaperBlock> blocks;
  bool before = false;
  for (const Block& block : blocks_of(document)) {
    PaperBlock& paper = blocks.emplace_back(PaperBlock{block});
    if (block.is_section()) continue;
    if (const auto* table = block.as<output::Table>()) {
      paper.table = std::make_unique<const PaperTable>(document, *table);
      paper.landscape = paper.table->page.landscape;
    } else {
      paper.landscape = before && !block.is_listed();
    }
    before = paper.landscape;
  }
  bool behind = false;
  for (auto paper = blocks.rbegin(); paper != blocks.rend(); ++paper) {
    if (paper->block.is_section()) paper->landscape = behind;
    behind = paper->landscape;
  }
  return blocks;
}

}  // namespace hierfit::report
