// Where everything of a table stands.
#include "report/layout/table_layout.h"

#include <algorithm>
#include <numeric>
#include <string_view>
#include <unordered_map>

namespace hierfit::report {

using output::Dimension;
using output::kNone;
using output::Table;

namespace {

/// The nodes from the top of a dimension's tree down to a category; empty for no category.
void find_chain(const Dimension& dimension, uint32_t leaf, std::vector<uint32_t>& chain) {
  chain.clear();
  if (leaf == kNone) return;
  for (uint32_t node = dimension.leaves[leaf]; node != kNone; node = dimension.nodes[node].parent) {
    chain.push_back(node);
  }
  std::ranges::reverse(chain);
}

/// The chains of one position and of the one before it, by dimension of the axis.
struct Chains {
  std::vector<std::vector<uint32_t>> now;
  std::vector<std::vector<uint32_t>> before;

  explicit Chains(size_t dimensions) : now(dimensions), before(dimensions) {}

  void move_to(const Table& table, const Axis& axis, uint32_t position) {
    now.swap(before);
    for (size_t d = 0; d < axis.dimensions.size(); ++d) {
      find_chain(table.dimensions[axis.dimensions[d]], axis.at(position)[d], now[d]);
    }
  }
  /// Whether the chain of the position before runs through the same node at that depth.
  bool same(size_t d, size_t depth) const {
    return depth < before[d].size() && before[d][depth] == now[d][depth];
  }
};

HeadKind kind_of(const Dimension& dimension, uint32_t node) {
  return dimension.nodes[node].is_group() ? HeadKind::Group : HeadKind::Category;
}

/// Builds the heads over the columns.
class ColumnHeads {
 public:
  ColumnHeads(const Table& table, const Axis& axis, TableLayout& layout)
      : table_(table), axis_(axis), layout_(layout), chains_(axis.dimensions.size()) {}

  void build() {
    measure();
    open_.assign(layout_.head_rows, 0);
    for (uint32_t column = 0; column < axis_.size; ++column)
      add_column(column);
    std::ranges::stable_sort(layout_.column_heads, {}, &Head::level);
  }

 private:
  /// The head rows of one dimension.
  struct Band {
    bool shown = false;
    bool titled = false;
    uint32_t depth = 0;
  };

  void measure() {
    for (size_t d = 0; d < axis_.dimensions.size(); ++d) {
      const Dimension& dimension = table_.dimensions[axis_.dimensions[d]];
      Band band{.shown = dimension.labels_shown && axis_.size > 0};
      band.titled = band.shown && dimension.title_shown && !dimension.title.shown.empty();
      if (band.shown) band.depth = depth_of(dimension, d);
      layout_.head_rows += band.depth + (band.titled ? 1 : 0);
      bands_.push_back(band);
    }
  }

  uint32_t depth_of(const Dimension& dimension, size_t d) const {
    size_t depth = 1;
    std::vector<uint32_t> chain;
    for (uint32_t column = 0; column < axis_.size; ++column) {
      find_chain(dimension, axis_.at(column)[d], chain);
      depth = std::max(depth, chain.size());
    }
    return static_cast<uint32_t>(depth);
  }

  void add_column(uint32_t column) {
    chains_.move_to(table_, axis_, column);
    bool fresh = column == 0;
    uint32_t level = 0;
    for (size_t d = 0; d < bands_.size(); ++d) {
      if (bands_[d].titled) {
        put(fresh, {.kind = HeadKind::Title, .level = level++, .first = column}, d);
      }
      if (bands_[d].shown) add_labels(d, level, column, fresh);
      fresh = fresh || axis_.at(column)[d] != axis_.at(column - 1)[d];
      level += bands_[d].depth;
    }
  }

  void add_labels(size_t d, uint32_t level, uint32_t column, bool fresh) {
    const std::vector<uint32_t>& chain = chains_.now[d];
    const uint32_t below = level + bands_[d].depth;
    if (chain.empty()) {
      fresh = fresh || !chains_.before[d].empty();
      put(fresh, {.level = level, .depth = below - level, .first = column}, d);
    }
    for (size_t i = 0; i < chain.size(); ++i, ++level) {
      fresh = fresh || !chains_.same(d, i);
      const HeadKind kind = kind_of(table_.dimensions[axis_.dimensions[d]], chain[i]);
      const uint32_t depth = i + 1 == chain.size() ? below - level : 1;
      put(fresh, {.kind = kind, .node = chain[i], .level = level, .depth = depth, .first = column},
          d);
    }
  }

