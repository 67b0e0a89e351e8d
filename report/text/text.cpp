// The text form: headings, tables and messages for a terminal.
#include <algorithm>
#include <array>

#include "report/aligned_cells.h"
#include "report/chart/figure.h"
#include "report/report.h"
#include "report/text/display_text.h"
#include "report/text/text_table.h"

namespace hierfit::report {

using output::Document;
using output::Section;

namespace {

constexpr std::array<std::string_view, 3> kMessageWords = {"Note:", "Warning:", "Error:"};

class TextReport {
 public:
  TextReport(const Document& document, const Options& options)
      : document_(document), options_(options) {}

  std::string write() {
    if (!document_.title.empty()) write_heading(text::printable(document_.title), "═");
    write_items(document_.content);
    return std::move(out_);
  }

 private:
  std::string text_of(const output::Text& text) const {
    return text::printable(restyled(text, document_.numbers));
  }

  void begin_item() {
    if (!out_.empty()) out_ += '\n';
  }

  void write_heading(const std::string& title, std::string_view rule) {
    begin_item();
    if (options_.colour) out_ += "\x1b[1m";
    text::append_wrapped(out_, title, options_, 0);
    if (options_.colour) out_ += "\x1b[0m";
    size_t width = text::longest_line(title);
    if (options_.width > 0) width = std::min(width, options_.width);
    for (; width > 0; --width)
      out_ += rule;
    out_ += '\n';
  }

  void write_items(const Section& section) {
    for (const output::Item& item : section.items) {
      std::visit([this](const auto& content) { write_item(*content); }, item);
    }
  }

  void write_item(const Section& section) {
    write_heading(text_of(section.title), "─");
    write_items(section);
  }

  void write_item(const output::Table& table) {
    begin_item();
    text::append_table(out_, document_, table, ++tables_, options_);
  }

  /// A chart is its title and what it shows in words: the other forms draw it.
  void write_item(const output::Chart& chart) {
    begin_item();
    const std::string word = text::printable(document_.word("Chart:")) + ' ';
    text::append_wrapped(out_, word + text::printable(chart.title), options_, 0);
    text::append_wrapped(out_, text::printable(chart::Figure(chart, document_).description()),
                         options_, 0);
  }

  void write_item(const output::Message& message) {
    begin_item();
    const std::string_view word =
        document_.word(kMessageWords[static_cast<size_t>(message.severity)]);
    text::append_wrapped(out_, text::printable(word) + ' ' + text_of(message.text), options_, 0);
  }

  const Document& document_;
  const Options& options_;
  std::string out_;
  uint32_t tables_ = 0;
};

}  // namespace

std::string render_text(const Document& document, const Options& options) {
  return TextReport(document, options).write();
}

}  // namespace hierfit::report
