// The options of the command: one table from which the parser and the help text are made.
#pragma once

#include <span>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

namespace hierfit::app {

/// What the command line asks for.
struct Options {
  std::string model;                 ///< the model document; "-" is standard input
  std::string result;                ///< the result document
  std::vector<std::string> outputs;  ///< in the order given; "-" is standard output
  std::string format;                ///< a form's name; empty: the endings tell
  std::string dictionary;            ///< empty: none
  std::string language;              ///< empty: the environment tells
  std::string journal;               ///< empty: none
  std::string colour = "auto";       ///< auto, always, never
  bool quiet = false;
  bool help = false;
  bool version = false;
};

/// One option. A `bool` takes no argument, a list may be given more than once.
struct OptionRow {
  const char* names;     ///< "-o,--output"
  const char* argument;  ///< what the help text calls its argument; null for a flag
  const char* help;
  std::variant<std::string Options::*, std::vector<std::string> Options::*, bool Options::*> target;
};

std::span<const OptionRow> option_rows();

/// A command line that cannot be understood; `what()` says why in one sentence.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Reads the command line. Throws `UsageError`. Files are neither opened nor looked for.
Options parse_options(int argument_count, const char* const* arguments);

/// The text of `--help`.
std::string help_text();

}  // namespace hierfit::app
