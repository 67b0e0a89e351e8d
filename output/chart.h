// A chart of the output document: its chart document, and its data as columns.
//
// What the document says is told in docs/chart.md. A renderer needs these two and nothing else.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "output/markup.h"
#include "output/number_format.h"

namespace hierfit::output {

/// The values of one variable by row. A row holds a number, a text, or nothing.
class ChartColumn {
 public:
  enum class Kind : uint8_t { Unset, Number, Text };

  /// Rows up to the last one that holds something; what lies beyond is unset.
  size_t rows() const { return numbers_.size(); }
  Kind kind(size_t row) const {
    if (row >= numbers_.size()) return Kind::Unset;
    if (text_of_row_.empty() || text_of_row_[row] == kNumber) return Kind::Number;
    return text_of_row_[row] == kUnset ? Kind::Unset : Kind::Text;
  }
  /// The number of a row of that kind; any double, the system-missing number among them.
  double number(size_t row) const { return numbers_[row]; }
  /// The text of a row of that kind, as it came: `plain_text` gives what a reader sees.
  const std::string& text(size_t row) const { return texts_[text_of_row_[row]]; }
  /// Whether every row holds a number, so that `numbers` are the whole column.
  bool all_numbers() const { return text_of_row_.empty(); }
  const std::vector<double>& numbers() const { return numbers_; }

  /// The last value of a row holds.
  void set(size_t row, double value);
  void set(size_t row, std::string_view value);
  void unset(size_t row);
  void reserve(size_t rows) { numbers_.reserve(rows); }

 private:
  static constexpr uint32_t kNumber = 0xFFFFFFFF;
  static constexpr uint32_t kUnset = 0xFFFFFFFE;

  void grow(size_t row);
  void keep_kinds();

  std::vector<double> numbers_;        ///< 0 in rows that hold no number
  std::vector<uint32_t> text_of_row_;  ///< index into `texts_`, or a mark; empty: numbers alone
  std::vector<std::string> texts_;     ///< a text that follows itself stands once
};

/// The print format of a variable.
struct ChartFormat {
  uint16_t width = 0;
  uint8_t type = 0;  ///< 1 marks a string variable
  uint8_t decimals = 0;

  bool operator==(const ChartFormat&) const = default;
};

/// How the values of a variable read. Texts are plain: entities resolved, lines divided by line
/// feeds.
struct ChartVariable {
  std::string name;
  std::string role;    ///< what the document calls it by
  std::string label;   ///< empty: the name stands for it
  std::string prefix;  ///< ahead of every value that is shown
  bool categorical = false;
  std::optional<ChartFormat> format;
  std::optional<Format> statistic;  ///< how its numbers show where they are statistics
  std::map<double, std::string> number_labels;
  std::map<std::string, std::string, std::less<>> text_labels;
  ChartColumn values;

  /// The label of a value, or null when it has none.
  const std::string* label_of(double value) const;
  const std::string* label_of(std::string_view value) const;
};

/// Variables with common rows.
struct ChartSource {
  std::string name;
  size_t rows = 0;  ///< the longest column, or the count that the source was made with
  std::vector<ChartVariable> variables;

  /// The variable that the document calls by this role, or null.
  const ChartVariable* by_role(std::string_view role) const;
};

/// A chart.
struct Chart {
  std::string kind;         ///< names the kind of chart for programs, "predictedByObserved"
  std::string title;        ///< what stands above it, plain; the description when nothing does
  std::string description;  ///< what it was delivered with; not empty where the title is not
  Element document;         ///< the chart document
  /// The data: those of the graph in the order of their making, then those of an embedded graph.
  /// Names are unique. A source of the document may be absent here.
  std::vector<ChartSource> sources;

  const ChartSource* source(std::string_view name) const;
};

/// What a reader sees of a text of a chart: `<BR/>` is a line feed and the predefined entities and
/// character references are resolved; any other markup stays as it is.
std::string plain_text(std::string_view text);

}  // namespace hierfit::output
