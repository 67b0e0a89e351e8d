// The options of the command: one table from which the parser, the help text, the manual page and
// the completions of the shells are made.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace hierfit::app {

/// Commands, as the first word of the command line. Without one a report is made.
inline constexpr std::string_view kImport = "import";
inline constexpr std::string_view kCheck = "check";

/// What the command line asks for.
struct Options {
  std::string command;              ///< empty: make a report
  std::vector<std::string> inputs;  ///< documents in twos, fits, and folders; "-" is standard input
  std::vector<std::string> outputs;      ///< in the order given; "-" is standard output
  std::vector<std::string> forms;        ///< names of forms; empty: the endings tell
  std::string dictionary;                ///< empty: none
  std::string language;                  ///< empty: the environment tells
  std::string title;                     ///< of the report; empty: the documents tell
  std::string labels = "label";          ///< the name of a naming
  std::string style = "default";         ///< the name of a preset
  std::string charts;                    ///< the folder for charts as files; empty: none
  std::vector<std::string> chart_forms;  ///< empty: SVG
  size_t chart = 0;                      ///< 0: all
  double chart_width = 720;              ///< pixels of 1/96 inch
  double resolution = 192;               ///< points an inch
  std::vector<std::string> tables;       ///< names of tables and figures; empty: all
  bool fragment = false;
  std::string id_prefix = "hierfit-";  ///< of a fragment
  bool no_styles = false;              ///< leave the style sheet of a fragment out
  size_t width = kTerminalWidth;       ///< columns of the text form; 0: no limit
  size_t jobs = 0;                     ///< reports made at a time; 0: one a core
  std::string journal;                 ///< empty: none
  std::string colour = "auto";         ///< auto, always, never
  std::string completion;              ///< a shell
  bool no_repeats = false;
  bool no_extra_charts = false;
  bool manual = false;
  bool quiet = false;
  bool help = false;
  bool version = false;

  static constexpr size_t kTerminalWidth = SIZE_MAX;
};

/// Parts of the help text, in its order.
enum class Section : uint8_t { Input, Output, Display, Charts, Several, Other };
inline constexpr std::string_view kSectionTitles[] = {
    "Input", "Output", "Display", "Charts", "Several reports", "Messages and help"};

/// What an option takes.
enum class Takes : uint8_t { Nothing, File, Folder, Word, Number, Text };

/// A member of `Options`. A `bool` takes no argument, a list may be given more than once.
using Target = std::variant<bool Options::*,
                            std::string Options::*,
                            std::vector<std::string> Options::*,
                            size_t Options::*,
                            double Options::*>;

/// One option.
struct OptionRow {
  Section section;
  const char* names;     ///< "-o,--output"
  const char* argument;  ///< what the help text calls its argument; null for a flag
  Takes takes;
  const char* help;
  Target target;
  std::vector<std::string_view> (*words)() = nullptr;  ///< of `Takes::Word`: those it can be
  double least = 0;                                    ///< of `Takes::Number`
  double most = 0;
  bool (*also)(std::string_view) = nullptr;  ///< of `Takes::Word`: whether it can be another, too

  /// "-o", or nothing.
  std::string_view short_name() const;
  /// "--output".
  std::string_view long_name() const;
  /// Whether it may be given more than once.
  bool repeats() const;
  /// The help text with the words that the option can be.
  std::string full_help() const;
};

std::span<const OptionRow> option_rows();

/// The lines of ways to call the command, without its name.
std::span<const std::string_view> usage_lines();

/// What the exit status says: the statuses from 0 on.
std::span<const std::string_view> status_lines();

/// A command line that cannot be understood; `what()` says why in one sentence.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Reads the command line. Throws `UsageError`. Files are neither opened nor looked for.
Options parse_options(int argument_count, const char* const* arguments);

/// The text of `--help`.
std::string help_text();

/// "a", "a or b", "a, b or c".
std::string listed(std::span<const std::string_view> words);

}  // namespace hierfit::app
