#include "app/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>

#include "report/report.h"

namespace hierfit::app {
namespace {

constexpr OptionRow kRows[] = {
    {"-o,--output", "FILE",
     "write the report; the ending picks the form (.html, .txt, .json); may be given more than "
     "once. Without it the text form goes to standard output",
     &Options::outputs},
    {"--format", "FORM",
     "the form (html, text, json) of an output whose ending tells none, or of the only output",
     &Options::format},
    {"-d,--dictionary", "FILE", "labels, formats and value labels, as a Table Schema JSON file",
     &Options::dictionary},
    {"-l,--language", "TAG",
     "the output language, else that of LC_ALL, LC_MESSAGES or LANG; C shows every key as it "
     "stands",
     &Options::language},
    {"--journal", "FILE", "write the host call journal", &Options::journal},
    {"--color", "WHEN", "auto, always or never", &Options::colour},
    {"-q,--quiet", nullptr, "show no progress", &Options::quiet},
    {"-h,--help", nullptr, "show this text", &Options::help},
    {"--version", nullptr, "show the version", &Options::version},
};

constexpr std::array kColours = {"auto", "always", "never"};

constexpr const char* kHead =
    "Usage: hierfit [options] MODEL.pmml RESULT.xml\n"
    "\n"
    "Makes a report from the model document and the result document of a generalized\n"
    "linear mixed model. \"-\" as a file is standard input or standard output.\n"
    "\n"
    "Options:\n";

constexpr const char* kTail =
    "\n"
    "Exit status: 0, the report is written; 1, the documents could not be read as a\n"
    "result of this procedure; 2, a wrong option, or a file that cannot be read or\n"
    "written.\n";

constexpr size_t kHelpColumn = 26;
constexpr size_t kHelpWidth = 80;

/// "-o, --output FILE", with long names under one another.
std::string left_side(const OptionRow& row) {
  std::string names = row.names;
  const size_t comma = names.find(',');
  if (comma == std::string::npos) {
    names.insert(0, "    ");
  } else {
    names.insert(comma + 1, " ");
  }
  if (row.argument != nullptr) names += std::string(" ") + row.argument;
  return "  " + names;
}

/// Adds the words of `text`, in lines that begin at the help column.
void add_wrapped(std::string& out, std::string_view text) {
  size_t column = kHelpColumn;
  while (!text.empty()) {
    const std::string_view word = text.substr(0, text.find(' '));
    if (column != kHelpColumn && column + 1 + word.size() > kHelpWidth) {
      out += '\n' + std::string(kHelpColumn, ' ');
      column = kHelpColumn;
    } else if (column != kHelpColumn) {
      out += ' ';
      ++column;
    }
    out += word;
    column += word.size();
    text.remove_prefix(std::min(text.size(), word.size() + 1));
  }
  out += '\n';
}

/// Binds one row of the table to a place in the options.
struct Binder {
  CLI::App& parser;
  Options& options;
  const OptionRow& row;

  void operator()(bool Options::*flag) const { parser.add_flag(row.names, options.*flag); }
  void operator()(std::string Options::*text) const {
    parser.add_option(row.names, options.*text)->type_name(row.argument);
  }
  void operator()(std::vector<std::string> Options::*list) const {
    parser.add_option(row.names, options.*list)->type_name(row.argument)->allow_extra_args(false);
  }
};

/// An empty name would read like an option that was not given.
void require_not_empty(const std::string& value, const char* option, const CLI::App& parser) {
  if (value.empty() && parser.count(option) > 0) {
    throw UsageError(std::string(option) + " needs an argument that is not empty");
  }
}

void check(const Options& options, const CLI::App& parser) {
  if (options.help || options.version) return;
  if (options.result.empty()) throw UsageError("a model document and a result document are needed");
  for (const char* option : {"--format", "--dictionary", "--language", "--journal"}) {
    require_not_empty(parser.get_option(option)->as<std::string>(), option, parser);
  }
  for (const std::string& output : options.outputs) {
    require_not_empty(output, "--output", parser);
  }
  const auto inputs = {options.model, options.result, options.dictionary};
  if (std::ranges::count(inputs, "-") > 1) throw UsageError("only one input can be standard input");
  if (!options.format.empty() && report::form_by_name(options.format) == nullptr) {
    throw UsageError("there is no form \"" + options.format + "\"");
  }
  if (std::ranges::find(kColours, options.colour) == kColours.end()) {
    throw UsageError("--color must be auto, always or never");
  }
}

}  // namespace

std::span<const OptionRow> option_rows() { return kRows; }

Options parse_options(int argument_count, const char* const* arguments) {
  Options options;
  CLI::App parser;
  parser.set_help_flag();
  parser.add_option("MODEL.pmml", options.model);
  parser.add_option("RESULT.xml", options.result);
  for (const OptionRow& row : kRows) {
    std::visit(Binder{parser, options, row}, row.target);
  }
  try {
    parser.parse(argument_count, arguments);
  } catch (const CLI::ParseError& error) {
    throw UsageError(error.what());
  }
  check(options, parser);
  return options;
}

std::string help_text() {
  std::string text = kHead;
  for (const OptionRow& row : kRows) {
    std::string left = left_side(row);
    left.resize(std::max(left.size() + 1, kHelpColumn), ' ');
    text += left;
    add_wrapped(text, row.help);
  }
  return text + kTail;
}

}  // namespace hierfit::app
