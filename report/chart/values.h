// The values of a chart's variables: what they are, what they show as, and which are the same.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "output/chart.h"
#include "output/number_format.h"
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
/// A text of the chart's own, "0.05 \u2264 p < 0.1", with its numbers written in the marks of
/// `style`.
std::string with_marks(std::string_view text, const output::NumberStyle& style);
/// What divides the numbers of an interval: where the comma is the decimal mark, it is a semicolon.
std::string_view list_mark(const output::NumberStyle& style);
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

}  // namespace hierfit::report::chart
