#include "report/chart/metrics.h"

#include <algorithm>
#include <iterator>
#include <utf8proc.h>

#include "output/utf8.h"
#include "report/chart/advance_widths.h"

namespace hierfit::report::chart {
namespace {

constexpr std::string_view kEllipsis = "\u2026";
constexpr double kOtherWidth = 0.62;  ///< in em, of scripts that the font lacks
/// Longer texts are cut before they are measured: no room of a chart holds more.
constexpr size_t kMostBytes = 8192;

double em_width(uint32_t code, bool bold) {
  const auto* found = std::ranges::lower_bound(kStretches, code, {}, &Stretch::last);
  if (found != std::end(kStretches) && code >= found->first) {
    const uint32_t at = found->begin + code - found->first;
    const uint16_t units = bold ? kBoldWidths[at] : kRegularWidths[at];
    if (units > 0) return units / kUnitsPerEm;
  }
  const int columns = utf8proc_charwidth(static_cast<utf8proc_int32_t>(code));
  return columns == 0 ? 0 : columns == 2 ? 1 : kOtherWidth;
}

/// A character of a text and its width.
struct Step {
  size_t bytes;
  double width;
  bool blank;
  bool wide;  ///< lines may break on both of its sides
  bool sign;  ///< joins words, as in "a*b": lines may break behind it
};

/// What stands at `at`; a byte that begins no character counts as one.
Step step_at(std::string_view text, size_t at, const Font& font) {
  const utf8::Character next = utf8::first_character(text.substr(at));
  const char32_t code = next.code;
  if (!next.valid) return {1, kOtherWidth * font.size, false, false, false};
  return {next.bytes.size(), em_width(code, font.bold) * font.size, code == ' ',
          utf8proc_charwidth(static_cast<utf8proc_int32_t>(code)) == 2, code == '*' || code == '/'};
}

/// Where the line that begins at `begin` ends, and where the next begins.
struct Break {
  size_t end;
  size_t next;
};

/// Breaks at the last blank that fits or beside the last wide character or behind the last joining
/// sign, else ahead of the first character that does not fit; a line has at least one character,
/// and one without a width stays with the one ahead of it.
Break next_break(std::string_view text, size_t begin, const Font& font, double width) {
  double used = 0;
  Break last{begin, begin};
  bool behind = false;
  for (size_t at = begin; at < text.size();) {
    if (text[at] == '\n') return {at, at + 1};
    const Step step = step_at(text, at, font);
    if (step.blank) last = {at, at + 1};
    if ((step.wide || behind) && step.width > 0 && !step.blank) last = {at, at};
    if (step.width > 0) behind = step.wide || step.sign;
    used += step.width;
    if (used > width && step.width > 0 && at > begin && !step.blank) {
      return last.end > begin ? last : Break{at, at};
    }
    at += step.bytes;
  }
  return {text.size(), text.size()};
}

/// As much of the line as fits with an ellipsis behind it.
std::string with_ellipsis(std::string_view line, const Font& font, double width) {
  double used = text_width(kEllipsis, font);
  size_t end = 0;
  while (end < line.size()) {
    const Step step = step_at(line, end, font);
    if (used + step.width > width) break;
    used += step.width;
    end += step.bytes;
  }
  while (end > 0 && line[end - 1] == ' ')
    --end;
  return std::string(line.substr(0, end)).append(kEllipsis);
}

}  // namespace

double text_width(std::string_view line, const Font& font) {
  line = utf8::first_bytes(line, kMostBytes);
  double width = 0;
  for (size_t at = 0; at < line.size();) {
    const Step step = step_at(line, at, font);
    width += step.width;
    at += step.bytes;
  }
  return width;
}

double TextLines::width(const Font& font) const {
  double widest = 0;
  for (const std::string& line : lines)
    widest = std::max(widest, text_width(line, font));
  return widest;
}

std::string fit_line(std::string_view text, const Font& font, double width, bool* cut) {
  std::string line(utf8::first_bytes(text, kMostBytes));
  std::ranges::replace(line, '\n', ' ');
  if (line.size() == text.size() && text_width(line, font) <= width) return line;
  if (cut != nullptr) *cut = true;
  return with_ellipsis(line, font, width);
}

TextLines fit_text(std::string_view text, const Font& font, double width, size_t most_lines) {
  TextLines fitted;
  text = utf8::first_bytes(text, kMostBytes);
  for (size_t begin = 0; begin < text.size() && fitted.lines.size() < most_lines;) {
    const Break found = next_break(text, begin, font, width);
    const std::string_view line = text.substr(begin, found.end - begin);
    fitted.cut = fitted.lines.size() + 1 == most_lines && found.next < text.size();
    fitted.lines.push_back(fitted.cut ? with_ellipsis(line, font, width) : std::string(line));
    begin = found.next;
  }
  return fitted;
}

std::string joined(const TextLines& lines) {
  std::string text;
  for (const std::string& line : lines.lines)
    (text += line) += '\n';
  return text;
}

double widest_word(std::string_view text, const Font& font) {
  text = utf8::first_bytes(text, kMostBytes);
  double widest = 0;
  double word = 0;
  for (size_t at = 0; at < text.size();) {
    const Step step = step_at(text, at, font);
    const bool ends = step.blank || text[at] == '\n';
    word = ends ? 0 : step.wide ? step.width : word + step.width;
    widest = std::max(widest, word);
    if (step.sign) word = 0;
    at += step.bytes;
  }
  return widest;
}

}  // namespace hierfit::report::chart
