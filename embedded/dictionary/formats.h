// The print formats that variables start from.
#pragma once

#include "host/dictionary.h"

namespace hierfit {

inline constexpr VELT_Format kStringFormat{8, kStringFormatType, 0};
inline constexpr VELT_Format kIntegerFormat{8, 5, 0};
inline constexpr VELT_Format kNumberFormat{8, 5, 2};

}  // namespace hierfit
