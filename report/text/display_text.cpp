// Text measured and wrapped in the columns of a terminal.
#include "report/text/display_text.h"

#include <algorithm>
#include <cstdint>
#include <utf8proc.h>

#include "output/utf8.h"

namespace hierfit::report::text {

namespace {

/// A word of wide characters may end its line at each of them, but a column of single ones reads
/// badly: four of them count as a piece.
constexpr size_t kWideWord = 8;

struct Character {
  int32_t code = 0;
  size_t bytes = 1;
  size_t width = 1;
};

/// The character at the head of a text that is not empty.
Character first_character(std::string_view text) {
  const auto byte = static_cast<unsigned char>(text[0]);
  if (byte < 0x80) return {.code = byte, .bytes = 1, .width = byte < 0x20 ? 0U : 1U};
  const utf8::Character first = utf8::first_character(text);
  if (!first.valid) return {};
  const auto code = static_cast<int32_t>(first.code);
  return {.code = code,
          .bytes = first.bytes.size(),
          .width = static_cast<size_t>(std::max(0, utf8proc_charwidth(code)))};
}

bool reorders(int32_t code) {
  return (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
}

/// Calls `visit` with each stretch of the text between two dividers.
template <class Visit>
void split(std::string_view text, char divider, Visit visit) {
  for (;;) {
    const size_t end = text.find(divider);
    visit(text.substr(0, end));
    if (end == std::string_view::npos) return;
    text.remove_prefix(end + 1);
  }
}

bool holds(std::u32string_view set, int32_t code) {
  return set.find(static_cast<char32_t>(code)) != std::u32string_view::npos;
}

bool is_digit(int32_t code) { return code >= '0' && code <= '9'; }

/// Whether a line may end between two characters of a word: around a wide character, as in Chinese
/// and Japanese, but not behind an opening bracket nor ahead of a closing one or a stop; ahead of a
/// bracket and behind an operator or a separator, but not inside a number.
bool divides(const Character& before, const Character& after) {
  constexpr std::u32string_view kNotAtEnd = U"([{\u3008\u300A\u300C\u300E\u3010\uFF08";
  constexpr std::u32string_view kNotAtStart =
      U")]}\u3001\u3002\u3009\u300B\u300D\u300F\u3011\u30FC\uFF01\uFF05\uFF09\uFF0C\uFF1A\uFF1B"
      U"\uFF1F,.:;%";
  if (before.width == 2 || after.width == 2) {
    return after.width > 0 && !holds(kNotAtEnd, before.code) && !holds(kNotAtStart, after.code);
  }
  if (holds(U",:", before.code)) return !is_digit(after.code);
  return holds(U"([{", after.code) || holds(U"*/=;|+&", before.code);
}

/// The bytes of the first part that a word may be divided into; all of them when it has one part.
size_t first_piece(std::string_view word) {
  Character before = first_character(word);
  for (size_t at = before.bytes; at < word.size();) {
    const Character after = first_character(word.substr(at));
    if (divides(before, after)) return at;
    at += after.bytes;
    if (after.width > 0) before = after;
  }
  return word.size();
}

/// Whether the word is of a script that does without blanks, so that its line need not end first.
bool runs_on(std::string_view word) {
  while (!word.empty()) {
    const Character next = first_character(word);
    if (next.width == 2) return true;
    word.remove_prefix(next.bytes);
  }
  return false;
}

/// Fills lines with words.
class Wrapper {
 public:
  explicit Wrapper(size_t width) : width_(std::max<size_t>(width, 2)) {}

  void add_paragraph(std::string_view paragraph) {
    split(paragraph, ' ', [this](std::string_view word) { add_word(word); });
    end_line();
  }
  std::vector<std::string> lines() && { return std::move(lines_); }

 private:
  void add_word(std::string_view word) {
    const size_t width = display_width(word);
    const size_t gap = line_.empty() ? 0 : 1;
    if (used_ + gap + width <= width_) return append(gap, word, width);
    if (runs_on(word)) {
      if (used_ + gap < width_) append(gap, "", 0);
    } else {
      if (!line_.empty()) end_line();
      if (width <= width_) return append(0, word, width);
    }
    while (!word.empty()) {
      const size_t bytes = first_piece(word);
      add_piece(word.substr(0, bytes));
      word.remove_prefix(bytes);
    }
  }

  void add_piece(std::string_view piece) {
    const size_t width = display_width(piece);
    if (used_ + width <= width_) return append(0, piece, width);
    if (width > width_) return break_piece(piece);
    end_line();
    append(0, piece, width);
  }

  void append(size_t gap, std::string_view word, size_t width) {
    line_.append(gap, ' ').append(word);
    used_ += gap + width;
  }

  void break_piece(std::string_view piece) {
    while (!piece.empty()) {
      const Character next = first_character(piece);
      if (used_ + next.width > width_) end_line();
      line_.append(piece.substr(0, next.bytes));
      used_ += next.width;
      piece.remove_prefix(next.bytes);
    }
  }

  void end_line() {
    if (line_.ends_with(' ')) line_.pop_back();
    lines_.push_back(std::move(line_));
    line_.clear();
    used_ = 0;
  }

  size_t width_;
  std::vector<std::string> lines_;
  std::string line_;
  size_t used_ = 0;
};

template <class Measure>
size_t longest(std::string_view text, Measure measure) {
  size_t width = 0;
  split(text, '\n', [&](std::string_view line) { width = std::max(width, measure(line)); });
  return width;
}

}  // namespace

size_t display_width(std::string_view line) {
  size_t width = 0;
  while (!line.empty()) {
    const Character next = first_character(line);
    width += next.width;
    line.remove_prefix(next.bytes);
  }
  return width;
}

std::string printable(std::string_view text) {
  std::string safe;
  safe.reserve(text.size());
  while (!text.empty()) {
    const Character next = first_character(text);
    const bool control = next.code < 0x20 || (next.code >= 0x7F && next.code < 0xA0);
    if (next.code == '\t') {
      safe += ' ';
    } else if (control && next.code != '\n') {
      safe += "\uFFFD";
    } else if (!reorders(next.code)) {
      safe.append(text.substr(0, next.bytes));
    }
    text.remove_prefix(next.bytes);
  }
  return safe;
}

std::vector<std::string> wrapped(std::string_view text, size_t width) {
  Wrapper wrapper(width);
  split(text, '\n', [&](std::string_view paragraph) { wrapper.add_paragraph(paragraph); });
  return std::move(wrapper).lines();
}

size_t longest_word(std::string_view text) {
  return longest(text, [](std::string_view line) {
    size_t width = 0;
    split(line, ' ', [&](std::string_view word) { width = std::max(width, display_width(word)); });
    return width;
  });
}

size_t longest_piece(std::string_view text) {
  return longest(text, [](std::string_view line) {
    size_t width = 0;
    split(line, ' ', [&](std::string_view word) {
      if (runs_on(word)) width = std::max(width, std::min(display_width(word), kWideWord));
      for (size_t bytes = 0; !word.empty(); word.remove_prefix(bytes)) {
        bytes = first_piece(word);
        width = std::max(width, display_width(word.substr(0, bytes)));
      }
    });
    return width;
  });
}

size_t longest_line(std::string_view text) { return longest(text, display_width); }

}  // namespace hierfit::report::text
