// The variables of a fit, by name.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "import/fit.h"

namespace hierfit::fit {

/// What a variable is measured as, as the model document writes it: its own word, else categorical
/// when it has values and continuous when it has none.
std::string_view level_of(const Variable& variable);
/// How its values are stored, as the model document writes it: its own word, else what all values
/// read as.
std::string_view type_of(const Variable& variable);
bool is_factor(const Variable& variable);

/// Finds variables and their values. The fit outlives it and stays as it is.
class Variables {
 public:
  explicit Variables(const Fit& fit);

  /// Null for a name that no variable has.
  const Variable* find(std::string_view name) const;
  /// Whether it is a variable with levels.
  bool is_factor(std::string_view name) const;
  /// The position of a value among those of the variable.
  std::optional<size_t> position(const Variable& variable, std::string_view value) const;
  std::vector<std::string_view> names() const;

 private:
  struct Entry {
    const Variable* variable = nullptr;
    std::unordered_map<std::string_view, size_t> positions;
  };

  const Fit& fit_;
  std::unordered_map<std::string_view, Entry> entries_;
};

}  // namespace hierfit::fit
