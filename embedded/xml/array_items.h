// Splits the text of an `Array` element.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace hierfit::xml {

/// Replaces `items` by those of a text, which white space separates; the room of the old ones is
/// used again. An item that begins with a double quote goes to the next one and may hold white
/// space, `\"` for a quote and `\\` for a backslash. False when a quote is left open, or an item
/// goes on behind its closing quote.
bool split_items(std::string_view text, std::vector<std::string>& items);

}  // namespace hierfit::xml
