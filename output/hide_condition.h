// When a guide of a chart is hidden.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "output/chart.h"

namespace hierfit::output {

/// When a guide is hidden: a panel where one facet variable has another value than the named one.
class HideCondition {
 public:
  struct Clause {
    std::string name;   ///< the facet variable's role
    std::string value;  ///< the one value that shows the guide

    bool operator==(const Clause&) const = default;
  };

  /// Reads `name!="value"` joined by `||`; a value may hold quotation marks. A text of another
  /// form, "false" among them, never hides.
  explicit HideCondition(std::string_view text);

  /// The clauses that any of must hold to hide the guide.
  const std::vector<Clause>& clauses() const { return clauses_; }

 private:
  std::vector<Clause> clauses_;
};

/// Whether a value of a clause names this value of a variable: the same text, or the same number.
bool names_value(std::string_view clause_value, std::string_view text);
bool names_value(std::string_view clause_value, double number);
/// Whether it names the value of a row; a text both as it came and as a reader sees it.
bool names_row(std::string_view clause_value, const ChartColumn& values, size_t row);

}  // namespace hierfit::output
