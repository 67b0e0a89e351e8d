// Fills the patterns of the string table with texts.
//
// A pattern is text with places for arguments, which count from 1:
//   ^n            argument n; a list joins its items with ", "
//   \n            a line feed
//   \:            a colon
//   [first:further:]n
//                 repeats over list argument n. The first round fills `first`, each later round
//                 `further`. Inside, "%k" is the k-th item of the first round and "^k" the k-th
//                 of a later one; the highest k of a sub-pattern is how many items a round takes,
//                 so "[%1=%2:,^1=^2:]1" shows the list "a 1 b 2" as "a=1,b=2". An empty `first`
//                 leaves the first round to `further`. An absent or empty list shows nothing.
// Text that only looks like one of these, such as a "[" without its ":]n", stands for itself.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <variant>
#include <vector>

#include "output/document.h"

namespace hierfit {

/// What a place takes: one text, or a list of them.
using PatternArgument = std::variant<output::Text, std::vector<output::Text>>;

/// The most bytes that a filled pattern holds; what is longer is cut at a character and ends in an
/// ellipsis.
inline constexpr size_t kMaxFilledBytes = size_t{1} << 20;

/// The pattern with its places filled, in one pass: an argument is never searched for places, and
/// the numbers inside it stay known. A place whose argument does not exist stays as it stands.
output::Text fill_pattern(std::string_view pattern, std::span<const PatternArgument> arguments);

}  // namespace hierfit
