#include "report/layout/page_table.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "report/chart/metrics.h"
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

/// Row heads of very many lines are measured up to here; the rest are broken to fit.
constexpr size_t kMostMeasured = 20000;

/// The least that a column can do with, and what it would have.
struct Need {
  double least = kNarrowest;
  double wanted = kNarrowest;

  void cover(double least_width, double wanted_width) {
    least = std::max(least, least_width);
    wanted = std::max({wanted, wanted_width, least});
  }
};

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

class Planner {
 public:
  explicit Planner(const TableView& view)
      : view_(view),
        grid_(head_grid(view.layout)),
        stubs_(view.stubs()),
        columns_(view.layout.columns) {}

  PageTable plan() {
    page_.decimals.resize(columns_.size());
    measure_stubs();
    measure_cells();
    measure_heads();
    const double least = total(&Need::least, 0, columns_.size());
    page_.landscape = least > kPortraitWidth;
    divide(page_.landscape ? kLandscapeWidth : kPortraitWidth);
    return std::move(page_);
  }

 private:
  void cover(Need& need, const Text& text, const Caps& caps, double besides = 0) const {
    const double around = 2 * kCellPadding + besides;
    const double line = chart::fit_text(text.shown, kFont, caps.line, 100).width(kFont);
    const double word = std::min(widest_word(text.shown), caps.word);
    need.cover(word + around + 0.5, line + around + kAir);
  }

  void measure_stubs() {
    for (uint32_t stub = 0; stub < view_.stubs(); ++stub) {
      if (const Text* title = view_.stub_title(stub)) cover(stubs_[stub], *title, kLabel);
    }
    size_t measured = 0;
    for (const Head& head : view_.layout.row_heads) {
      const Text* label = view_.label_of(head);
      if (label == nullptr || head.kind == HeadKind::Group) continue;
      if (++measured > kMostMeasured) break;
      const double marks =
          kMarkFont / 2 * static_cast<double>(mark_letters(view_.marks(head)).size());
      cover(stubs_[head.level], *label, kLabel, kIndent * head.indent + marks);
    }
  }

  void measure_cells() {
    const TableLayout& layout = view_.layout;
    for (size_t i = 0; i < layout.placed.size(); ++i) {
      const AlignedCell& cell = view_.cells.cells[i];
      const uint32_t column = layout.placed[i].column;
      if (cell.kind == CellKind::Text) {
        cover(columns_[column], view_.table.texts[cell.begin], kCell);
      } else if (cell.kind == CellKind::Number) {
        const DecimalWidths widths = decimal_widths(view_.cells.number(cell), cell);
        DecimalWidths& widest = page_.decimals[column];
        widest.whole = std::max(widest.whole, widths.whole);
        widest.rest = std::max(widest.rest, widths.rest);
      }
    }
    const double asked = std::min<double>(view_.table.min_data_column_width, kWidestColumn);
    for (size_t column = 0; column < columns_.size(); ++column) {
      const DecimalWidths& widest = page_.decimals[column];
      const double width = widest.whole + widest.rest + 2 * kCellPadding + 1;
      columns_[column].cover(width, std::max(width + kAir, asked));
    }
  }

  void measure_heads() {
    for (const Head& head : view_.layout.column_heads) {
      const Text* label = view_.label_of(head);
      if (label != nullptr && head.span == 1) cover(columns_[head.first], *label, kHead);
    }
    for (const Head& head : view_.layout.column_heads) {
      const Text* label = view_.label_of(head);
      if (label == nullptr || head.span == 1) continue;
      Need need;
      cover(need, *label, kSpan);
      share(head, &Need::least, need.least);
      share(head, &Need::wanted, need.wanted);
    }
    for (Need& need : columns_)
      need.wanted = std::max(need.wanted, need.least);
  }

  /// Columns under a common head share what it lacks.
  void share(const Head& head, double Need::*part, double width) {
    const auto begin = columns_.begin() + head.first;
    const auto end = begin + head.span;
    double has = 0;
    for (auto column = begin; column != end && has < width; ++column)
      has += (*column).*part;
    if (has >= width) return;
    for (auto column = begin; column != end; ++column)
      (*column).*part += (width - has) / head.span;
  }

  double total(double Need::*part, size_t first, size_t end) const {
    double width = 0;
    for (const Need& need : stubs_)
      width += need.*part;
    for (size_t column = first; column < end; ++column)
      width += columns_[column].*part;
    return width;
  }

