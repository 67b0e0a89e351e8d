#include "report/typeset/flat_heads.h"

namespace hierfit::report {

using output::kNone;

namespace {

class Flattening {
 public:
  Flattening(const TableView& view, std::string_view divider) : view_(view), divider_(divider) {
    heads_.columns.resize(view.layout.columns);
    heads_.symbols.resize(view.layout.columns);
    heads_.column_notes.resize(view.layout.columns);
    heads_.rows.resize(view.layout.rows);
    heads_.row_notes.resize(view.layout.rows);
    side_.resize(view.stubs());
  }

  FlatHeads write() {
    for (const Head& head : view_.layout.column_heads)
      add_to_columns(head);
    auto next = view_.layout.row_heads.begin();
    for (uint32_t line = 0; line < view_.lines(); ++line) {
      for (; next != view_.layout.row_heads.end() && next->first == line; ++next)
        remember(*next);
      const uint32_t row = view_.layout.lines[line];
      if (row != kNone) write_row(row);
    }
    return std::move(heads_);
  }

 private:
  void join(std::string& text, const Head& head) const {
    const output::Text* label = view_.label_of(head);
    if (label == nullptr) return;
    if (!text.empty()) text += divider_;
    text += view_.text(*label);
  }

  void add_notes(std::vector<uint32_t>& notes, const Head& head) const {
    if (head.node == kNone) return;
    const auto& added = view_.table.dimensions[head.dimension].nodes[head.node].notes;
    notes.insert(notes.end(), added.begin(), added.end());
  }

  void add_to_columns(const Head& head) {
    const output::Text* label = view_.label_of(head);
    for (uint32_t column = head.first; column < head.first + head.span; ++column) {
      join(heads_.columns[column], head);
      if (label != nullptr) heads_.symbols[column] = label->symbol;
      add_notes(heads_.column_notes[column], head);
    }
  }

  /// Keeps what stands at the side of the coming rows, by stub: groups, then the label.
  void remember(const Head& head) {
    std::vector<const Head*>& column = side_[head.level];
    column.resize(std::min<size_t>(column.size(), head.indent));
    column.push_back(&head);
  }

  void write_row(uint32_t row) {
    for (const std::vector<const Head*>& stub : side_) {
      std::string& text = heads_.rows[row].emplace_back();
      for (const Head* head : stub) {
        join(text, *head);
        add_notes(heads_.row_notes[row], *head);
      }
    }
  }

  const TableView& view_;
  std::string_view divider_;
  FlatHeads heads_;
  std::vector<std::vector<const Head*>> side_;  // by stub
};

}  // namespace

FlatHeads flat_heads(const TableView& view, std::string_view divider) {
  return Flattening(view, divider).write();
}

}  // namespace hierfit::report
