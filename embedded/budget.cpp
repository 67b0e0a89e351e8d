#include "embedded/budget.h"

#include <algorithm>
#include <vector>

#include "embedded/strings/cut_text.h"

namespace hierfit {
namespace {

constexpr size_t kCells = size_t{1} << 17;
constexpr size_t kBytesPerCell = 2;  ///< of the documents
constexpr size_t kCellsForOthers = size_t{1} << 15;
constexpr size_t kTexts = size_t{4} << 20;
constexpr size_t kTextsPerByte = 12;

/// What labels are cut to, in bytes, one after the other.
constexpr size_t kLabelLengths[] = {4096, 1024, 256, 64};

/// Calls `visit` for each table of a section and of those below it.
template <class Visit>
void for_each_table(output::Section& section, const Visit& visit) {
  for (output::Item& item : section.items) {
    if (auto* table = std::get_if<std::unique_ptr<output::Table>>(&item)) visit(**table);
    if (auto* inner = std::get_if<std::unique_ptr<output::Section>>(&item)) {
      for_each_table(**inner, visit);
    }
  }
}

/// The bytes of the labels of each category of a dimension with those of its groups, none of them
/// longer than `most`. A parent stands ahead of its children.
std::vector<size_t> label_bytes(const output::Dimension& dimension, size_t most) {
  std::vector<size_t> of_nodes;
  for (const output::Node& node : dimension.nodes) {
    const size_t above = node.parent == output::kNone ? 0 : of_nodes[node.parent];
    of_nodes.push_back(above + std::min(node.label.shown.size(), most));
  }
  std::vector<size_t> of_leaves;
  for (const uint32_t node : dimension.leaves)
    of_leaves.push_back(of_nodes[node]);
  return of_leaves;
}

/// The bytes that the labels of a table take when each cell stands with all of its labels.
size_t repeated_bytes(const output::Table& table, size_t most) {
  const output::Cells& cells = table.cells;
  size_t bytes = 0;
  for (size_t d = 0; d < table.dimensions.size(); ++d) {
    const std::vector<size_t> labels = label_bytes(table.dimensions[d], most);
    for (size_t cell = 0; cell < cells.size(); ++cell) {
      const uint32_t leaf = cells.at(cell)[d];
      if (leaf != output::kNone) bytes += labels[leaf];
    }
  }
  return bytes;
}

size_t repeated_bytes(output::Section& section, size_t most) {
  size_t bytes = 0;
  for_each_table(section,
                 [&](const output::Table& table) { bytes += repeated_bytes(table, most); });
  return bytes;
}

/// Numbers of a label that is cut stand for themselves no more.
void cut(output::Text& text, size_t most) {
  if (text.shown.size() <= most) return;
  const size_t kept = cut_text(text.shown, most);
  std::erase_if(text.numbers, [kept](const output::NumberSpan& span) {
    return size_t{span.begin} + span.length > kept;
  });
}

}  // namespace

Budget::Budget(size_t input_bytes)
    : cells_(kCells + input_bytes / kBytesPerCell),
      chart_texts_(kTexts + kTextsPerByte * input_bytes),
      repeated_labels_(kTexts + kTextsPerByte * input_bytes) {}

size_t Budget::cells_of_table() const {
  return cells_ > 2 * kCellsForOthers ? cells_ - kCellsForOthers : cells_ / 2;
}

void Budget::spend_cells(size_t count) { cells_ -= std::min(count, cells_); }

bool Budget::spend_chart_texts(size_t bytes) {
  const bool is_left = bytes <= chart_texts_;
  if (is_left) chart_texts_ -= bytes;
  return is_left;
}

size_t cut_labels(output::Section& section, size_t most) {
  if (repeated_bytes(section, output::kNone) <= most) return 0;
  const auto* length = std::ranges::find_if(
      kLabelLengths, [&](size_t bytes) { return repeated_bytes(section, bytes) <= most; });
  const size_t bytes = length == std::end(kLabelLengths) ? kLabelLengths[3] : *length;
  for_each_table(section, [bytes](output::Table& table) {
    for (output::Dimension& dimension : table.dimensions) {
      for (output::Node& node : dimension.nodes)
        cut(node.label, bytes);
    }
  });
  return bytes;
}

}  // namespace hierfit