  void put(bool fresh, Head head, size_t d) {
    if (!fresh) {
      ++layout_.column_heads[open_[head.level]].span;
      return;
    }
    head.dimension = axis_.dimensions[d];
    open_[head.level] = static_cast<uint32_t>(layout_.column_heads.size());
    layout_.column_heads.push_back(head);
  }

  const Table& table_;
  const Axis& axis_;
  TableLayout& layout_;
  Chains chains_;
  std::vector<Band> bands_;     // by dimension of the axis
  std::vector<uint32_t> open_;  // by head row: the head that the last column stands under
};

/// Builds the body lines and the heads at their side.
class RowHeads {
 public:
  RowHeads(const Table& table, const Axis& axis, TableLayout& layout)
      : table_(table), axis_(axis), layout_(layout), chains_(axis.dimensions.size()) {}

  void build() {
    for (uint32_t dimension : axis_.dimensions) {
      if (table_.dimensions[dimension].labels_shown) layout_.stubs.push_back(dimension);
    }
    open_.assign(layout_.stubs.size(), kNone);
    for (uint32_t row = 0; row < axis_.size; ++row)
      add_row(row);
    close_from(0);
  }

 private:
  uint32_t line() const { return static_cast<uint32_t>(layout_.lines.size()); }

  void add_row(uint32_t row) {
    chains_.move_to(table_, axis_, row);
    bool fresh = row == 0;
    uint32_t stub = 0;
    for (size_t d = 0; d < axis_.dimensions.size(); ++d) {
      const bool moved = row == 0 || axis_.at(row)[d] != axis_.at(row - 1)[d];
      if (stub < layout_.stubs.size() && layout_.stubs[stub] == axis_.dimensions[d]) {
        if (fresh || moved) add_heads(d, stub, fresh);
        ++stub;
      }
      fresh = fresh || moved;
    }
    layout_.lines.push_back(row);
  }

  void add_heads(size_t d, uint32_t stub, bool fresh) {
    const Dimension& dimension = table_.dimensions[axis_.dimensions[d]];
    const std::vector<uint32_t>& chain = chains_.now[d];
    close_from(stub);
    for (size_t i = 0; i < chain.size(); ++i) {
      fresh = fresh || !chains_.same(d, i);
      if (!fresh) continue;
      put({.kind = kind_of(dimension, chain[i]),
           .dimension = axis_.dimensions[d],
           .node = chain[i],
           .level = stub,
           .first = line(),
           .indent = static_cast<uint32_t>(i)});
      if (dimension.nodes[chain[i]].is_group()) layout_.lines.push_back(kNone);
    }
    if (chain.empty()) put({.dimension = axis_.dimensions[d], .level = stub, .first = line()});
  }

  void put(const Head& head) {
    if (head.kind != HeadKind::Group) {
      open_[head.level] = static_cast<uint32_t>(layout_.row_heads.size());
    }
    layout_.row_heads.push_back(head);
  }

  /// Ends the heads of a stub column and of those inside it at the line before the next.
  void close_from(size_t stub) {
    for (; stub < open_.size(); ++stub) {
      if (open_[stub] == kNone) continue;
      Head& head = layout_.row_heads[open_[stub]];
      head.span = line() - head.first;
      open_[stub] = kNone;
    }
  }

