// The elements of a plan bound to the data of the chart: which variable stands for which role, what
// its values show as, and which panel a row belongs to.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "output/chart.h"
#include "output/document.h"
#include "report/chart/plan.h"

namespace hierfit::report::chart {

using output::ChartSource;
using output::ChartVariable;

/// Whether a row holds something that can be shown: a text, or a finite number.
bool has_value(const ChartVariable& variable, size_t row);
/// The number of a row; `kSystemMissing` when there is none.
double number_at(const ChartVariable* variable, size_t row);
bool is_number(double value);

/// What a value shows as: its label, else the text, else the number; `prefix` stands ahead of it.
std::string shown_value(const ChartVariable& variable,
                        size_t row,
                        const output::NumberStyle& style);
std::string shown_number(const ChartVariable& variable,
                         double value,
                         const output::NumberStyle& style);
/// A value in the format of its variable.
output::Number number_of(const ChartVariable& variable, double value);
/// The label of a variable, else its name.
const std::string& label_of(const ChartVariable& variable);

/// The distinct values of a role, in the order in which they stand in its levels and then in the
/// data.
class ValueIndex {
 public:
  static constexpr uint32_t kNone = 0xFFFFFFFF;

  struct Entry {
    std::string shown;
    bool occurs = false;
  };

  /// The levels of a role come first; each is found as text and as number.
  void add_levels(const std::vector<Level>& levels);
  /// The place of a row's value, which is added when it is new; `kNone` for a row without one.
  uint32_t add(const ChartVariable& variable, size_t row, const output::NumberStyle& style);
  uint32_t find(const ChartVariable& variable, size_t row) const;

  const std::vector<Entry>& entries() const { return entries_; }
  size_t size() const { return entries_.size(); }

 private:
  std::unordered_map<double, uint32_t> by_number_;
  std::unordered_map<std::string_view, uint32_t> by_text_;
  std::vector<Entry> entries_;
};

/// The rows of one mark: of a pair 2i and 2i + 1, else one and the same.
struct MarkRows {
  size_t row;
  size_t partner;
};

/// An element with its variables; null where a role is not bound or its variable has no values.
struct BoundElement {
  const Element* element = nullptr;
  const ChartSource* source = nullptr;
  std::array<const ChartVariable*, kRoleNames.size()> variables{};
  struct Entry {
    const ChartVariable* variable;
    std::string_view words;
  };
  std::vector<Entry> tooltip;
  std::vector<uint32_t> panel_of_row;  ///< empty: every row is in every panel

  const ChartVariable* operator[](RoleKind kind) const {
    return variables[static_cast<size_t>(kind)];
  }
  size_t rows() const { return source == nullptr ? 0 : source->rows; }
  bool in_panel(size_t row, uint32_t panel) const {
    return panel_of_row.empty() || panel_of_row[row] == panel;
  }
  /// The panel of a row, the first one of a row that is in all.
  uint32_t panel_of(size_t row) const { return panel_of_row.empty() ? 0 : panel_of_row[row]; }

  size_t rows_of_mark() const { return element->rows == Rows::All ? 1 : 2; }
  /// Calls `use` with the rows of each mark among the first `most_rows`.
  template <class Use>
  void each_mark(Use use, size_t most_rows = SIZE_MAX) const {
    const size_t end = std::min(rows(), most_rows);
    for (size_t row = element->rows == Rows::Second ? 1 : 0; row < end; row += rows_of_mark())
      use(MarkRows{row, rows_of_mark() == 1 ? row : std::min(row ^ 1, rows() - 1)});
  }
  /// Calls `use` with each of `panels` panels that a row stands in: that of its facets, or all.
  template <class Use>
  void each_panel(size_t row, uint32_t panels, Use use) const {
    for (uint32_t panel = 0; panel < panels; ++panel) {
      if (in_panel(row, panel)) use(panel);
    }
  }
};

/// A panel: its place in the grid, and what tells it from the others.
struct Panel {
  uint32_t column = 0;
  uint32_t row = 0;
  std::vector<std::string> titles;
  const ChartSource* source = nullptr;  ///< where its facets' values are found, at `at_row`
  size_t at_row = 0;
};

/// The values of one role that stand for steps of a palette, or for symbols.
struct Scheme {
  const ChartVariable* variable = nullptr;  ///< null: no element has the role
  const Role* role = nullptr;
  ValueIndex values;

  /// The place of a row's value; `ValueIndex::kNone` when it has none.
  uint32_t of(const BoundElement& element, RoleKind kind, size_t row) const;
};

/// All that a layout draws from.
struct Binding {
  const Plan& plan;
  const Graph& graph;
  const output::Chart& chart;
  const output::Document& document;  ///< for the report's words
  output::NumberStyle numbers;       ///< the document's, with a true minus
  std::vector<BoundElement> elements;
  std::vector<Panel> panels;  ///< one at least
  uint32_t left_out = 0;      ///< panels beyond the most that are drawn
  bool single_facet = false;  ///< the panels may stand in any number of columns
  Scheme colors;
  Scheme shapes;

  std::string_view word(std::string_view key) const { return document.word(key); }
  const Font& font(Lettering lettering) const { return plan.style.font(lettering); }
  /// The paint of a row: a step of the palette, or that of marks.
  Paint paint_of(const BoundElement& element, size_t row) const;
  /// The series of a row's colour, or of plain marks.
  const Series& series_of(const BoundElement& element, size_t row) const;
  /// The symbol of a row, by its shape, else by its colour.
  Symbol symbol_of(const BoundElement& element, size_t row) const;
  Symbol symbol_of_step(uint32_t step) const;
  std::string tooltip_of(const BoundElement& element, MarkRows rows) const;
  /// What tells the panel of a row from the others; empty for a row that is in all of them.
  std::span<const std::string> panel_titles(const BoundElement& element, size_t row) const;
};

/// Binds a graph. Linear in the rows.
Binding bind(const Plan& plan,
             const Graph& graph,
             const output::Chart& chart,
             const output::Document& document);

/// The values of two rows as one text: "1.2", or "[1.2, 3.4]" where they differ.
std::string shown_pair(const ChartVariable& variable,
                       MarkRows rows,
                       const output::NumberStyle& style);

/// Whether a panel does without a guide: one of its facets has another value than the guide names.
bool is_hidden(const LineGuide& guide, const Panel& panel);

/// A text of the chart's own, "0.05 \u2264 p < 0.1", with its numbers written in the marks of
/// `style`.
std::string with_marks(std::string_view text, const output::NumberStyle& style);

/// What a row of a variable shows without what only repeats its panel: a key, not a label, tells
/// panels apart by having the values of their facets ahead.
std::string shown_in_panel(const output::ChartSource& source,
                           const Graph& graph,
                           const ChartVariable& variable,
                           size_t row,
                           const output::NumberStyle& style);

/// The pattern with "^1", "^2", ... replaced by the arguments, in one pass.
std::string with_arguments(std::string_view pattern, const std::vector<std::string>& arguments);

}  // namespace hierfit::report::chart
