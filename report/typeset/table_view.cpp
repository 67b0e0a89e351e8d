#include "report/typeset/table_view.h"

#include <algorithm>

namespace hierfit::report {

using output::kNone;
using output::Text;

TableView::TableView(const output::Document& of, const output::Table& shown, Medium medium)
    : document(of),
      table(shown),
      texts(of, medium),
      layout(lay_out(shown)),
      cells(align_cells(shown, layout, texts.numbers())) {}

const Text* TableView::label_of(const Head& head) const {
  if (head.kind == HeadKind::Blank) return nullptr;
  const output::Dimension& dimension = table.dimensions[head.dimension];
  const Text& label =
      head.kind == HeadKind::Title ? dimension.title : dimension.nodes[head.node].label;
  return label.shown.empty() ? nullptr : &label;
}

const Text* TableView::stub_title(size_t stub) const {
  const output::Dimension& dimension = table.dimensions[layout.stubs[stub]];
  return dimension.title_shown && !dimension.title.shown.empty() ? &dimension.title : nullptr;
}

bool TableView::has_stub_titles() const {
  for (size_t stub = 0; stub < layout.stubs.size(); ++stub) {
    if (stub_title(stub) != nullptr) return true;
  }
  return false;
}

uint32_t TableView::head_rows() const {
  return std::max(layout.head_rows, has_stub_titles() ? 1U : 0U);
}

const output::Number& TableView::number_of(const PlacedCell& placed) const {
  const output::CellValue& value = table.cells.values[placed.cell];
  if (const auto* number = std::get_if<output::Number>(&value)) return *number;
  return table.texts[std::get<uint32_t>(value)].numbers[0].number;
}

std::vector<uint32_t> TableView::marks(const std::vector<uint32_t>& notes) const {
  std::vector<uint32_t> numbers;
  numbers.reserve(notes.size());
  for (uint32_t note : notes)
    numbers.push_back(layout.marks[note]);
  std::ranges::sort(numbers);
  numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
  return numbers;
}

std::vector<uint32_t> TableView::marks(const Head& head) const {
  if (head.node == kNone) return {};
  return marks(table.dimensions[head.dimension].nodes[head.node].notes);
}

std::vector<uint32_t> TableView::marks(const PlacedCell& placed) const {
  if (table.cells.notes.empty()) return {};
  const auto found = table.cells.notes.find(placed.cell);
  return found == table.cells.notes.end() ? std::vector<uint32_t>() : marks(found->second);
}

}  // namespace hierfit::report
