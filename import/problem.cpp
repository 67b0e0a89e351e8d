#include "import/problem.h"

#include <algorithm>

#include "import/nearest.h"

namespace hierfit::fit {
namespace {

/// How many bytes of a text from a document a message shows.
constexpr size_t kShown = 60;

bool is_inside_character(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

}  // namespace

void Problems::warn(std::string sentence, size_t line, size_t column) {
  add({Severity::Warning, std::move(sentence), line, column}, warnings_);
}

void Problems::fail(std::string sentence, size_t line, size_t column) {
  add({Severity::Error, std::move(sentence), line, column}, errors_);
}

void Problems::add(Problem problem, size_t& count) {
  if (count < kMost) {
    list_.push_back(std::move(problem));
  } else if (count == kMost) {
    problem.sentence = problem.severity == Severity::Error ? "there is more that is wrong"
                                                           : "there is more of this kind";
    problem.line = problem.column = 0;
    list_.push_back(std::move(problem));
  }
  ++count;
}

std::string in_quotes(std::string_view text) {
  const bool whole = text.size() <= kShown;
  size_t end = std::min(text.size(), kShown);
  while (!whole && end > 0 && is_inside_character(text[end]))
    --end;
  std::string shown(text.substr(0, end));
  std::ranges::replace_if(
      shown, [](unsigned char c) { return c < 0x20 || c == 0x7F; }, ' ');
  return '"' + shown + (whole ? "\"" : "\u2026\"");
}

std::string listed(const std::vector<std::string_view>& words) {
  std::string text;
  for (size_t at = 0; at < words.size(); ++at) {
    if (at > 0) text += at + 1 == words.size() ? " or " : ", ";
    text += words[at];
  }
  return text;
}

std::string suggestion(std::string_view word, const std::vector<std::string_view>& known) {
  const std::string_view found = nearest(word, known);
  return found.empty() ? "" : "; did you mean " + std::string(found) + "?";
}

}  // namespace hierfit::fit
