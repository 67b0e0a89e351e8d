#include "report/chart/figure_table.h"

#include <algorithm>
#include <set>

#include "report/wording.h"

namespace hierfit::report::chart {
namespace {

using output::Table;
using output::Text;

/// What a variable is called by its role; empty: it only places what is drawn.
constexpr std::array<std::string_view, kRoleNames.size()> kRoleWords = {
    "Category", "Value", "",     "",          "Node",   "From",
    "To",       "Kind",  "Kind", "Frequency", "Weight", "Name"};

/// What a column shows of the two rows of an interval, or of any other row.
enum class Bound : uint8_t { None, Lower, Upper };

/// A column: a variable, and what it is called.
struct Column {
  const ChartVariable* variable;
  std::string title;
  Bound bound = Bound::None;
};

void add_leaf(output::Dimension& dimension, std::string label) {
  output::Node node;
  node.label.shown = std::move(label);
  node.leaf = static_cast<uint32_t>(dimension.leaves.size());
  dimension.leaves.push_back(static_cast<uint32_t>(dimension.nodes.size()));
  dimension.nodes.push_back(std::move(node));
}

/// The number of a row that has no other way to be shown.
std::optional<output::Number> plain_number(const ChartVariable& variable, size_t row) {
  const double value = number_at(&variable, row);
  if (!is_number(value) || variable.label_of(value) != nullptr) return std::nullopt;
  return number_of(variable, value);
}

class SourceTable {
 public:
  SourceTable(const Binding& binding, const ChartSource& source)
      : binding_(binding), source_(source), columns_(columns()) {}

  bool empty() const { return columns_.empty(); }

  FigureTable make(size_t most_rows) {
    const size_t step = has_pairs() ? 2 : 1;
    const size_t all = (source_.rows + step - 1) / step;
    Table& table = made_.table;
    table.title.shown = binding_.word("Data of the figure");
    table.dimensions.resize(2);
    table.dimensions[0].labels_shown = table.dimensions[0].title_shown = false;
    table.dimensions[1].place = output::Place::Columns;
    table.dimensions[1].title_shown = false;
    table.cells.dimensions = 2;
    for (Column& column : columns_) {
      made_.texts.push_back(column.variable->categorical);
      add_leaf(table.dimensions[1], std::move(column.title));
    }
    for (size_t row = 0; row < std::min(all, most_rows); ++row)
      add_row(row * step, step == 2 ? row * step + 1 : row * step);
    if (all > most_rows) table.caption = caption(most_rows, all);
    return std::move(made_);
  }

 private:
  bool is_own(const BoundElement& element) const { return element.source == &source_; }

  bool has_pairs() const {
    return std::ranges::any_of(binding_.elements, [&](const BoundElement& element) {
      return element.element->rows == Rows::Pairs && is_own(element);
    });
  }

  Text caption(size_t most, size_t all) const {
    constexpr std::string_view kPattern =
        "The first ^1 of ^2 rows; the JSON form of the report holds all of them.";
    return {.shown = filled(binding_.word(kPattern), std::to_string(most), std::to_string(all)),
            .numbers = {}};
  }

  // Columns.

  std::vector<Column> columns() const {
    std::vector<Column> columns;
    for (const ChartVariable& variable : source_.variables) {
      if (!says_something(variable)) continue;
      if (is_whisker(variable) && variable.label.empty()) continue;
      std::string title = title_of(variable);
      if (is_interval(variable)) {
        columns.push_back({&variable, std::string(binding_.word("Lower")), Bound::Lower});
        columns.push_back({&variable, std::string(binding_.word("Upper")), Bound::Upper});
      } else if (is_bar(variable)) {
        columns.push_back({&variable, std::string(binding_.word("Horizontal line")), Bound::Lower});
        columns.push_back({&variable, std::move(title), Bound::Upper});
      } else if (!title.empty()) {
        columns.push_back({&variable, std::move(title)});
      }
    }
    return columns;
  }

  bool says_something(const ChartVariable& variable) const {
    for (size_t row = 0; row < variable.values.rows(); ++row) {
      const bool is_text = variable.values.kind(row) == output::ChartColumn::Kind::Text;
      if (!is_text || !variable.values.text(row).empty()) return true;
    }
    return false;
  }

  /// Whether its rows are the ends of an interval that is drawn so, in twos.
  bool is_drawn_as(const ChartVariable& variable, bool whisker) const {
    return std::ranges::any_of(binding_.elements, [&](const BoundElement& element) {
      return is_own(element) && element.element->kind == ElementKind::Interval &&
             element.element->whisker == whisker && element.element->rows == Rows::Pairs &&
             element[RoleKind::Y] == &variable;
    });
  }
  bool is_whisker(const ChartVariable& variable) const { return is_drawn_as(variable, true); }
  bool is_bar(const ChartVariable& variable) const { return is_drawn_as(variable, false); }

