// Looks up what members refer to, with messages for what is not there.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "import/fit.h"
#include "import/problem.h"
#include "import/variables.h"

namespace hierfit::fit {

/// "list[3]".
std::string item(std::string_view list, size_t position);
/// "object.name".
std::string inside(std::string_view object, std::string_view name);

/// Looks up variables and values for one fit.
class References {
 public:
  References(const Variables& variables, Problems& problems)
      : variables_(variables), problems_(problems) {}

  /// The variable of that name; fails and gives null when there is none.
  const Variable* field(const std::string& path, std::string_view name) const;
  void fields(const std::string& path, const std::vector<std::string>& names) const;
  /// The same for a variable with levels.
  const Variable* factor(const std::string& path, std::string_view name) const;
  /// Fails for a value that the variable does not have, where it has a list of them.
  void value(const std::string& path, const Variable& variable, const Value& value) const;
  /// Fails for a name that is none of `allowed`, and for a value that its variable does not have.
  void levels(const std::string& path,
              const Levels& levels,
              const std::vector<std::string>& allowed) const;
  /// Fails for a position beyond `count` things.
  bool position(const std::string& path, int64_t position, size_t count, const char* things) const;
  /// Fails for a matrix that is neither square nor a lower triangle, or not of this size.
  void matrix(const std::string& path, const Matrix& matrix, size_t size, const char* things) const;

  void fail(const std::string& sentence) const { problems_.fail(sentence); }
  void warn(const std::string& sentence) const { problems_.warn(sentence); }

 private:
  const Variables& variables_;
  Problems& problems_;
};

}  // namespace hierfit::fit
