// A message of the engine.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// A message's key with its parameters in document order, none of them empty.
struct WarningData {
  std::string fPattern;
  std::vector<std::string> fWarningParameters;
};

/// The position of the first message that has this key; their number when none has.
inline std::size_t FindWarning(const std::vector<WarningData>& warnings, std::string_view key) {
  const auto found = std::ranges::find(warnings, key, &WarningData::fPattern);
  return static_cast<std::size_t>(found - warnings.begin());
}

/// Whether one of the messages has this key.
inline bool HasWarning(const std::vector<WarningData>& warnings, std::string_view key) {
  return FindWarning(warnings, key) < warnings.size();
}
