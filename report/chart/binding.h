// A plan bound to the data of its chart: all that a drawing or a description reads.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "output/document.h"
#include "report/chart/bound_element.h"
#include "report/chart/panels.h"

namespace hierfit::report::chart {

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
  /// The dashes of the whiskers of a colour: whole lines, but for the second time round the palette
  /// and so on. With the symbol they tell it from all others without its colour.
  std::string_view dash_of_step(uint32_t step) const;
  std::string_view dash_of(const BoundElement& element, size_t row) const;
  Symbol symbol_of_shape(uint32_t shape) const;
  std::string tooltip_of(const BoundElement& element, MarkRows rows) const;
  /// What tells the panel of a row from the others; empty for a row that is in all of them.
  std::span<const std::string> panel_titles(const BoundElement& element, size_t row) const;
};

/// Binds a graph. Linear in the rows.
Binding bind(const Plan& plan,
             const Graph& graph,
             const output::Chart& chart,
             const output::Document& document);

}  // namespace hierfit::report::chart
