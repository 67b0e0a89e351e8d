// What is wrong with a document, or odd about it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace hierfit::fit {

enum class Severity { Warning, Error };

/// One finding, with its place where there is one. Lines and columns count from 1; 0 is unknown.
struct Problem {
  Severity severity = Severity::Error;
  std::string sentence;
  size_t line = 0;
  size_t column = 0;

  bool operator==(const Problem&) const = default;
};

/// The findings in a document, up to a limit: a program that writes a wrong member writes it in
/// every row.
class Problems {
 public:
  void warn(std::string sentence, size_t line = 0, size_t column = 0);
  void fail(std::string sentence, size_t line = 0, size_t column = 0);

  bool has_errors() const { return errors_ > 0; }
  /// Whether so many are known that looking on tells nobody more.
  bool is_full() const { return errors_ > kMost; }
  const std::vector<Problem>& list() const { return list_; }

 private:
  static constexpr size_t kMost = 20;

  void add(Problem problem, size_t& count);

  std::vector<Problem> list_;
  size_t warnings_ = 0;
  size_t errors_ = 0;
};

/// The text in quotes, cut after some characters, without line ends: what a message shows of it.
std::string in_quotes(std::string_view text);
/// "a", "a or b", "a, b or c".
std::string listed(const std::vector<std::string_view>& words);
/// "; did you mean x?" when one of the words is near, else nothing.
std::string suggestion(std::string_view word, const std::vector<std::string_view>& known);

}  // namespace hierfit::fit
