// Renders an output document into the forms that people and programs keep.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "embedded/output/document.h"

namespace hierfit::report {

/// How a report is to look. No option changes which cells there are.
struct Options {
  /// Text form: the columns of the display to fit into; 0 for lines as long as they come.
  size_t width = 80;
  /// Text form: emphasis by terminal escape sequences (bold titles). Off for files and pipes.
  bool colour = false;
  /// HTML form: the theme to start with, "auto" (follows the reader's system), "light" or "dark".
  /// Anything else is "auto".
  std::string_view theme = "auto";
};

/// One self-contained page: no script, style, font or picture from elsewhere.
std::string render_html(const output::Document& document, const Options& options);

/// Aligned tables for a terminal, UTF-8, lines end in a line feed.
std::string render_text(const output::Document& document, const Options& options);

/// The document whole, as docs/report.schema.json describes it.
std::string render_json(const output::Document& document, const Options& options);

/// A form of output: its name as in `--format`, the file endings that stand for it (each with its
/// dot, divided by blanks, the usual one first), and the function that makes it.
struct Form {
  std::string_view name;
  std::string_view endings;
  std::string (*render)(const output::Document&, const Options&);
};

inline constexpr Form kForms[] = {
    {"html", ".html .htm", &render_html},
    {"text", ".txt .text", &render_text},
    {"json", ".json", &render_json},
};

/// The form of that name, or null. Case matters.
const Form* form_by_name(std::string_view name);

/// The form for a file name or a bare ending (".html"), or null. ASCII case does not matter.
const Form* form_by_ending(std::string_view file_name);

}  // namespace hierfit::report
