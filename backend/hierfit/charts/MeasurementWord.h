// The words for the kinds of nodes in a diagram.
#pragma once

#include <cstdint>

#include "host/dictionary.h"

inline constexpr char kUnknownWord[] = "unknown";
inline constexpr char kInteractionWord[] = "interaction";
inline constexpr char kInterceptWord[] = "intercept";

/// The word for the measurement level of a variable; `otherwise` for a level that has none.
inline const char* MeasurementWord(const VELT_Variable& variable, const char* otherwise) {
  constexpr const char* kWords[] = {"categorical", "ordinal", "continuous"};
  const int32_t level = variable.GetMeasurementLevel();
  return level >= 1 && level <= 3 ? kWords[level - 1] : otherwise;
}
