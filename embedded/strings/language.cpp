#include "embedded/strings/language.h"

#include <algorithm>
#include <cctype>

namespace hierfit {
namespace {

/// The spaces ahead of a percent sign by their names in a header.
struct PercentSign {
  std::string_view space;
  const char* sign;
};
constexpr PercentSign kPercentSigns[] = {
    {"none", "%"}, {"no-break", "\u00A0%"}, {"narrow", "\u202F%"}};

/// Tags without a script, and the tag of the language in the script that they mean.
struct ScriptOfTag {
  std::string_view tag;
  const char* tag_with_script;
};
constexpr ScriptOfTag kScriptOfTag[] = {
    {"zh", "zh-Hans"},    {"zh-CN", "zh-Hans"}, {"zh-SG", "zh-Hans"}, {"zh-MY", "zh-Hans"},
    {"zh-TW", "zh-Hant"}, {"zh-HK", "zh-Hant"}, {"zh-MO", "zh-Hant"},
};

/// The value of a field of a header; empty when the header lacks it.
std::string_view field_of(std::string_view header, std::string_view name) {
  while (!header.empty()) {
    std::string_view line = header.substr(0, header.find('\n'));
    header.remove_prefix(std::min(line.size() + 1, header.size()));
    if (!line.starts_with(name) || !line.substr(name.size()).starts_with(": ")) continue;
    return line.substr(name.size() + 2);
  }
  return {};
}

/// Whether one of the words is a subtag of the tag.
bool names_part_of(std::string_view words, const std::string& tag) {
  while (!words.empty()) {
    const std::string word(words.substr(0, words.find(' ')));
    words.remove_prefix(std::min(word.size() + 1, words.size()));
    if ((tag + "-").find("-" + word + "-") != std::string::npos) return true;
  }
  return false;
}

}  // namespace

LanguageMarks marks_of(std::string_view header, std::string_view tag) {
  LanguageMarks marks;
  const std::string_view decimal_mark = field_of(header, "X-Decimal-Mark");
  const bool has_point = names_part_of(field_of(header, "X-Decimal-Point-In"), std::string(tag));
  if (!decimal_mark.empty() && !has_point) marks.numbers.decimal_mark = decimal_mark;
  const auto* percent =
      std::ranges::find(kPercentSigns, field_of(header, "X-Percent-Space"), &PercentSign::space);
  if (percent != std::end(kPercentSigns)) marks.numbers.percent = percent->sign;
  marks.right_to_left = field_of(header, "X-Direction") == "right-to-left";
  return marks;
}

std::string canonical_tag(std::string_view text) {
  if (text == "C") return "C";
  std::string tag;
  for (bool first = true; !text.empty(); first = false) {
    std::string part(text.substr(0, text.find_first_of("-_")));
    text.remove_prefix(std::min(part.size() + 1, text.size()));
    std::ranges::transform(part, part.begin(), [](unsigned char c) { return std::tolower(c); });
    const auto end = part.size() == 4 ? part.begin() + 1 : part.end();
    const bool has_capitals = !first && (part.size() == 2 || part.size() == 4);
    if (has_capitals)
      std::transform(part.begin(), end, part.begin(),
                     [](unsigned char c) { return std::toupper(c); });
    if (!first) tag += '-';
    tag += part;
  }
  return tag;
}

std::vector<std::string> serving_tags(std::string_view tag) {
  std::vector<std::string> tags = {std::string(tag)};
  for (size_t dash; (dash = tags.back().rfind('-')) != std::string::npos;) {
    tags.push_back(tags.back().substr(0, dash));
  }
  const auto* found = std::ranges::find(kScriptOfTag, tag, &ScriptOfTag::tag);
  if (found != std::end(kScriptOfTag)) tags.insert(tags.end() - 1, found->tag_with_script);
  return tags;
}

}  // namespace hierfit
