#include "app/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <sstream>

#include "embedded/labels/labelled.h"
#include "import/nearest.h"
#include "report/chart_files.h"
#include "report/preset.h"
#include "report/report.h"

namespace hierfit::app {
namespace {

using Words = std::vector<std::string_view>;

/// The names of the rows of a table.
template <typename Rows>
Words names_of(const Rows& rows) {
  Words names;
  for (const auto& row : rows)
    names.push_back(row.name);
  return names;
}

Words form_names() { return names_of(report::kForms); }
Words chart_form_names() { return names_of(report::kChartForms); }
Words style_names() { return names_of(report::kPresets); }
Words naming_names() { return names_of(kNamings); }
Words colour_words() { return {"auto", "always", "never"}; }
Words shell_names() { return {"bash", "zsh", "fish"}; }

/// An ending stands for its form as well as the name does.
bool is_form(std::string_view word) { return report::form_by_name(word) != nullptr; }

constexpr OptionRow kRows[] = {
    {Section::Input, "-d,--dictionary", "FILE", Takes::File,
     "labels, formats and value labels, as a Table Schema JSON file", &Options::dictionary},

    {Section::Output, "-o,--output", "FILE", Takes::File,
     "write the report; the ending picks the form. Without it the text form goes to standard "
     "output",
     &Options::outputs},
    {Section::Output, "-f,--format", "FORM", Takes::Word,
     "the form of an output whose ending tells none, or of the only output; of several reports, "
     "one of their forms",
     &Options::forms, &form_names, 0, 0, &is_form},
    {Section::Output, "-t,--tables", "NAME,...", Takes::Text,
     "only these tables and figures, by the names that JSON gives them as subtype",
     &Options::tables},
    {Section::Output, "--fragment", nullptr, Takes::Nothing,
     "a piece for another page, article or text in place of a whole one: html, latex, or the "
     "markup of a docx, which has no figures",
     &Options::fragment},
    {Section::Output, "--id-prefix", "TEXT", Takes::Text,
     "what the ids of an html fragment begin with, else hierfit-", &Options::id_prefix},
    {Section::Output, "--no-styles", nullptr, Takes::Nothing,
     "an html fragment for a page that has the style sheet of another one", &Options::no_styles},
    {Section::Output, "--journal", "FILE", Takes::File, "write the host call journal",
     &Options::journal},

    {Section::Display, "--title", "TEXT", Takes::Text,
     "the title of the report, else what the model document is described as, else the name of the "
     "model",
     &Options::title},
    {Section::Display, "-l,--language", "TAG", Takes::Text,
     "the output language, else that of LC_ALL, LC_MESSAGES or LANG; C shows every key as it "
     "stands",
     &Options::language},
    {Section::Display, "--labels", "KIND", Takes::Word,
     "what variables and their values are called, by the dictionary; both is label (name)",
     &Options::labels, &naming_names},
    {Section::Display, "-s,--style", "STYLE", Takes::Word,
     "the house style of numbers and symbols; which cells there are does not depend on it",
     &Options::style, &style_names},
    {Section::Display, "--no-repeats", nullptr, Takes::Nothing,
     "leave out tables and charts that show what an earlier one shows", &Options::no_repeats},
    {Section::Display, "--width", "COLUMNS", Takes::Number,
     "the width of the text form, else that of the terminal, else 80; 0 for no limit",
     &Options::width, nullptr, 0, 100000},

    {Section::Charts, "--charts", "FOLDER", Takes::Folder, "write each chart as a file",
     &Options::charts},
    {Section::Charts, "--chart-format", "FORM", Takes::Word, "the form of those files, else svg",
     &Options::chart_forms, &chart_form_names},
    {Section::Charts, "--chart", "NUMBER", Takes::Number,
     "the only chart that an output of pictures shows, else all of them", &Options::chart, nullptr,
     1, 1e6},
    {Section::Charts, "--no-extra-charts", nullptr, Takes::Nothing,
     "leave out the charts and tables that the report makes of the tables itself",
     &Options::no_extra_charts},
    {Section::Charts, "--chart-width", "PIXELS", Takes::Number,
     "the width of a chart in pixels of 1/96 inch, else 720", &Options::chart_width, nullptr, 200,
     10000},
    {Section::Charts, "--resolution", "DPI", Takes::Number,
     "the resolution of pictures made of points, in points an inch, else 192", &Options::resolution,
     nullptr, 24, 1200},

    {Section::Several, "-j,--jobs", "NUMBER", Takes::Number,
     "how many reports are made at a time, else as many as the machine has cores", &Options::jobs,
     nullptr, 1, 1024},

    {Section::Other, "--color", "WHEN", Takes::Word, "colour on terminals", &Options::colour,
     &colour_words},
    {Section::Other, "-q,--quiet", nullptr, Takes::Nothing, "show no progress", &Options::quiet},
    {Section::Other, "--completion", "SHELL", Takes::Word, "write the completions for a shell",
     &Options::completion, &shell_names},
    {Section::Other, "--manual", nullptr, Takes::Nothing, "write the manual page, as mdoc",
     &Options::manual},
    {Section::Other, "-h,--help", nullptr, Takes::Nothing, "show this text", &Options::help},
    {Section::Other, "--version", nullptr, Takes::Nothing, "show the version", &Options::version},
};

constexpr std::string_view kUsage[] = {
    "[options] MODEL.pmml RESULT.xml", "[options] FIT.json", "[options] -o FOLDER PAIRS",
    "import -o FOLDER FIT.json",       "check PAIRS",
};

constexpr std::string_view kStatuses[] = {
    "the report is written",
    "the documents could not be read as a result of this procedure",
    "a wrong option, or a file that cannot be read or written",
};

constexpr const char* kHead =
    "\n"
    "Makes a report from the model document and the result document of a generalized\n"
    "linear mixed model, or from a fit document that any program can write. \"-\" as a\n"
    "file is standard input or standard output. PAIRS are such documents in twos, fits,\n"
    "or folders that hold them: each makes a report in FOLDER, beside an index of all.\n"
    "import writes the two documents of a fit; check says what is wrong with documents.\n";

constexpr std::string_view kEndOfOptions = "--";

constexpr size_t kHelpColumn = 27;
constexpr size_t kHelpWidth = 80;

/// "-o, --output FILE", with long names under one another.
std::string left_side(const OptionRow& row) {
  std::string text = row.short_name().empty() ? "    " : std::string(row.short_name()) + ", ";
  text += row.long_name();
  if (row.argument != nullptr) text += std::string(" ") + row.argument;
  return "  " + text;
}

/// Adds the words of `text`, in lines that begin at `indent`. The line has come to `column`.
void add_wrapped(std::string& out, std::string_view text, size_t column, size_t indent) {
  bool first = true;
  while (!text.empty()) {
    const std::string_view word = text.substr(0, text.find(' '));
    if (!first && column + 1 + word.size() > kHelpWidth) {
      out += '\n' + std::string(indent, ' ');
      column = indent;
    } else if (!first) {
      out += ' ';
      ++column;
    }
    first = false;
    out += word;
    column += word.size();
    text.remove_prefix(std::min(text.size(), word.size() + 1));
  }
  out += '\n';
}

void add_option(std::string& text, const OptionRow& row) {
  std::string left = left_side(row);
  if (left.size() + 2 > kHelpColumn) {
    text += left + '\n';
    left.clear();
  }
  left.resize(kHelpColumn, ' ');
  text += left;
  add_wrapped(text, row.full_help(), kHelpColumn, kHelpColumn);
}

/// What the name or word may have been meant for.
std::string suggestion(std::string_view word, std::span<const std::string_view> known) {
  const std::string_view found = fit::nearest(word, known);
  return found.empty() ? "" : "; did you mean " + std::string(found) + "?";
}

[[noreturn]] void refuse_word(const OptionRow& row, const Words& words, const std::string& word) {
  throw UsageError(std::string(row.long_name()) + " cannot be \"" + word + "\"; it is one of " +
                   listed(words) + suggestion(word, words));
}

[[noreturn]] void refuse_option(const std::string& given) {
  Words names;
  for (const OptionRow& row : kRows)
    names.push_back(row.long_name());
  const std::string name = given.substr(0, given.find('='));
  throw UsageError("there is no option " + name + suggestion(name, names));
}

void check_word(const OptionRow& row, const std::string& word) {
  // An empty name would read like an option that was not given.
  if (word.empty()) {
    throw UsageError(std::string(row.long_name()) + " needs an argument that is not empty");
  }
  if (row.words == nullptr) return;
  const Words words = row.words();
  const bool known = std::ranges::find(words, word) != words.end();
  if (!known && (row.also == nullptr || !row.also(word))) refuse_word(row, words, word);
}

double number_of(const OptionRow& row, const std::string& text, bool whole) {
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool is_number = error == std::errc() && end == text.data() + text.size();
  const bool in_range = number >= row.least && number <= row.most;  // not-a-number is in none
  if (!is_number || !in_range || (whole && number != std::floor(number))) {
    const auto bound = [](double value) { return std::to_string(static_cast<long>(value)); };
    throw UsageError(std::string(row.long_name()) + " cannot be \"" + text + "\"; it is a " +
                     (whole ? "whole " : "") + "number from " + bound(row.least) + " to " +
                     bound(row.most));
  }
  return number;
}

/// Binds one row of the table to a place in the options.
struct Binder {
  CLI::App& parser;
  Options& options;
  const OptionRow& row;

