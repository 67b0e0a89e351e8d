#include "import/references.h"

#include <algorithm>

namespace hierfit::fit {
namespace {

/// The values of a variable, the first of many.
std::string values_text(const Variable& variable) {
  constexpr size_t kShown = 8;
  std::string text;
  for (size_t at = 0; at < std::min(kShown, variable.values.size()); ++at)
    text += (at > 0 ? ", " : "") + variable.values[at].text;
  if (variable.values.size() > kShown) text += ", \u2026";
  return text;
}

std::string count_of(size_t count, const char* things) {
  return std::to_string(count) + " " + things;
}

}  // namespace

std::string item(std::string_view list, size_t position) {
  return std::string(list) + "[" + std::to_string(position) + "]";
}

std::string inside(std::string_view object, std::string_view name) {
  std::string path(object);
  path += '.';
  path += name;
  return path;
}

const Variable* References::field(const std::string& path, std::string_view name) const {
  const Variable* variable = variables_.find(name);
  if (variable == nullptr) {
    fail(path + " is " + in_quotes(name) + ", which is no variable" +
         suggestion(name, variables_.names()));
  }
  return variable;
}

void References::fields(const std::string& path, const std::vector<std::string>& names) const {
  for (size_t at = 0; at < names.size(); ++at)
    field(item(path, at), names[at]);
}

const Variable* References::factor(const std::string& path, std::string_view name) const {
  const Variable* variable = field(path, name);
  if (variable == nullptr || is_factor(*variable)) return variable;
  fail(path + " is " + in_quotes(name) + ", which is a variable without levels");
  return nullptr;
}

void References::value(const std::string& path,
                       const Variable& variable,
                       const Value& value) const {
  if (variable.values.empty() || variables_.position(variable, value.text)) return;
  fail(path + " is " + in_quotes(value.text) + ", which is no value of " + variable.name +
       "; it has " + values_text(variable));
}

void References::levels(const std::string& path,
                        const Levels& levels,
                        const std::vector<std::string>& allowed) const {
  for (const auto& [name, level] : levels) {
    const std::string here = inside(path, name);
    if (std::ranges::find(allowed, name) == allowed.end()) {
      fail(here + " is a level of " + in_quotes(name) + ", which is none of the fields here");
    } else if (const Variable* variable = variables_.find(name)) {
      value(here, *variable, level);
    }
  }
}

bool References::position(const std::string& path,
                          int64_t position,
                          size_t count,
                          const char* things) const {
  if (position >= 0 && static_cast<size_t>(position) < count) return true;
  fail(path + " is " + std::to_string(position) + ", and there are " + count_of(count, things) +
       ", counted from 0");
  return false;
}

void References::matrix(const std::string& path,
                        const Matrix& matrix,
                        size_t size,
                        const char* things) const {
  if (matrix.size() != size) {
    fail(path + " has " + count_of(matrix.size(), "rows") + " for " + count_of(size, things));
    return;
  }
  const bool is_triangle = size > 1 && matrix[0].size() == 1;
  for (size_t row = 0; row < size; ++row) {
    const size_t wanted = is_triangle ? row + 1 : size;
    if (matrix[row].size() == wanted) continue;
    fail(item(path, row) + " has " + count_of(matrix[row].size(), "numbers") + " for " +
         count_of(wanted, things));
    return;
  }
}

}  // namespace hierfit::fit
