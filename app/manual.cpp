#include "app/manual.h"

#include "app/options.h"

namespace hierfit::app {
namespace {

/// The last change of its words. A page has a date, and the same sources give the same page.
constexpr const char* kHead = R"(.Dd November 23, 2026
.Dt HIERFIT 1
.Os
.Sh NAME
.Nm hierfit
.Nd report of a generalized linear mixed model
.Sh SYNOPSIS
)";

constexpr const char* kDescription = R"(.Sh DESCRIPTION
.Nm
makes a report from the two documents that a fitting engine leaves: the model
document in PMML and the result document in StatXML.
The report holds the tables of the procedure, from the model summary to
estimated means and contrasts, and the charts of the model.
It also takes
.Ar FIT.json ,
one document that any program can write, and makes the two documents from it.
As a file,
.Sq -
is standard input or standard output.
A report is written whole or not at all.
.Pp
.Ar PAIRS
are documents in twos, fits, or folders.
In a folder and all that are in it,
.Pa x.pmml
belongs to
.Pa x.xml ,
and a model document that is alone with one result document belongs to that; a
.Pa dictionary.json
beside them is their dictionary.
Each pair makes a report in
.Ar FOLDER ,
called as the model document or, where that is alone in its folder, as the
folder;
.Pa index.html
leads to all of them.
A report that cannot be made does not hold up the others.
Where a folder holds no model document,
.Pa fit.json
and
.Pa x.fit.json
are fits.
.Pp
.Cm import
writes the documents of a fit,
.Pa model.pmml , result.xml
and, where formats need one,
.Pa dictionary.json .
.Cm check
writes nothing but messages: what is wrong with fits and pairs, and what is odd.
)";

constexpr const char* kEnvironment = R"(.Sh ENVIRONMENT
.Bl -tag -width Ds
.It Ev LC_ALL , LC_MESSAGES , LANG
The first that is set picks the language of the report, unless
.Fl -language
does.
.It Ev NO_COLOR
Terminals get neither colour nor progress when it is not empty.
.It Ev TERM
Nor when it is
.Sq dumb .
.El
)";

constexpr const char* kExamples = R"(.Sh EXAMPLES
A page to read, and a workbook:
.Pp
.Dl hierfit -o report.html -o report.xlsx model.pmml result.xml
.Pp
Every chart as a picture of 300 points an inch:
.Pp
.Dl hierfit --charts figures --chart-format png --resolution 300 model.pmml result.xml
.Pp
A page for each pair in a folder, and their index:
.Pp
.Dl hierfit -o reports runs
)";

/// Text of a manual page, in which a backslash and a line's first point would be commands.
std::string roff(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    if (escaped.empty() && (c == '.' || c == '\'')) escaped += "\\&";
    c == '\\' ? escaped += "\\e" : escaped += c;
  }
  return escaped;
}

/// "-o FILE , -output FILE" as mdoc has it: an option's first hyphen is the macro's.
std::string option_item(const OptionRow& row) {
  const std::string argument = row.argument == nullptr ? "" : std::string(" Ar ") + row.argument;
  std::string item = ".It";
  if (!row.short_name().empty()) {
    item += " Fl " + std::string(row.short_name().substr(1)) + argument + " ,";
  }
  return item + " Fl " + std::string(row.long_name().substr(1)) + argument + "\n";
}

/// A help text as sentences, each on lines of its own, that end ahead of column 80.
std::string sentences(std::string text) {
  constexpr size_t kWidth = 79;
  text[0] = static_cast<char>(text[0] >= 'a' && text[0] <= 'z' ? text[0] - 'a' + 'A' : text[0]);
  text += '.';
  std::string page;
  std::string line;
  for (size_t at = 0; at < text.size();) {
    const std::string word = text.substr(at, text.find(' ', at) - at);
    at += word.size() + 1;
    if (!line.empty() && (line.size() + 1 + word.size() > kWidth || line.ends_with('.'))) {
      page += roff(line) + '\n';
      line.clear();
    }
    if (!line.empty()) line += ' ';
    line += word;
  }
  return page + roff(line) + '\n';
}

// The completions.

std::string words_of(const OptionRow& row) {
  std::string words;
  for (const std::string_view word : row.words()) {
    if (!words.empty()) words += ' ';
    words += word;
  }
  return words;
}

std::string bash_case(const OptionRow& row) {
  std::string what;
  switch (row.takes) {
    case Takes::Nothing:
      return "";
    case Takes::File:
      what = "COMPREPLY=($(compgen -f -- \"$word\"))";
      break;
    case Takes::Folder:
      what = "COMPREPLY=($(compgen -d -- \"$word\"))";
      break;
    case Takes::Word:
      what = "COMPREPLY=($(compgen -W '" + words_of(row) + "' -- \"$word\"))";
      break;
    case Takes::Number:
    case Takes::Text:
      what = "COMPREPLY=()";
      break;
  }
  std::string names(row.short_name());
  if (!names.empty()) names += '|';
  return "    " + names.append(row.long_name()) + ") " + what + "; return ;;\n";
}

