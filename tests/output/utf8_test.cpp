// UTF-8 that is not what it should be, and where a text may be cut.
#include "output/utf8.h"

#include <doctest/doctest.h>

using namespace hierfit;

TEST_CASE("texts keep what is valid in both encodings") {
  struct Row {
    std::string_view text;
    std::u16string_view units;
  };
  constexpr Row kRows[] = {{"a\u00e9\u4e00", u"a\u00e9\u4e00"},
                           {"\U0001F600", u"\U0001F600"},
                           {"a\xFFz", u"a\uFFFDz"},
                           {"\xE4\xB8z", u"\uFFFDz"},
                           {"\xC0\x80", u"\uFFFD"},
                           {"\xED\xA0\x80", u"\uFFFD"},
                           {"\xF4\x90\x80\x80", u"\uFFFD"},
                           {"\xE4", u"\uFFFD"}};
  for (const auto& [text, units] : kRows) {
    CAPTURE(text);
    CHECK(utf8::to_utf16(text) == units);
  }
  CHECK(utf8::from_utf16(u"\u00e9\u4e00\U0001F600") == "\u00e9\u4e00\U0001F600");
  const std::u16string halves = {0xD83D, u'a', 0xDE00, 0xD83D};
  CHECK(utf8::from_utf16(halves) == "\uFFFDa\uFFFD\uFFFD");
}

TEST_CASE("a walk goes over each byte once, whatever it meets") {
  const std::string_view text = "a\xE4\xB8\u00e9\xFF\U0001F600\xE4";
  std::string walked;
  std::string valid;
  for (const utf8::Character& each : utf8::Characters(text)) {
    walked += each.bytes;
    if (each.valid) utf8::append(valid, each.code);
  }
  CHECK(walked == text);
  CHECK(valid == "a\u00e9\U0001F600");
}

TEST_CASE("a cut keeps characters whole") {
  const std::string_view text = "a\u00e9\U0001F600z";
  constexpr size_t kBytes[] = {0, 1, 1, 3, 3, 3, 3, 7, 8, 8};
  for (size_t most = 0; most < std::size(kBytes); ++most) {
    CAPTURE(most);
    CHECK(utf8::first_bytes(text, most).size() == kBytes[most]);
  }
  constexpr size_t kUnits[] = {0, 1, 3, 3, 7, 8, 8};
  for (size_t most = 0; most < std::size(kUnits); ++most) {
    CAPTURE(most);
    CHECK(utf8::first_units(text, most).size() == kUnits[most]);
  }
}
