// A message of the engine.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

/// A message's key with its parameters in document order, none of them empty.
struct WarningData {
  std::string fPattern;
  std::vector<std::string> fWarningParameters;
};

/// Whether one of the messages has this key.
inline bool HasWarning(const std::vector<WarningData>& warnings, std::string_view key) {
  return std::ranges::find(warnings, key, &WarningData::fPattern) != warnings.end();
}
