// How a power link shows its exponent.
#pragma once

#include <cstdint>
#include <string>

#include "backend/hierfit/store/BuildSettings.h"

/// The pattern that takes the exponent of a power link; empty for any other link, and for a nominal
/// or ordinal target.
inline std::string LinkPowerPattern(int32_t link, int32_t distribution) {
  const bool isMultinomial =
      distribution == Distribution::kNominal || distribution == Distribution::kOrdinal;
  return link == Link::kPower && !isMultinomial ? "Power(^1)" : "";
}
