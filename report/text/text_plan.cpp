#include "report/text/text_plan.h"

#include <algorithm>
#include <numeric>

#include "report/text/display_text.h"
#include "report/typeset/columns.h"
#include "report/wording.h"

namespace hierfit::report::text {

using output::Text;

namespace {

constexpr size_t kWidestHead = 14;     // a head wraps from here on, unless its numbers are wider
constexpr size_t kWidestSpanner = 26;  // the same for a head over several columns
constexpr size_t kWidestWord = 24;     // a longer word is broken
constexpr size_t kWidestTextCell = 48;

/// How close what stands in a table is.
struct Density {
  bool tight_heads = false;     ///< heads of one column wrap wherever they may
  bool tight_spanners = false;  ///< heads over several columns do
  size_t gap = 2;               ///< blanks between columns
  bool wraps_stubs = false;     ///< row labels wrap; their columns take the room that is left
};

/// From loose to tight. A head that wraps costs a line once, a row label one for each row.
constexpr Density kDensities[] = {
    {},
    {.tight_heads = true},
    {.tight_heads = true, .tight_spanners = true},
    {.tight_heads = true, .tight_spanners = true, .gap = 1},
    {.tight_heads = true, .tight_spanners = true, .wraps_stubs = true},
    {.tight_heads = true, .tight_spanners = true, .gap = 1, .wraps_stubs = true},
};
constexpr Density kDividedDensities[] = {
    {.wraps_stubs = true},
    {.tight_heads = true, .wraps_stubs = true},
    {.tight_heads = true, .tight_spanners = true, .wraps_stubs = true},
};

std::vector<NumberWidths> number_widths(const TableView& view) {
  std::vector<NumberWidths> columns(view.layout.columns);
  for (size_t i = 0; i < view.layout.placed.size(); ++i) {
    const AlignedCell& cell = view.cells.cells[i];
    if (cell.kind == CellKind::Text) continue;
    NumberWidths& widths = columns[view.layout.placed[i].column];
    const size_t whole = cell.kind == CellKind::Missing ? 1 : cell.whole;
    const size_t marks = display_width(raised_letters(view.marks(view.layout.placed[i])));
    widths.whole = std::max(widths.whole, whole);
    widths.right = std::max(widths.right, size_t{cell.fraction} + cell.tail);
    widths.marks = std::max(widths.marks, marks);
  }
  return columns;
}

/// Columns of the terminal. Texts in cells can do with less than they would have; heads have what
/// the density leaves them. Heads are measured with the gap behind them.
class TextRuler : public Ruler {
 public:
  TextRuler(const TableView& view, const std::vector<NumberWidths>& numbers, const Density& density)
      : view_(view), numbers_(numbers), density_(density) {}

  Need narrowest() const override { return need(1); }
  Need row_head(const Head& head) const override {
    return need(longest_line(shown_label(view_, head)) + kIndent * head.indent);
  }
  Need text_cell(const PlacedCell& placed, const Text& text) const override {
    const size_t marks = display_width(raised_letters(view_.marks(placed)));
    return {0, static_cast<double>(longest_line(view_.text(text)) + marks)};
  }
  Need numbers(uint32_t column) const override { return need(numbers_[column].all()); }

  Need stub_title(const Text& title) const override {
    const std::string text = view_.text(title);
    const size_t width =
        density_.tight_heads ? std::min(longest_word(text), kWidestWord) : longest_line(text);
    return need(width + density_.gap);
  }
  Need column_head(const Head& head) const override {
    const std::string label = shown_label(view_, head);
    const bool spans = head.span > 1;
    const bool tight = spans ? density_.tight_spanners : density_.tight_heads;
    const size_t most = spans ? kWidestSpanner : kWidestHead;
    const size_t word = std::min(tight ? longest_piece(label) : longest_word(label), kWidestWord);
    const size_t line = std::min(longest_line(label), most);
    return need((tight ? word : std::max(word, line)) + density_.gap);
  }

  size_t most_row_heads() const override { return kUnlimited; }
  bool in_whole_units() const override { return true; }

 private:
  static Need need(size_t width) {
    return {static_cast<double>(width), static_cast<double>(width)};
  }

  const TableView& view_;
  const std::vector<NumberWidths>& numbers_;
  Density density_;
};

class TextPlanner {
 public:
  TextPlanner(const TableView& view, size_t limit) : view_(view), limit_(limit) {}

  TextPlan plan() {
    plan_.numbers = number_widths(view_);
    measure_body();
    for (const Density& density : kDensities) {
      if (!fits_at(density)) continue;
      plan_.parts = {{0, view_.layout.columns}};
      return std::move(plan_);
    }
    const Density* best = nullptr;
    size_t fewest = kUnlimited;
    for (const Density& density : kDividedDensities) {
      fits_at(density);
      const size_t count = parts().size();
      if (count < fewest) best = &density;
      fewest = std::min(fewest, count);
    }
    fits_at(*best);
    plan_.parts = parts();
    widen_stubs();
    return std::move(plan_);
  }

 private:
  void measure_body() {
    const Needs body = body_needs(view_, TextRuler(view_, plan_.numbers, {}));
    for (const Need& stub : body.stubs)
      labels_.push_back(static_cast<size_t>(stub.least));
    const auto most = static_cast<double>(text_limit());
    for (const Need& column : body.columns)
      cells_.push_back(static_cast<size_t>(std::max(column.least, std::min(column.wanted, most))));
  }

