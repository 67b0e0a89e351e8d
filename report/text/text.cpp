// The text form: headings, tables and messages for a terminal.
#include <algorithm>

#include "report/chart/figure.h"
#include "report/report.h"
#include "report/text/display_text.h"
#include "report/text/text_table.h"
#include "report/typeset/texts.h"

namespace hierfit::report {

using output::Document;

namespace {

class TextReport {
 public:
  TextReport(const Document& document, const Options& options)
      : document_(document), options_(options), texts_(document, Medium::Terminal) {}

  std::string write() {
    if (!document_.title.empty()) write_heading(texts_.shown(document_.title), "═");
    for (const Block& block : blocks_of(document_))
      std::visit([&](const auto* content) { write(*content, block); }, block.content);
    return std::move(out_);
  }

 private:
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

  void write(const output::Section& section, const Block&) {
    write_heading(texts_.shown(section.title), "─");
  }

  /// Labels at the left, values beside them; beneath them where the display is narrow.
  void write(const output::About& about, const Block&) {
    constexpr size_t kGap = 2;
    write_heading(texts_.shown(about.title), "─");
    size_t widest = 0;
    for (const output::Fact& fact : about.facts)
      widest = std::max(widest, text::display_width(one_line(texts_.shown(fact.label))));
    const size_t most = options_.width == 0 ? widest : options_.width * 2 / 5;
    const size_t indent = widest > most ? 4 : widest + kGap;
    for (const output::Fact& fact : about.facts) {
      std::string label = one_line(texts_.shown(fact.label));
      if (widest > most) {
        text::append_wrapped(out_, label, options_, 0);
        label.clear();
      }
      for (const output::Text& value : fact.values) {
        label.append(indent - text::display_width(label), ' ');
        text::append_wrapped(out_, label, texts_.shown(value), options_);
        label.clear();
      }
    }
  }

  void write(const output::Table&, const Block& block) {
    begin_item();
    text::append_table(out_, document_, block, options_);
  }

  /// A chart is its title and what it shows in words: the other forms draw it.
  void write(const output::Chart& chart, const Block&) {
    begin_item();
    const std::string word = texts_.shown(document_.word("Chart:")) + ' ';
    text::append_wrapped(out_, word + texts_.shown(chart.title), options_, 0);
    text::append_wrapped(out_, texts_.shown(chart::Figure(chart, document_).description()),
                         options_, 0);
  }

  void write(const output::Message& message, const Block&) {
    begin_item();
    const std::string word = texts_.shown(severity_word(message.severity, document_)) + ' ';
    text::append_wrapped(out_, word + texts_.shown(message.text), options_, 0);
  }

  const Document& document_;
  const Options& options_;
  Texts texts_;
  std::string out_;
};

}  // namespace

std::string render_text(const Document& document, const Options& options) {
  return TextReport(document, options).write();
}

}  // namespace hierfit::report
