#include "embedded/strings/language.h"

#include <algorithm>

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

}  // namespace hierfit
