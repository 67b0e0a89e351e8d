// Text services: all text is UTF-8.
#include "host/text.h"

namespace {

struct LeadByte {
  unsigned char mask;
  unsigned char bits;
  int length;
};
constexpr LeadByte kLeadBytes[] = {{0xE0, 0xC0, 2}, {0xF0, 0xE0, 3}, {0xF8, 0xF0, 4}};

int announced_length(unsigned char lead) {
  for (const LeadByte& row : kLeadBytes) {
    if ((lead & row.mask) == row.bits) return row.length;
  }
  return 1;
}

}  // namespace

int VELTMBmbclen_A(const char* text) {
  const int length = announced_length(static_cast<unsigned char>(*text));
  for (int index = 1; index < length; ++index) {
    // A sequence that breaks off, perhaps at the end of the text, begins no character.
    if ((static_cast<unsigned char>(text[index]) & 0xC0) != 0x80) return 1;
  }
  return length;
}
