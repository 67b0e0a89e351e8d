#include "import/variables.h"

#include <algorithm>

#include "import/number_text.h"
#include "import/words.h"

namespace hierfit::fit {
namespace {

bool is_whole_number(const Value& value) {
  std::string_view digits = value.text;
  if (digits.starts_with('-')) digits.remove_prefix(1);
  return !digits.empty() && digits.size() <= 15 &&
         std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '9'; });
}

bool is_number(const Value& value) { return parse_number(value.text).has_value(); }

}  // namespace

std::string_view level_of(const Variable& variable) {
  if (!variable.level.empty()) return written(kLevels, variable.level);
  return variable.values.empty() ? "continuous" : "categorical";
}

std::string_view type_of(const Variable& variable) {
  if (!variable.type.empty()) return written(kTypes, variable.type);
  if (variable.values.empty()) return is_factor(variable) ? "string" : "double";
  if (std::ranges::all_of(variable.values, is_whole_number)) return "integer";
  return std::ranges::all_of(variable.values, is_number) ? "double" : "string";
}

bool is_factor(const Variable& variable) { return level_of(variable) != "continuous"; }

Variables::Variables(const Fit& fit) : fit_(fit) {
  for (const Variable& variable : fit.variables) {
    Entry& entry = entries_[variable.name];
    if (entry.variable != nullptr) continue;
    entry.variable = &variable;
    for (size_t at = 0; at < variable.values.size(); ++at)
      entry.positions.try_emplace(variable.values[at].text, at);
  }
}

const Variable* Variables::find(std::string_view name) const {
  const auto entry = entries_.find(name);
  return entry == entries_.end() ? nullptr : entry->second.variable;
}

bool Variables::is_factor(std::string_view name) const {
  const Variable* variable = find(name);
  return variable != nullptr && fit::is_factor(*variable);
}

std::optional<size_t> Variables::position(const Variable& variable, std::string_view value) const {
  const auto entry = entries_.find(variable.name);
  if (entry == entries_.end()) return {};
  const auto found = entry->second.positions.find(value);
  if (found == entry->second.positions.end()) return {};
  return found->second;
}

std::vector<std::string_view> Variables::names() const {
  std::vector<std::string_view> names;
  for (const Variable& variable : fit_.variables)
    names.push_back(variable.name);
  return names;
}

}  // namespace hierfit::fit