  // Dividing the columns over the room.

  void divide(double room) {
    if (total(&Need::least, 0, columns_.size()) > room) fix_stubs(room);
    page_.columns.resize(columns_.size());
    const auto all = static_cast<uint32_t>(columns_.size());
    Part part;
    do {
      part = {part.end, part_end(part.end, room)};
      spread(part, room);
      page_.parts.push_back(part);
    } while (part.end < all);
  }

  /// The row heads of a table that is divided are as wide at each part, and leave room.
  void fix_stubs(double room) {
    const double most =
        room * kMostOfRoom / static_cast<double>(std::max<size_t>(stubs_.size(), 1));
    for (Need& need : stubs_)
      need.least = need.wanted = std::min(need.wanted, most);
  }

  uint32_t part_end(uint32_t first, double room) const {
    const auto all = static_cast<uint32_t>(columns_.size());
    double width = total(&Need::least, 0, 0);
    uint32_t end = first;
    while (end < all && width + columns_[end].least <= room)
      width += columns_[end++].least;
    if (end == all) return all;
    end = std::max(end, first + 1);
    if (grid_.empty()) return end;
    // A group that begins on this part and does not end on it moves to the next.
    const auto heads = heads_between(grid_[0], first, end + 1);
    const uint32_t last = heads.empty() ? first : heads.back()->first;
    return last > first ? std::min(last, end) : end;
  }

  /// Gives each column its least and as much of what it would have as there is room for.
  void spread(const Part& part, double room) {
    const double least = total(&Need::least, part.first, part.end);
    const double wanted = total(&Need::wanted, part.first, part.end);
    const double scale =
        wanted <= least ? 0 : std::clamp((room - least) / (wanted - least), 0.0, 1.0);
    const auto width = [&](const Need& need) {
      return need.least + scale * (need.wanted - need.least);
    };
    if (part.first == 0) std::ranges::transform(stubs_, std::back_inserter(page_.stubs), width);
    for (uint32_t column = part.first; column < part.end; ++column)
      page_.columns[column] = width(columns_[column]);
  }

  const TableView& view_;
  std::vector<std::vector<const Head*>> grid_;
  std::vector<Need> stubs_;
  std::vector<Need> columns_;
  PageTable page_;
};

}  // namespace

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

PageTable plan_table(const TableView& view) { return Planner(view).plan(); }

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

std::vector<std::vector<const Head*>> head_grid(const TableLayout& layout) {
  std::vector<std::vector<const Head*>> grid(layout.head_rows);
  for (const Head& head : layout.column_heads) {
    for (uint32_t level = head.level; level < head.level + head.depth; ++level)
      grid[level].push_back(&head);
  }
  for (std::vector<const Head*>& row : grid)
    std::ranges::sort(row, {}, [](const Head* head) { return head->first; });
  return grid;
}

std::span<const Head* const> heads_between(const std::vector<const Head*>& row,
                                           uint32_t first,
                                           uint32_t end) {
  const auto last_column = [](const Head* head) { return head->first + head->span - 1; };
  const auto from = std::ranges::lower_bound(row, first, {}, last_column);
  const auto to =
      std::ranges::lower_bound(row, end, {}, [](const Head* head) { return head->first; });
  return {from, std::max(from, to)};
}

std::span<const PlacedCell> cells_between(std::span<const PlacedCell> row,
                                          uint32_t first,
                                          uint32_t end) {
  const auto from = std::ranges::lower_bound(row, first, {}, &PlacedCell::column);
  const auto to = std::ranges::lower_bound(from, row.end(), end, {}, &PlacedCell::column);
  return {from, to};
}

std::vector<PageEntry> plan_pages(const output::Document& document) {
  std::vector<PageEntry> pages;
  bool before = false;
  size_t headings = 0;
  for (Entry& entry : outline(document)) {
    PageEntry page{entry, before};
    if (const auto* table = entry.as<output::Table>()) {
      page.landscape = plan_table(TableView(document, *table)).landscape;
    } else if (entry.as<output::Chart>() != nullptr) {
      page.landscape = false;
    }
    pages.push_back(page);
    if (entry.as<output::Section>() != nullptr) {
      ++headings;
      continue;
    }
    for (; headings > 0; --headings)
      pages[pages.size() - 1 - headings].landscape = page.landscape;
    before = page.landscape;
  }
  return pages;
}

}  // namespace hierfit::report