std::string bash_completion() {
  std::string names;
  std::string cases;
  for (const OptionRow& row : option_rows()) {
    for (const std::string_view name : {row.short_name(), row.long_name()}) {
      if (name.empty()) continue;
      if (!names.empty()) names += ' ';
      names += name;
    }
    cases += bash_case(row);
  }
  return R"(# bash completion for hierfit
_hierfit() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
  if [[ $word == = ]]; then
    word=
  elif [[ $before == = ]]; then
    before=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  case $before in
)" + cases +
         R"(  esac
  if [[ $word == -* ]]; then
    COMPREPLY=($(compgen -W ')" +
         names + R"(' -- "$word"))
  else
    COMPREPLY=($(compgen -f -- "$word"))
  fi
}
complete -o filenames -F _hierfit hierfit
)";
}

/// Text between single quotes of a shell, with a backslash ahead of each of `special`.
std::string quoted(std::string_view text, std::string_view special) {
  std::string out;
  for (const char c : text) {
    if (special.find(c) != std::string_view::npos) out += '\\';
    c == '\'' ? out += "'\\''" : out += c;
  }
  return out;
}

std::string zsh_argument(const OptionRow& row) {
  switch (row.takes) {
    case Takes::Nothing:
      return "";
    case Takes::File:
      return std::string(":") + row.argument + ":_files";
    case Takes::Folder:
      return std::string(":") + row.argument + ":_files -/";
    case Takes::Word:
      return std::string(":") + row.argument + ":(" + words_of(row) + ")";
    case Takes::Number:
    case Takes::Text:
      return std::string(":") + row.argument + ": ";
  }
  return "";
}

std::string zsh_completion() {
  std::string text = "#compdef hierfit\n_arguments -s -S \\\n";
  for (const OptionRow& row : option_rows()) {
    const bool takes_nothing = row.takes == Takes::Nothing;
    const std::string long_name(row.long_name());
    const std::string short_name(row.short_name());
    text += "  ";
    if (row.repeats()) text += "'*'";
    if (!short_name.empty()) {
      if (!row.repeats())
        text.append("'(").append(short_name).append(" ").append(long_name) += ")'";
      text.append("{").append(short_name).append(takes_nothing ? "," : "+,");
    }
    text.append(long_name).append(takes_nothing ? "" : "=").append(short_name.empty() ? "" : "}");
    text.append("'[").append(quoted(row.help, "[]:\\")).append("]").append(zsh_argument(row));
    text += "' \\\n";
  }
  return text + "  '*:document:_files'\n";
}

std::string fish_completion() {
  std::string text = "# fish completion for hierfit\n";
  for (const OptionRow& row : option_rows()) {
    text += "complete -c hierfit";
    if (!row.short_name().empty()) text += " -s " + std::string(row.short_name().substr(1));
    text += " -l " + std::string(row.long_name().substr(2));
    switch (row.takes) {
      case Takes::Nothing:
        break;
      case Takes::File:
        text += " -r -F";
        break;
      case Takes::Folder:
        text += " -x -a '(__fish_complete_directories)'";
        break;
      case Takes::Word:
        text += " -x -a '" + words_of(row) + "'";
        break;
      case Takes::Number:
      case Takes::Text:
        text += " -x";
        break;
    }
    text += " -d '" + quoted(row.help, "\\") + "'\n";
  }
  return text;
}

struct ShellRow {
  std::string_view name;
  std::string (*write)();
};
constexpr ShellRow kShells[] = {
    {"bash", &bash_completion},
    {"zsh", &zsh_completion},
    {"fish", &fish_completion},
};

}  // namespace

std::string manual_page() {
  std::string page = kHead;
  for (std::string_view line : usage_lines()) {
    page += ".Nm\n";
    for (; !line.empty(); line.remove_prefix(std::min(line.size(), line.find(' ') + 1))) {
      const std::string_view word = line.substr(0, line.find(' '));
      if (word == "[options]") {
        page += ".Op Ar options\n";
      } else if (word == kImport || word == kCheck) {
        page += ".Cm " + std::string(word) + "\n";
      } else if (word.starts_with('-')) {
        page += ".Fl " + std::string(word.substr(1)) + "\n";
      } else {
        page += ".Ar " + std::string(word) + "\n";
      }
      if (word.size() == line.size()) break;
    }
  }
  page += kDescription;
  for (size_t section = 0; section < std::size(kSectionTitles); ++section) {
    page += ".Ss " + std::string(kSectionTitles[section]) + "\n.Bl -tag -width Ds\n";
    for (const OptionRow& row : option_rows()) {
      if (row.section == static_cast<Section>(section))
        page += option_item(row) + sentences(row.full_help());
    }
    page += ".El\n";
  }
  page += kEnvironment;
  page += ".Sh EXIT STATUS\n.Bl -tag -width Ds\n";
  for (size_t status = 0; status < status_lines().size(); ++status) {
    page += ".It " + std::to_string(status) + "\n" + sentences(std::string(status_lines()[status]));
  }
  return page + ".El\n" + kExamples;
}

std::string completion(std::string_view shell) {
  for (const ShellRow& row : kShells) {
    if (row.name == shell) return row.write();
  }
  return {};
}

}  // namespace hierfit::app
