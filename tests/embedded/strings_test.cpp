// Patterns and the string table.
#include <doctest/doctest.h>
#include <filesystem>
#include <fstream>

#include "host/string_table.h"

#include "embedded/error.h"
#include "embedded/session.h"
#include "embedded/strings/language.h"
#include "embedded/strings/pattern.h"
#include "embedded/strings/string_table.h"
#include "tests/embedded/sample_inputs.h"

using namespace hierfit;
using output::Text;

namespace {

const std::string kResources = HIERFIT_BINARY_DIR "/share/hierfit";

Text plain(std::string text) { return {std::move(text), {}}; }

PatternArgument list(std::initializer_list<const char*> items) {
  std::vector<Text> texts;
  for (const char* item : items) {
    texts.push_back(plain(item));
  }
  return texts;
}

std::string filled(std::string_view pattern, std::vector<PatternArgument> arguments) {
  return fill_pattern(pattern, arguments).shown;
}

}  // namespace

TEST_CASE("a pattern takes its arguments once") {
  CHECK(filled("^2 by ^1, ^2", {plain("a"), plain("b")}) == "b by a, b");
  CHECK(filled("^1^2", {plain("^2"), plain("[:^1:]1 %1 \\n")}) == "^2[:^1:]1 %1 \\n");
  CHECK(filled("Target\\: ^1\\n^1", {plain("y")}) == "Target: y\ny");
  CHECK(filled("^1: ^3 ^0 ^x ^", {plain("a")}) == "a: ^3 ^0 ^x ^");
  CHECK(filled("^1%", {plain("95")}) == "95%");
  CHECK(filled("of ^1", {list({"a", "b", "c"})}) == "of a, b, c");
  CHECK(filled("", {plain("a")}).empty());
}

TEST_CASE("list forms repeat over a list") {
  struct Row {
    const char* pattern;
    std::initializer_list<const char*> items;
    const char* text;
  };
  const Row rows[] = {
      {"[%1:\\n^1:]1", {"a", "b", "c"}, "a\nb\nc"},
      {"[%1:\n^1:]1", {"a", "b"}, "a\nb"},
      {"[:^1:]1", {"a", "b", "c"}, "abc"},
      {"fixed at [%1=%2:,^1=^2:]1.", {"x", "1", "y", "2", "z"}, "fixed at x=1,y=2,z=."},
      {"[%2 %1:; ^2 ^1:]1", {"a", "b", "c", "d"}, "b a; d c"},
      {"<[%1\\:%2:]1", {"a", "b"}, "<[%1:%2:]1"},
      {"[%1\\:%2: ^1:]1", {"a", "b", "c"}, "a:b c"},
      {"[Notes\\::\\n^1:]1", {"a", "b"}, "Notes:\na\nb"},
      {"<[%1:,^1:]1>", {}, "<>"},
      {"<[%1:,^1:]2>", {"a"}, "<>"},
      {"[%1:,:]1", {"a", "b", "c"}, "a,,"},
      {"[^1] [%1:+^1:]1 [", {"a", "b"}, "[a, b] a+b ["},
      {"[%1:,^1:]", {"a"}, "[%1:,a:]"},
      {"[%1:,^1:]1", {"^1", "[%1:", "%1"}, "^1,[%1:,%1"},
  };
  for (const Row& row : rows) {
    CAPTURE(row.pattern);
    CHECK(filled(row.pattern, {list(row.items)}) == row.text);
  }
  CHECK(filled("[%1:,^1:]2|[%1:,^1:]1", {plain("one text"), list({"a", "b"})}) == "a,b|one text");
}

TEST_CASE("numbers inside arguments stay known where they end up") {
  const output::Number number{-1.5, output::Format::GeneralStat, 0};
  const Text text{"b=-1.500", {{2, 6, number}}};
  const std::vector<PatternArgument> arguments = {plain("\u00e9"), std::vector<Text>{text, text}};
  const Text whole = fill_pattern("^1: [%1:; ^1:]2 ^2", arguments);
  CHECK(whole.shown == "\u00e9: b=-1.500; b=-1.500 b=-1.500, b=-1.500");
  REQUIRE(whole.numbers.size() == 4);
  for (const output::NumberSpan& span : whole.numbers) {
    CHECK(whole.shown.substr(span.begin, span.length) == "-1.500");
    CHECK(span.number == number);
  }
}

TEST_CASE("a filled pattern ends at a mebibyte, between two characters") {
  const std::string minus = "\u2212";
  std::string huge;
  while (huge.size() <= kMaxFilledBytes / 3) {
    huge += minus;
  }
  Text item = plain(huge);
  item.numbers.push_back({0, static_cast<uint32_t>(huge.size()), {}});
  const std::vector<PatternArgument> arguments = {std::vector<Text>(1000, item)};
  const Text cut = fill_pattern("x[:^1:]1", arguments);
  CHECK(cut.shown.size() <= kMaxFilledBytes);
  CHECK(cut.shown.size() > kMaxFilledBytes - 6);
  CHECK(cut.shown.ends_with(minus + "\u2026"));
  CHECK(cut.numbers.size() == 2);

  const std::string brackets(1 << 20, '[');
  CHECK(filled(brackets, {}) == brackets);
  CHECK(filled(brackets + ":", {}).ends_with("[\u2026"));
}

