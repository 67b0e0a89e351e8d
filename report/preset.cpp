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

/// Of columns of probabilities, whatever format their cells came with; the first gives way to the
/// symbol.
constexpr std::string_view kSignificanceLabels[] = {"Sig.", "Adj. Sig."};
constexpr std::string_view kSymbolLabels[] = {"F", "t", "df", "df1", "df2"};

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

/// Marks the statistical symbols among the labels of a document.
class Symbols {
 public:
  Symbols(const Preset& preset, const Document& document) : preset_(preset), document_(document) {}

  void mark(Section& section) const {
    for (Item& item : section.items) {
      if (auto* inner = std::get_if<std::unique_ptr<Section>>(&item)) {
        mark(**inner);
      } else if (auto* table = std::get_if<std::unique_ptr<Table>>(&item)) {
        mark(**table);
      }
    }
  }

 private:
  /// Symbols name statistics, so they stand in the dimension of the statistics alone: in another
  /// one a label like "F" is the reader's own, a category of sex.
  void mark(Table& table) const {
    for (uint32_t d = 0; d < table.dimensions.size(); ++d) {
      if (table.dimensions[d].title.shown == document_.word("Statistics")) mark(table, d);
    }
  }

  void mark(Table& table, uint32_t d) const {
    output::Dimension& dimension = table.dimensions[d];
    std::vector<bool> significance(dimension.leaves.size());
    for (output::Node& node : dimension.nodes) {
      if (!node.is_group()) significance[node.leaf] = is_significance(node.label);
      mark(node.label);
    }
    output::Cells& cells = table.cells;
    for (size_t cell = 0; cell < cells.size(); ++cell) {
      const uint32_t leaf = cells.at(cell)[d];
      auto* number = std::get_if<output::Number>(&cells.values[cell]);
      if (number == nullptr || leaf == output::kNone || !significance[leaf]) continue;
      number->format = output::Format::Significance;
    }
  }

  bool is_significance(const Text& label) const {
    return std::ranges::any_of(kSignificanceLabels, [&](std::string_view key) {
      return label.shown == document_.word(key);
    });
  }

  void mark(Text& label) const {
    if (label.shown == document_.word(kSignificanceLabels[0])) {
      label.shown = preset_.significance;
      label.symbol = true;
    } else {
      label.symbol =
          is_latin(label.shown) && std::ranges::any_of(kSymbolLabels, [&](std::string_view key) {
            return label.shown == document_.word(key);
          });
    }
  }

  const Preset& preset_;
  const Document& document_;
};

}  // namespace

const Preset* preset_by_name(std::string_view name) {
  const Preset* found = std::ranges::find(kPresets, name, &Preset::name);
  return found == std::end(kPresets) ? nullptr : found;
}

void apply(const Preset& preset, Document& document) {
  write_number_style(preset, document.numbers);
  if (preset.symbols) Symbols(preset, document).mark(document.content);
}

}  // namespace hierfit::report
