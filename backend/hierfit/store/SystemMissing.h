// What stands for a value that the documents do not give.
#pragma once

#include <bit>
#include <cstdint>
#include <string_view>

/// The system-missing number, the lowest finite double. It is compared by equality.
inline constexpr double kSystemMissing = -1.7976931348623157e+308;
static_assert(std::bit_cast<uint64_t>(kSystemMissing) == 0xFFEFFFFFFFFFFFFF);

/// The item of an array that stands for a missing number.
inline constexpr std::string_view kMissingItem = "__MISSING__";