TEST_CASE("a language falls back to its head, and then to the keys") {
  struct Row {
    const char* language;
    const char* table;
  };
  const Row rows[] = {{"en", "en"}, {"en-GB", "en"}, {"en-Latn-GB", "en"}, {"C", "C"},
                      {"tlh", "C"}, {"", "C"},       {"../locale/en", "C"}};
  for (const auto& [language, table] : rows) {
    CAPTURE(language);
    CHECK(StringTable(kResources + "/locale", language).language() == table);
  }
  const StringTable english(kResources + "/locale", "en");
  CHECK(english.text("kGLMM_C8") != "kGLMM_C8");
  CHECK(english.text("no key of ours ^1") == "no key of ours ^1");
  CHECK(english.text("").empty());
  CHECK_FALSE(english.holds("no key of ours ^1"));
  const StringTable none(kResources + "/locale", "C");
  CHECK(none.text("kGLMM_C8") == "kGLMM_C8");
}

TEST_CASE("a file that is no catalogue is refused") {
  const std::string directory = HIERFIT_BINARY_DIR "/broken-locale";
  std::filesystem::create_directories(directory);
  for (const std::string content :
       {"", "text", "\xde\x12\x04\x95\xff\xff\xff\xff\xff\xff\xff\xff"}) {
    std::ofstream(directory + "/en.mo", std::ios::binary) << content;
    CHECK_THROWS_AS(StringTable(directory, "en"), FileError);
  }
  // Where its texts lie is found out when they are asked for.
  std::ifstream whole(kResources + "/locale/en.mo", std::ios::binary);
  std::string bytes{std::istreambuf_iterator<char>(whole), {}};
  const auto number_at = [&bytes](size_t at) {
    return static_cast<size_t>(static_cast<unsigned char>(bytes[at])) +
           (static_cast<size_t>(static_cast<unsigned char>(bytes[at + 1])) << 8);
  };
  bytes.replace(number_at(16), 8 * number_at(8), 8 * number_at(8), '\x7f');
  std::ofstream(directory + "/en.mo", std::ios::binary) << bytes;
  const auto look_up = [&] { return std::string(StringTable(directory, "en").text("Target ^1")); };
  CHECK_THROWS_AS(look_up(), FileError);
}

TEST_CASE("the string table library speaks the session's language") {
  Session session(test::session_input(), {.language = "en", .resource_directory = kResources});
  const ParserMessage message;
  CHECK(
      message.GetTranslatedText("^1 - ^2", "a", "b", nullptr, nullptr, nullptr) ==
      filled(StringTable(kResources + "/locale", "en").text("^1 - ^2"), {plain("a"), plain("b")}));
  CHECK(message.GetTranslatedText("not ^1 a ^2 key", nullptr, "^1", nullptr, nullptr, nullptr) ==
        "not  a ^1 key");

  FacSTDictionary dictionary(PathFactory::getPathInstance(3)->StringTablePath());
  int32_t code = 0;
  CHECK(dictionary.LookUp("kGLMM_C8", code) != "kGLMM_C8");
  CHECK(code == 0);
  CHECK(dictionary.LookUp("not ^1 a key", code) == "not ^1 a key");
  CHECK(code == 1);

  FacSTDictionary elsewhere("/nowhere/xx.mo");
  CHECK(elsewhere.LookUp("kGLMM_C8") == "kGLMM_C8");
  elsewhere.SetGlobalStringTable(PathFactory::getPathInstance()->StringTablePath());
  CHECK(elsewhere.LookUp("kGLMM_C8") != "kGLMM_C8");
}

TEST_CASE("the language chooses the marks of the document") {
  const auto document = [](const char* language) {
    Session session(test::session_input(),
                    {.language = language, .resource_directory = kResources});
    return session.take_document();
  };
  CHECK(document("en-GB").language == "en-GB");
  // Without a catalogue the texts are English, and so is the document.
  CHECK(document("C").language == "en");
  struct Row {
    const char* language;
    const char* decimal_mark;
    const char* percent;
  };
  const Row rows[] = {{"en", ".", "%"},          {"de-AT", ",", "\u00A0%"},
                      {"de-CH", ".", "\u00A0%"}, {"es-MX", ".", "\u00A0%"},
                      {"es", ",", "\u00A0%"},    {"fr-CA", ",", "\u202F%"},
                      {"pt-BR", ",", "%"},       {"C", ".", "%"}};
  for (const auto& [language, decimal_mark, percent] : rows) {
    CAPTURE(language);
    CHECK(document(language).numbers.decimal_mark == decimal_mark);
    CHECK(document(language).numbers.percent == percent);
    CHECK_FALSE(document(language).right_to_left);
  }
  const LanguageMarks arabic =
      marks_of("Language: ar\nX-Decimal-Mark: \u066B\nX-Direction: right-to-left\n", "ar-EG");
  CHECK(arabic.numbers.decimal_mark == "\u066B");
  CHECK(arabic.numbers.percent == "%");
  CHECK(arabic.right_to_left);
}

TEST_CASE("a tag names its catalogues") {
  CHECK(canonical_tag("pt_br") == "pt-BR");
  CHECK(canonical_tag("ZH_hANS-cn") == "zh-Hans-CN");
  CHECK(serving_tags("zh-CN") == std::vector<std::string>{"zh-CN", "zh-Hans", "zh"});
  CHECK(serving_tags("zh-Hant-HK") == std::vector<std::string>{"zh-Hant-HK", "zh-Hant", "zh"});
}
