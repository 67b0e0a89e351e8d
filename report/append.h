// Puts a text together from its pieces.
#pragma once

#include <concepts>
#include <string>
#include <string_view>

namespace hierfit::report {

namespace detail {

inline void append_piece(std::string& out, std::string_view text) { out += text; }
inline void append_piece(std::string& out, char character) { out += character; }
template <std::integral Number>
void append_piece(std::string& out, Number number) {
  out += std::to_string(number);
}

}  // namespace detail

/// Appends texts, characters and whole numbers, these in decimal digits, from the first to the
/// last.
template <class... Pieces>
void append(std::string& out, const Pieces&... pieces) {
  (detail::append_piece(out, pieces), ...);
}

}  // namespace hierfit::report
