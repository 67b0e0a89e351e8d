// Text services: all text is UTF-8.
#include "host/text.h"

#include <cstring>

#include "output/utf8.h"

int VELTMBmbclen_A(const char* text) {
  constexpr size_t kLongest = 4;
  const std::string_view head(text, strnlen(text, kLongest));
  // A sequence that breaks off, perhaps at the end of the text, begins no character.
  if (head.empty() || !hierfit::utf8::is_whole_sequence(head)) return 1;
  return static_cast<int>(hierfit::utf8::sequence_bytes(head));
}
