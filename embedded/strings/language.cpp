#include "embedded/strings/language.h"

#include <algorithm>
#include <cctype>

namespace hierfit {
namespace {

constexpr std::string_view kRightToLeft[] = {"ar", "dv", "fa", "he", "ps", "ur", "yi"};

constexpr std::string_view kDecimalComma[] = {
    "af", "be", "bg", "ca", "cs", "da", "de", "el", "es", "et", "eu", "fi", "fr", "gl",
    "hr", "hu", "hy", "id", "is", "it", "ka", "kk", "lt", "lv", "mk", "nb", "nl", "nn",
    "no", "pl", "pt", "ro", "ru", "sk", "sl", "sq", "sr", "sv", "tr", "uk", "vi"};

/// Regions that write a point where their language has a comma.
constexpr std::string_view kDecimalPoint[] = {"de-CH", "de-LI", "es-DO", "es-GT", "es-HN",
                                              "es-MX", "es-NI", "es-PA", "es-PE", "es-PR",
                                              "es-SV", "es-US", "it-CH"};

/// Languages that set a no-break space ahead of the percent sign, and French its narrow one.
constexpr std::string_view kSpacedPercent[] = {"cs", "da", "de", "es", "fi", "hr", "nb", "nn",
                                               "no", "pl", "ro", "ru", "sk", "sl", "sv", "uk"};
constexpr const char* kNoBreakPercent = "\u00A0%";
constexpr const char* kNarrowPercent = "\u202F%";

template <size_t Size>
bool holds(const std::string_view (&tags)[Size], std::string_view tag) {
  return std::ranges::find(tags, tag) != std::end(tags);
}

/// Tags without a script, and the tag of the language in the script that they mean.
struct ScriptOfTag {
  std::string_view tag;
  const char* tag_with_script;
};
constexpr ScriptOfTag kScriptOfTag[] = {
    {"zh", "zh-Hans"},    {"zh-CN", "zh-Hans"}, {"zh-SG", "zh-Hans"}, {"zh-MY", "zh-Hans"},
    {"zh-TW", "zh-Hant"}, {"zh-HK", "zh-Hant"}, {"zh-MO", "zh-Hant"},
};

std::string_view head(std::string_view tag) { return tag.substr(0, tag.find('-')); }

}  // namespace

bool is_right_to_left(std::string_view tag) { return holds(kRightToLeft, head(tag)); }

output::NumberStyle number_style(std::string_view tag) {
  output::NumberStyle style;
  if (holds(kDecimalComma, head(tag)) && !holds(kDecimalPoint, tag)) style.decimal_mark = ",";
  if (holds(kSpacedPercent, head(tag))) style.percent = kNoBreakPercent;
  if (head(tag) == "fr") style.percent = kNarrowPercent;
  return style;
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
