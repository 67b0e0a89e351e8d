// Runs the command in a shell and in a folder of its own.
#pragma once

#include <filesystem>
#include <string>

namespace shell_test {

extern const std::string kCommand;
extern const std::string kExample;    ///< a folder of the examples, with "/" behind
extern const std::string kDocuments;  ///< its model document and its result document

std::string text_of(const std::filesystem::path& file);
void write(const std::filesystem::path& file, const std::string& text);

/// What a report in text or JSON says from its results on: what is ahead of them names the files.
std::string results_of(const std::string& report);

/// An empty directory for one test, gone with it.
class Directory {
 public:
  Directory();
  ~Directory();

  std::string operator/(const std::string& name) const { return path_ + "/" + name; }
  /// The names in it, sorted, each with a blank behind.
  std::string listing() const;

 private:
  const std::string path_;
};

struct Outcome {
  int status = -1;
  std::string output;
  std::string errors;
};

/// Runs a line of the shell in which `hierfit` is the command.
Outcome shell(const std::string& line);

}  // namespace shell_test
