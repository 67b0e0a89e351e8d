// Shortens texts that no reader takes in.
#pragma once

#include <cstddef>
#include <string>

namespace hierfit {

/// Cuts UTF-8 text that is longer than `most` bytes at a character, with an ellipsis behind, so
/// that `most` bytes hold both. `most` is at least 3. Gives the bytes that are left of the text
/// itself.
size_t cut_text(std::string& text, size_t most);

}  // namespace hierfit