  void operator()(bool Options::*flag) const { parser.add_flag(row.names, options.*flag); }
  void operator()(std::string Options::*text) const {
    take([this, text](const std::string& given) {
      check_word(row, given);
      options.*text = given;
    });
  }
  void operator()(std::vector<std::string> Options::*list) const {
    take([this, list](const std::string& given) {
      check_word(row, given);
      (options.*list).push_back(given);
    })->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  }
  void operator()(size_t Options::*number) const {
    take([this, number](const std::string& given) {
      options.*number = static_cast<size_t>(number_of(row, given, true));
    });
  }
  void operator()(double Options::*number) const {
    take([this, number](const std::string& given) {
      options.*number = number_of(row, given, false);
    });
  }

 private:
  /// Has the parser hand over each argument of the option.
  template <typename Function>
  CLI::Option* take(Function function) const {
    const auto each = [function](const CLI::results_t& given) {
      std::ranges::for_each(given, function);
      return true;
    };
    return parser.add_option(row.names, each)
        ->type_name(row.argument)
        ->type_size(1)
        ->allow_extra_args(false);
  }
};

/// The parser would take the argument behind it.
void refuse_empty_values(std::span<const char* const> arguments) {
  for (const std::string argument : arguments) {
    if (argument == kEndOfOptions) return;
    if (argument.starts_with("--") && argument.find('=') == argument.size() - 1) {
      throw UsageError(argument.substr(0, argument.size() - 1) +
                       " needs an argument that is not empty");
    }
  }
}

/// Divides lists of names at their commas.
void divide_names(std::vector<std::string>& names) {
  std::vector<std::string> divided;
  for (const std::string& list : names) {
    std::istringstream parts(list);
    for (std::string name; std::getline(parts, name, ',');)
      divided.push_back(name);
  }
  std::erase(divided, "");
  names = std::move(divided);
}

bool is_id(std::string_view text) {
  constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
  constexpr std::string_view kOthers = "0123456789-_";
  return kLetters.find(text[0]) != std::string_view::npos &&
         text.find_first_not_of(std::string(kLetters).append(kOthers)) == std::string_view::npos;
}

/// Takes the first word for a command when it is one.
void take_command(Options& options) {
  if (options.inputs.empty()) return;
  const std::string word = options.inputs[0];
  if (word != kImport && word != kCheck) return;
  options.command = word;
  options.inputs.erase(options.inputs.begin());
}

void check(const Options& options) {
  if (options.help || options.version || options.manual || !options.completion.empty()) return;
  if (options.inputs.empty()) {
    throw UsageError("a model document and a result document are needed, or a fit");
  }
  if (!is_id(options.id_prefix)) {
    throw UsageError("--id-prefix cannot be \"" + options.id_prefix +
                     "\"; it is a letter, then letters, digits, hyphens and underscores");
  }
  if (options.journal == "-") throw UsageError("--journal needs a file; \"-\" is none");
  const auto from_input = std::ranges::count(options.inputs, "-") + (options.dictionary == "-");
  if (from_input > 1) throw UsageError("only one input can be standard input");
}

}  // namespace

std::string_view OptionRow::short_name() const {
  const std::string_view all = names;
  const size_t comma = all.find(',');
  return comma == std::string_view::npos ? std::string_view() : all.substr(0, comma);
}

std::string_view OptionRow::long_name() const {
  const std::string_view all = names;
  const size_t comma = all.find(',');
  return comma == std::string_view::npos ? all : all.substr(comma + 1);
}

bool OptionRow::repeats() const {
  return std::holds_alternative<std::vector<std::string> Options::*>(target);
}

std::string OptionRow::full_help() const {
  std::string text = help;
  if (words != nullptr) text += ": " + listed(words());
  if (repeats()) text += ". May be given more than once";
  return text;
}

std::span<const OptionRow> option_rows() { return kRows; }
std::span<const std::string_view> usage_lines() { return kUsage; }
std::span<const std::string_view> status_lines() { return kStatuses; }

Options parse_options(int argument_count, const char* const* arguments) {
  refuse_empty_values(std::span(arguments, static_cast<size_t>(argument_count)));
  Options options;
  CLI::App parser;
  parser.set_help_flag();
  parser.allow_extras();
  parser.add_option("DOCUMENTS", options.inputs);
  std::vector<Binder> binders;
  binders.reserve(std::size(kRows));
  for (const OptionRow& row : kRows) {
    std::visit(binders.emplace_back(Binder{parser, options, row}), row.target);
  }
  try {
    parser.parse(argument_count, arguments);
  } catch (const CLI::ParseError& error) {
    throw UsageError(error.what());
  }
  for (const std::string& extra : parser.remaining()) {
    if (extra != kEndOfOptions) refuse_option(extra);
  }
  take_command(options);
  divide_names(options.tables);
  check(options);
  return options;
}

std::string help_text() {
  std::string text;
  for (const std::string_view line : kUsage) {
    text += text.empty() ? "Usage: hierfit " : "       hierfit ";
    (text += line) += '\n';
  }
  text += kHead;
  for (size_t section = 0; section < std::size(kSectionTitles); ++section) {
    ((text += '\n') += kSectionTitles[section]) += ":\n";
    for (const OptionRow& row : kRows) {
      if (row.section == static_cast<Section>(section)) add_option(text, row);
    }
  }
  text += "\nExit status:\n";
  for (size_t status = 0; status < std::size(kStatuses); ++status) {
    text += "  " + std::to_string(status) + "  ";
    (text += kStatuses[status]) += '\n';
  }
  return text;
}

std::string listed(std::span<const std::string_view> words) {
  std::string text;
  for (size_t at = 0; at < words.size(); ++at) {
    if (at > 0) text += at + 1 == words.size() ? " or " : ", ";
    text += words[at];
  }
  return text;
}

}  // namespace hierfit::app
