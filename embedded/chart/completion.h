// What the completions of single kinds of charts share.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "embedded/dictionary/data_dictionary.h"
#include "embedded/strings/string_table.h"
#include "output/chart.h"
#include "output/table_records.h"

namespace hierfit::chart {

/// What a run knows as a whole.
struct Background {
  const StringTable& strings;
  const DataDictionary& dictionary;
  std::string interval;    ///< "95% confidence interval"; empty when no table has one
  bool of_trials = false;  ///< the target is events of trials, its means are proportions
  std::vector<const output::Table*> means;  ///< all tables of estimated means
  const output::Table* coefficients = nullptr;
  const output::Table* effects = nullptr;

  std::string text(std::string_view key) const { return std::string(strings.text(key)); }
  /// The key's text with "^1", "^2", ... filled.
  std::string filled(std::string_view key, std::initializer_list<std::string> arguments) const;
  /// The first names, and how many more there are.
  std::string listed(const std::vector<std::string>& names) const;
};

/// A chart under completion and the heading that it stands under.
struct Work {
  output::Chart& chart;
  const output::Section& section;
  const Background& background;

  /// The element of the document's graph or, with `name`, its first child of that name; null
  /// without one.
  output::Element* graph() const { return chart.document.child("graph"); }
  output::Element* graph(std::string_view name) const;
  void note(std::string_view text) const;
  void retitle(std::string title) const;
  /// The label of the axis along y, which it has from here on.
  output::Element* label_along_y(const std::string& otherwise) const;
};

/// The variable of a source with this role, or null.
output::ChartVariable* by_role(output::ChartSource* source, std::string_view role);
output::ChartSource* source_of(output::Chart& chart, std::string_view name);
/// A new variable behind the others, with room for no value yet.
output::ChartVariable& add_variable(output::ChartSource& source,
                                    std::string role,
                                    std::string label,
                                    std::optional<output::Format> statistic = std::nullopt);

/// The number of a row; missing where it holds none.
double number_at(const output::ChartVariable* variable, size_t row);
/// What a reader sees of the category in a row: its label, the text or the number.
std::string category_at(const output::ChartVariable& variable, size_t row);
/// Leaves both rows of a pair without a value.
void unset_pair(output::ChartVariable* variable, size_t pair);
void set_pair(output::ChartVariable& variable, size_t pair, double first, double second);
/// Sets a number, or leaves the row without one.
void set_number(output::ChartVariable& variable, size_t row, const output::Number& number);

void add_tooltip(output::Element& element, std::string_view role);

// The kinds.

void complete_top_means(const Work& work);
void complete_block_means(const Work& work);
void complete_spans(const Work& work);
void complete_pairs(const Work& work);
void complete_diagram(const Work& work);

}  // namespace hierfit::chart
