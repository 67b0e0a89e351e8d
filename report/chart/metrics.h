// Text measured and broken into lines by the widths of a real font, the same on every machine.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace hierfit::report::chart {

/// A size in pixels, and a weight.
struct Font {
  double size = 12;
  bool bold = false;

  /// From one line to the next.
  double line_height() const { return size * 1.25; }
};

/// The width of one line in pixels: Liberation Sans, which is as wide as Arial. Wide characters
/// take one em, combining ones nothing; other scripts take a mean width.
double text_width(std::string_view line, const Font& font);

/// Lines that fit a room.
struct TextLines {
  std::vector<std::string> lines;  ///< none for an empty text
  bool cut = false;                ///< an ellipsis stands for what did not fit

  double width(const Font& font) const;
};

/// The text in at most `most_lines` lines, each at most `width` pixels: broken at its line feeds,
/// else at blanks, beside wide characters and behind "*" and "/", else inside a word. The last line
/// ends in an ellipsis when more would follow.
TextLines fit_text(std::string_view text, const Font& font, double width, size_t most_lines);

/// The same in one line; line feeds count as blanks.
std::string fit_line(std::string_view text, const Font& font, double width, bool* cut = nullptr);

/// Whether two different texts look the same once `fit` has cut them.
template <class Texts, class Fit>
bool are_cut_alike(const Texts& texts, Fit fit) {
  std::map<std::string, std::string_view> whole;
  for (const std::string& text : texts) {
    const auto [found, is_new] = whole.try_emplace(fit(text), text);
    if (!is_new && found->second != text) return true;
  }
  return false;
}

/// The lines of a text as one, to be compared.
std::string joined(const TextLines& lines);

/// The width of the widest word, for deciding whether a text can be broken at blanks alone.
double widest_word(std::string_view text, const Font& font);

}  // namespace hierfit::report::chart
