// Renders an output document into the forms that people and programs keep.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "output/document.h"

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
  /// Forms of pictures alone: which chart to draw, from 1 in document order; 0 for all of them,
  /// beneath one another.
  size_t chart = 0;
  /// The width of charts as pictures, in pixels of 1/96 inch.
  double chart_width = 720;
  /// The resolution of charts as grids of points, in points an inch.
  double resolution = 192;
  /// Forms that have it: a piece for somebody else's page, article or text, without what makes a
  /// whole one.
  bool fragment = false;
  /// HTML form: what every id of a fragment begins with, so that several share a page.
  std::string_view id_prefix = "hierfit-";
  /// HTML form: whether a fragment brings its style sheet; a page needs it once.
  bool styles = true;
};

/// One self-contained page: no script, style, font or picture from elsewhere.
std::string render_html(const output::Document& document, const Options& options);

/// Aligned tables for a terminal, UTF-8, lines end in a line feed.
std::string render_text(const output::Document& document, const Options& options);

/// The document whole, as docs/report.schema.json describes it.
std::string render_json(const output::Document& document, const Options& options);

/// Every cell of every table as a line of fields; no charts.
std::string render_csv(const output::Document& document, const Options& options);

/// Headings, pipe tables as GitHub and pandoc read them, and charts in words and rows.
std::string render_markdown(const output::Document& document, const Options& options);

/// An article that pdflatex, lualatex and xelatex take as it is; its figures are files beside it.
std::string render_latex(const output::Document& document, const Options& options);

/// A workbook: a sheet of contents, and one for each table, with real numbers, and each chart.
std::string render_xlsx(const output::Document& document, const Options& options);

/// A text document for word processors, with real tables and pictures of the charts.
std::string render_docx(const output::Document& document, const Options& options);

/// The report on pages of A4, with charts as lines and text.
std::string render_pdf(const output::Document& document, const Options& options);

/// The chart that the options name, or all of them beneath one another, as a vector picture; with
/// their data. Throws `std::out_of_range` when there is no chart of that number.
std::string render_svg(const output::Document& document, const Options& options);
/// The same for Vega-Lite, with all charts beneath one another.
std::string render_vega(const output::Document& document, const Options& options);
/// The same as a grid of points.
std::string render_png(const output::Document& document, const Options& options);

/// A file of a form that is a folder.
struct File {
  std::string name;  ///< ASCII letters, digits, "-" and ".", unique in its folder in any case
  std::string text;
};

/// Each table as a file, laid out as it is, and the data of each chart.
std::vector<File> render_csv_folder(const output::Document& document, const Options& options);

/// Each chart of the document as a file.
std::vector<File> render_svg_folder(const output::Document& document, const Options& options);
std::vector<File> render_vega_folder(const output::Document& document, const Options& options);
std::vector<File> render_png_folder(const output::Document& document, const Options& options);

/// A form of output: its name as in `--format`, the file endings that stand for it (each with its
/// dot, divided by blanks, the usual one first), and the functions that make it as one file and,
/// where the form has it, as a folder of files.
struct Form {
  std::string_view name;
  std::string_view endings;
  std::string (*render)(const output::Document&, const Options&);
  std::vector<File> (*render_folder)(const output::Document&, const Options&) = nullptr;
  bool has_fragment = false;  ///< whether it knows `Options::fragment`
};

inline constexpr Form kForms[] = {
    {"html", ".html .htm", &render_html, nullptr, true},
    {"text", ".txt .text", &render_text},
    {"json", ".json", &render_json},
    {"csv", ".csv", &render_csv, &render_csv_folder},
    {"markdown", ".md .markdown", &render_markdown},
    {"latex", ".tex .latex", &render_latex, nullptr, true},
    {"xlsx", ".xlsx", &render_xlsx},
    {"docx", ".docx", &render_docx, nullptr, true},
    {"pdf", ".pdf", &render_pdf},
    {"svg", ".svg", &render_svg, &render_svg_folder},
    {"png", ".png", &render_png, &render_png_folder},
    {"vl.json", ".vl.json", &render_vega, &render_vega_folder},
};

/// The form of that name, or of that ending without its dot ("md"); null for none. Case matters.
const Form* form_by_name(std::string_view name);

/// The form for a file name or a bare ending (".html"), or null; of two endings that fit the longer
/// one counts. ASCII case does not matter.
const Form* form_by_ending(std::string_view file_name);

}  // namespace hierfit::report