  /// Whether it holds the bounds of an interval, which need not be drawn.
  bool is_interval(const ChartVariable& variable) const {
    if (is_whisker(variable)) return true;
    if (!variable.statistic || !has_pairs() || is_bar(variable)) return false;
    for (size_t row = 0; row + 1 < source_.rows; row += 2) {
      if (number_at(&variable, row) != number_at(&variable, row + 1)) return true;
    }
    return false;
  }

  /// The label of a variable, else a word for what it is in the chart; empty when it is nothing.
  std::string title_of(const ChartVariable& variable) const {
    for (const Facet& facet : binding_.graph.facets) {
      if (facet.variable == variable.role) return label_of(variable);
    }
    for (const BoundElement& element : binding_.elements) {
      if (!is_own(element)) continue;
      const std::string_view word = word_for(*element.element, variable.role);
      if (word.empty()) continue;
      return variable.label.empty() ? std::string(word) : variable.label;
    }
    return {};
  }

  /// What the variable of this role is in the element; empty when it only places it.
  std::string_view word_for(const Element& element, std::string_view role) const {
    const bool placed_by_data = !is_positional(element.kind);
    for (size_t i = 0; i < element.roles.of.size(); ++i) {
      if (element.roles.of[i].variable != role) continue;
      const auto kind = static_cast<RoleKind>(i);
      if (kind <= RoleKind::Y2 && placed_by_data) continue;
      return word_for(kind);
    }
    const bool in_tooltip = std::ranges::any_of(
        element.roles.tooltip, [&](const auto& entry) { return entry.variable == role; });
    return in_tooltip ? binding_.word("Details") : std::string_view();
  }

  std::string_view word_for(RoleKind kind) const {
    for (const Legend& legend : binding_.graph.legends) {
      if (legend.role == kind && !legend.title.empty()) return legend.title;
    }
    return binding_.word(kRoleWords[static_cast<size_t>(kind)]);
  }

  // Rows.

  void add_row(size_t row, size_t partner) {
    const auto leaf = static_cast<uint32_t>(made_.table.dimensions[0].leaves.size());
    add_leaf(made_.table.dimensions[0], {});
    for (uint32_t column = 0; column < columns_.size(); ++column) {
      const auto& [variable, title, bound] = columns_[column];
      const size_t first = bound == Bound::Upper ? partner : row;
      const size_t second = bound == Bound::Lower ? row : partner;
      if (!has_value(*variable, first) && !has_value(*variable, second)) continue;
      made_.table.cells.coordinates.insert(made_.table.cells.coordinates.end(), {leaf, column});
      made_.table.cells.values.push_back(value_of(columns_[column], first, second));
    }
  }

  output::CellValue value_of(const Column& column, size_t row, size_t partner) {
    const ChartVariable& variable = *column.variable;
    const output::NumberStyle& style = binding_.document.numbers;
    const bool both = has_value(variable, row) && has_value(variable, partner);
    const bool differ =
        both && shown_value(variable, row, style) != shown_value(variable, partner, style);
    const size_t only = has_value(variable, row) ? row : partner;
    const std::optional<output::Number> number = plain_number(variable, only);
    if (number && !differ && variable.prefix.empty()) return *number;
    Text text;
    if (differ) text.shown = "[";
    append(text, variable, only);
    if (differ) {
      text.shown += list_mark(style);
      append(text, variable, partner);
      text.shown += "]";
    }
    return add_text(std::move(text));
  }

  /// Appends a value, with the stretch that is its number.
  void append(Text& text, const ChartVariable& variable, size_t row) const {
    const std::string shown = shown_value(variable, row, binding_.document.numbers);
    if (const auto number = plain_number(variable, row)) {
      const size_t ahead = variable.prefix.size();
      text.numbers.push_back({static_cast<uint32_t>(text.shown.size() + ahead),
                              static_cast<uint32_t>(shown.size() - ahead), *number});
    }
    text.shown += shown;
  }

  uint32_t add_text(Text text) {
    made_.table.texts.push_back(std::move(text));
    return static_cast<uint32_t>(made_.table.texts.size() - 1);
  }

  const Binding& binding_;
  const ChartSource& source_;
  std::vector<Column> columns_;
  FigureTable made_;
};

}  // namespace

std::vector<FigureTable> figure_tables(const Binding& binding, size_t most_rows) {
  std::vector<FigureTable> tables;
  std::set<const ChartSource*> made;
  for (const BoundElement& element : binding.elements) {
    if (element.source == nullptr || !made.insert(element.source).second) continue;
    SourceTable table(binding, *element.source);
    if (!table.empty()) tables.push_back(table.make(most_rows));
  }
  return tables;
}

}  // namespace hierfit::report::chart
