// A message of the engine.
#pragma once

#include <string>
#include <vector>

/// A message's key with its parameters in document order, none of them empty.
struct WarningData {
  std::string fPattern;
  std::vector<std::string> fWarningParameters;
};
