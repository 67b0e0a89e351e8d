// Guesses what a misspelt word was meant for.
#pragma once

#include <span>
#include <string_view>

namespace hierfit::fit {

/// The known word that takes the fewest edits (a letter added, dropped, replaced, or two swapped)
/// to get from `word`; empty when even that one takes more than a third of its letters.
std::string_view nearest(std::string_view word, std::span<const std::string_view> known);

}  // namespace hierfit::fit