  /// What a text cell may take at most: what the narrowest stubs leave.
  size_t text_limit() const {
    if (limit_ == kUnlimited) return kUnlimited;
    const size_t labels = std::accumulate(labels_.begin(), labels_.end(), size_t{0});
    const size_t stubs = std::min(labels, stub_floor()) + Density().gap * labels_.size();
    const size_t rest = limit_ > stubs ? limit_ - stubs : 0;
    return std::max(kNarrowestStub, std::min(rest, kWidestTextCell));
  }

  /// Two fifths of the width are for the stub columns, whatever the others need.
  size_t stub_floor() const { return std::max(kNarrowestStub * labels_.size(), limit_ * 2 / 5); }

  /// Sets all widths. Whether the columns then stand beside one another within the limit.
  bool fits_at(const Density& density) {
    plan_.gap = density.gap;
    Needs needs = {padded(labels_), padded(cells_)};
    cover_heads(view_, TextRuler(view_, plan_.numbers, density), needs);
    plan_.columns = unpadded(needs.columns);
    plan_.stubs = whole_stubs_ = unpadded(needs.stubs);
    const size_t gaps = plan_.gap * plan_.stubs.size();
    const size_t columns = width_of({0, view_.layout.columns});
    if (density.wraps_stubs) {
      const size_t room = limit_ > columns + gaps ? limit_ - columns - gaps : 0;
      shrink_stubs(std::max(room, stub_floor()));
    }
    if (stub_width() + columns > limit_) return false;
    spend(limit_ - stub_width() - columns);
    return true;
  }

  std::vector<Need> padded(const std::vector<size_t>& widths) const {
    std::vector<Need> needs;
    for (const size_t width : widths) {
      const auto all = static_cast<double>(width + plan_.gap);
      needs.push_back({all, all});
    }
    return needs;
  }

  std::vector<size_t> unpadded(const std::vector<Need>& needs) const {
    std::vector<size_t> widths;
    widths.reserve(needs.size());
    for (const Need& need : needs)
      widths.push_back(static_cast<size_t>(need.least) - plan_.gap);
    return widths;
  }

  std::vector<Part> parts() const {
    return divide(view_, {padded(plan_.stubs), padded(plan_.columns)},
                  static_cast<double>(limit_ + plan_.gap));
  }

  /// Of all stubs, with the gaps behind them.
  size_t stub_width() const {
    return std::accumulate(plan_.stubs.begin(), plan_.stubs.end(), plan_.gap * plan_.stubs.size());
  }

  size_t width_of(const Part& part) const {
    size_t width = 0;
    for (uint32_t column = part.first; column < part.end; ++column)
      width += plan_.columns[column] + (column > part.first ? plan_.gap : 0);
    return width;
  }

  /// Makes the widest stubs narrower until all of them together are as wide as allowed.
  void shrink_stubs(size_t allowed) {
    std::vector<size_t> sorted = plan_.stubs;
    std::ranges::sort(sorted);
    size_t left = allowed;
    for (size_t i = 0; i < sorted.size(); ++i) {
      const size_t share = left / (sorted.size() - i);
      if (sorted[i] > share) {
        for (size_t& width : plan_.stubs)
          width = std::min(width, share);
        return;
      }
      left -= sorted[i];
    }
  }

  /// Gives what a table lacks of the limit to the titles of its stubs and to its spanners.
  void spend(size_t spare) {
    for (size_t stub = 0; stub < plan_.stubs.size(); ++stub) {
      const Text* text = view_.stub_title(stub);
      if (text == nullptr) continue;
      const size_t title = std::min(longest_line(view_.text(*text)), kWidestHead);
      const size_t more = title > plan_.stubs[stub] ? title - plan_.stubs[stub] : 0;
      if (more > spare) continue;
      plan_.stubs[stub] += more;
      spare -= more;
    }
    struct Wish {
      const Head* head;
      size_t more;
    };
    std::vector<Wish> wishes;
    for (const Head& head : view_.layout.column_heads) {
      if (head.span == 1) continue;
      const size_t wanted = std::min(longest_line(shown_label(view_, head)), kWidestSpanner);
      const size_t room = width_of({head.first, head.first + head.span});
      if (wanted > room) wishes.push_back({&head, wanted - room});
    }
    std::ranges::stable_sort(wishes, std::ranges::greater{}, &Wish::more);
    for (const Wish& wish : wishes) {
      const size_t more = std::min(wish.more, spare);
      for (size_t i = 0; i < more; ++i)
        ++plan_.columns[wish.head->first + i % wish.head->span];
      spare -= more;
    }
  }

  /// Gives the labels the room that the widest part leaves.
  void widen_stubs() {
    const size_t gaps = plan_.gap * plan_.stubs.size();
    size_t widest = gaps;
    for (const Part& part : plan_.parts)
      widest = std::max(widest, gaps + width_of(part));
    plan_.stubs = whole_stubs_;
    shrink_stubs(std::max(stub_floor(), limit_ > widest ? limit_ - widest : 0));
  }

  const TableView& view_;
  size_t limit_;
  TextPlan plan_;
  std::vector<size_t> labels_;       // by stub: the labels unwrapped
  std::vector<size_t> cells_;        // by column
  std::vector<size_t> whole_stubs_;  // before they were made narrower
};

}  // namespace

TextPlan plan_text(const TableView& view, size_t limit) { return TextPlanner(view, limit).plan(); }

std::string shown_label(const TableView& view, const Head& head) {
  const Text* label = view.label_of(head);
  return (label == nullptr ? "" : view.text(*label)) + raised_letters(view.marks(head));
}

}  // namespace hierfit::report::text