  const Table& table_;
  const Axis& axis_;
  TableLayout& layout_;
  Chains chains_;
  std::vector<uint32_t> open_;  // by stub column: the head that the last line stands beside
};

/// The cells in the order of `keys`, stable: a counting sort.
std::vector<uint32_t> sorted_by(const std::vector<uint32_t>& keys,
                                uint32_t key_count,
                                const std::vector<uint32_t>& cells) {
  std::vector<uint32_t> next(size_t{key_count} + 1, 0);
  for (uint32_t cell : cells)
    ++next[keys[cell] + 1];
  std::partial_sum(next.begin(), next.end(), next.begin());
  std::vector<uint32_t> sorted(cells.size());
  for (uint32_t cell : cells)
    sorted[next[keys[cell]]++] = cell;
  return sorted;
}

void place_cells(const Axis& rows, const Axis& columns, TableLayout& layout) {
  std::vector<uint32_t> cells(rows.of_cell.size());
  std::iota(cells.begin(), cells.end(), 0U);
  cells = sorted_by(columns.of_cell, columns.size, cells);
  cells = sorted_by(rows.of_cell, rows.size, cells);

  layout.row_begin.assign(size_t{rows.size} + 1, 0);
  layout.placed.reserve(cells.size());
  uint32_t row_before = kNone;
  for (uint32_t cell : cells) {
    const uint32_t row = rows.of_cell[cell];
    const PlacedCell placed{.column = columns.of_cell[cell], .cell = cell};
    // A cell written twice shows what was written last.
    if (row == row_before && layout.placed.back().column == placed.column) {
      layout.placed.back() = placed;
      continue;
    }
    layout.placed.push_back(placed);
    ++layout.row_begin[row + 1];
    row_before = row;
  }
  std::partial_sum(layout.row_begin.begin(), layout.row_begin.end(), layout.row_begin.begin());
}

/// Numbers the notes in reading order.
class NoteNumbers {
 public:
  NoteNumbers(const Table& table, TableLayout& layout) : table_(table), layout_(layout) {}

  void build() {
    if (table_.notes.empty()) return;
    layout_.marks.assign(table_.notes.size(), kNone);
    find_shown();
    layout_.title_notes = table_.table_notes;
    std::vector<bool> placed(table_.notes.size(), false);
    for (uint32_t note : table_.table_notes)
      placed[note] = true;
    for (uint32_t note : shown_)
      placed[note] = true;
    for (uint32_t note = 0; note < placed.size(); ++note) {
      if (!placed[note]) layout_.title_notes.push_back(note);
    }
    for (uint32_t note : layout_.title_notes)
      number(note);
    for (uint32_t note : shown_)
      number(note);
  }

 private:
  void find_shown() {
    for (const Head& head : layout_.column_heads)
      add(head);
    auto head = layout_.row_heads.begin();
    for (uint32_t line = 0; line < layout_.lines.size(); ++line) {
      for (; head != layout_.row_heads.end() && head->first == line; ++head)
        add(*head);
      if (layout_.lines[line] != kNone) add_cells(layout_.lines[line]);
    }
  }

  void add(const Head& head) {
    if (head.node != kNone) add(table_.dimensions[head.dimension].nodes[head.node].notes);
  }

  void add_cells(uint32_t row) {
    if (table_.cells.notes.empty()) return;
    for (const PlacedCell& placed : layout_.row(row)) {
      auto found = table_.cells.notes.find(placed.cell);
      if (found != table_.cells.notes.end()) add(found->second);
    }
  }

  void add(const std::vector<uint32_t>& notes) {
    shown_.insert(shown_.end(), notes.begin(), notes.end());
  }

  void number(uint32_t note) {
    if (layout_.marks[note] != kNone) return;
    const auto next = static_cast<uint32_t>(layout_.notes.size());
    auto [same, fresh] = number_of_text_.try_emplace(table_.notes[note].shown, next);
    if (fresh) layout_.notes.push_back(note);
    layout_.marks[note] = same->second;
  }

  const Table& table_;
  TableLayout& layout_;
  std::vector<uint32_t> shown_;  // the notes on heads and cells, in reading order
  std::unordered_map<std::string_view, uint32_t> number_of_text_;
};

}  // namespace

TableLayout lay_out(const Table& table) {
  TableLayout layout;
  Axis rows = order_axis(table, output::Place::Rows);
  Axis columns = order_axis(table, output::Place::Columns);
  const bool nothing = table.cells.size() == 0 && rows.leaves.empty() && columns.leaves.empty();
  if (nothing) rows.size = columns.size = 0;

  layout.rows = rows.size;
  layout.columns = columns.size;
  ColumnHeads(table, columns, layout).build();
  RowHeads(table, rows, layout).build();
  place_cells(rows, columns, layout);
  NoteNumbers(table, layout).build();
  return layout;
}

}  // namespace hierfit::report
