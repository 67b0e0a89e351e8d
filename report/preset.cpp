#include "report/preset.h"

#include <algorithm>
#include <vector>

namespace hierfit::report {
namespace {

using output::Document;
using output::Item;
using output::Section;
using output::Table;
using output::Text;

/// Keys of columns of probabilities, whatever format their cells came with; the first gives way to
/// the symbol.
constexpr std::string_view kSignificanceKeys[] = {"Sig.", "Adj. Sig."};
constexpr std::string_view kSymbolKeys[] = {"F", "t", "df", "df1", "df2"};

template <size_t Size>
bool holds(const std::string_view (&keys)[Size], std::string_view key) {
  return std::ranges::find(keys, key) != std::end(keys);
}

/// Other scripts have no italics.
bool is_latin(std::string_view text) {
  return std::ranges::all_of(text, [](unsigned char c) { return c < 0x80; });
}

void write_number_style(const Preset& preset, output::NumberStyle& numbers) {
  if (!preset.decimal_mark.empty()) numbers.decimal_mark = preset.decimal_mark;
  numbers.less_than = preset.less_than;
  numbers.decimals = preset.decimals;
  numbers.significance = preset.steps;
  numbers.largest_significance = preset.largest_significance;
  numbers.significance_zero = preset.significance_zero;
}

void mark(const Preset& preset, Text& label) {
  const bool gives_way = label.key == kSignificanceKeys[0];
  if (gives_way) label.shown = preset.significance;
  label.symbol = gives_way || (is_latin(label.shown) && holds(kSymbolKeys, label.key));
}

/// Has the numbers under significances be written as such, and marks the statistical symbols among
/// the labels of a dimension.
void mark(const Preset& preset, Table& table, uint32_t d) {
  output::Dimension& dimension = table.dimensions[d];
  std::vector<bool> significance(dimension.leaves.size());
  for (output::Node& node : dimension.nodes) {
    if (!node.is_group()) significance[node.leaf] = holds(kSignificanceKeys, node.label.key);
    if (preset.symbols) mark(preset, node.label);
  }
  if (std::ranges::find(significance, true) == significance.end()) return;
  output::Cells& cells = table.cells;
  for (size_t cell = 0; cell < cells.size(); ++cell) {
    const uint32_t leaf = cells.at(cell)[d];
    auto* number = std::get_if<output::Number>(&cells.values[cell]);
    if (number == nullptr || leaf == output::kNone || !significance[leaf]) continue;
    number->format = output::Format::Significance;
  }
}

void mark(const Preset& preset, Section& section) {
  for (Item& item : section.items) {
    if (auto* inner = std::get_if<std::unique_ptr<Section>>(&item)) {
      mark(preset, **inner);
    } else if (auto* table = std::get_if<std::unique_ptr<Table>>(&item)) {
      for (uint32_t d = 0; d < (*table)->dimensions.size(); ++d)
        mark(preset, **table, d);
    }
  }
}

}  // namespace

const Preset* preset_by_name(std::string_view name) {
  const Preset* found = std::ranges::find(kPresets, name, &Preset::name);
  return found == std::end(kPresets) ? nullptr : found;
}

void apply(const Preset& preset, Document& document) {
  write_number_style(preset, document.numbers);
  mark(preset, document.content);
}

}  // namespace hierfit::report
