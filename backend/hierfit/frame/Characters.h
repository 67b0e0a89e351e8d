// Where the characters of a text in the local encoding end.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>

#include "host/text.h"

/// The end of the character that begins at a place of the text. It lies behind that place and
/// within the text, whatever length the host gives.
inline std::size_t EndOfCharacter(const std::string& text, std::size_t place) {
  const int length = std::max(VELTMBmbclen_A(text.c_str() + place), 1);
  return place + std::min(static_cast<std::size_t>(length), text.size() - place);
}
