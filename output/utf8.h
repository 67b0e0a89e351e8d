// UTF-8 text: its characters, where it may be cut, and its UTF-16.
#pragma once

#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>

namespace hierfit::utf8 {

/// Stands for what is no character.
inline constexpr char32_t kReplacement = 0xFFFD;

/// A character of a text, or a byte that begins none.
struct Character {
  char32_t code = kReplacement;
  std::string_view bytes;  ///< as they stand in the text
  bool valid = false;      ///< false: `bytes` is one byte, and no character begins with it
};

namespace detail {
Character first_beyond_ascii(std::string_view text);
}

/// The character at the head of a text that is not empty.
inline Character first_character(std::string_view text) {
  const auto byte = static_cast<unsigned char>(text[0]);
  if (byte < 0x80) return {byte, text.substr(0, 1), true};
  return detail::first_beyond_ascii(text);
}

/// The characters of a text: `for (const utf8::Character& each : utf8::Characters(text))`.
class Characters {
 public:
  explicit Characters(std::string_view text) : text_(text) {}

  class Iterator {
   public:
    explicit Iterator(std::string_view rest) : rest_(rest) { read(); }
    const Character& operator*() const { return character_; }
    Iterator& operator++() {
      rest_.remove_prefix(character_.bytes.size());
      read();
      return *this;
    }
    bool operator==(std::default_sentinel_t) const { return rest_.empty(); }

   private:
    void read() {
      if (!rest_.empty()) character_ = first_character(rest_);
    }
    std::string_view rest_;
    Character character_;
  };

  Iterator begin() const { return Iterator(text_); }
  std::default_sentinel_t end() const { return {}; }

 private:
  std::string_view text_;
};

/// Appends a character; it must be one.
void append(std::string& out, char32_t code);

/// Whether Unicode keeps this code from ever being a character (U+FDD0, U+FFFE, U+1FFFE, ...).
constexpr bool is_noncharacter(char32_t code) {
  return (code >= 0xFDD0 && code <= 0xFDEF) || (code & 0xFFFE) == 0xFFFE;
}

/// Whether XML 1.0 has this character.
bool is_xml_character(char32_t code);

/// The bytes of the sequence that begins a text, at least 1 and at most 4: as many as its first
/// byte announces, up to one that does not belong there.
size_t sequence_bytes(std::string_view text);
/// Whether the sequence that begins a text has all its bytes.
bool is_whole_sequence(std::string_view text);

/// As many whole characters from the start as `most` bytes hold.
std::string_view first_bytes(std::string_view text, size_t most);
/// As many whole characters from the start as `most` units of UTF-16 hold.
std::string_view first_units(std::string_view text, size_t most);

/// `kReplacement` stands for a sequence that is no character, and for half a pair.
std::u16string to_utf16(std::string_view text);
std::string from_utf16(std::u16string_view text);

}  // namespace hierfit::utf8
