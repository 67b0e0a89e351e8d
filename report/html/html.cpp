// The HTML form: one page, complete in itself.
#include <algorithm>
#include <array>

#include "report/html/assets.h"
#include "report/html/html_chart.h"
#include "report/html/html_table.h"
#include "report/html/markup.h"
#include "report/report.h"
#include "report/wording.h"

namespace hierfit::report {

using output::Document;
using output::Section;
using output::Table;

namespace {

constexpr int kDeepestHeading = 6;

/// How a message is announced.
struct MessageLook {
  std::string_view css_class;
  std::string_view word;
};
constexpr std::array<MessageLook, 3> kMessageLooks = {{
    {"note", "Note:"},
    {"warning", "Warning:"},
    {"error", "Error:"},
}};

class HtmlReport {
 public:
  HtmlReport(const Document& document, const Options& options)
      : document_(document), options_(options), style_(document.numbers) {
    style_.minus = "\u2212";
  }

  std::string write() {
    write_head();
    write_masthead();
    write_contents();
    out_ += "<main id=\"main\">\n";
    write_items(document_.content, 2);
    out_ += "</main>\n<script>";
    out_ += html::kScript.content;
    out_ += "</script>\n</body>\n</html>\n";
    return std::move(out_);
  }

 private:
  void write_word(std::string_view key) { html::append_escaped(out_, document_.word(key)); }

  void write_title() {
    if (document_.title.empty()) return write_word("Report");
    html::append_escaped(out_, document_.title);
  }

  void write_head() {
    out_ += "<!doctype html>\n<html lang=\"";
    html::append_escaped(out_, document_.language);
    out_ += document_.right_to_left ? "\" dir=\"rtl\"" : "\" dir=\"ltr\"";
    if (options_.theme == "light" || options_.theme == "dark") {
      ((out_ += " data-theme=\"") += options_.theme) += '"';
    }
    out_ += ">\n<head>\n<meta charset=\"utf-8\">\n";
    out_ +=
        "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src '";
    out_ += html::kStyle.source;
    out_ += "'; script-src '";
    out_ += html::kScript.source;
    out_ += "'; img-src data:; base-uri 'none'; form-action 'none'\">\n";
    out_ += "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>";
    write_title();
    out_ += "</title>\n<style>";
    out_ += html::kStyle.content;
    out_ += "</style>\n</head>\n";
  }

  void write_masthead() {
    out_ += "<body>\n<a class=\"skip\" href=\"#main\">";
    write_word("Skip to the results");
    out_ += "</a>\n<header>\n<h1>";
    write_title();
    out_ += "</h1>\n<button id=\"theme\" type=\"button\" hidden data-auto=\"";
    write_word("Theme: automatic");
    out_ += "\" data-light=\"";
    write_word("Theme: light");
    out_ += "\" data-dark=\"";
    write_word("Theme: dark");
    out_ += "\"></button>\n</header>\n";
  }

  // The contents: the headings, the tables and the charts, nested as they lie.

  void write_contents() {
    if (!has_entries(document_.content)) return;
    out_ += "<nav aria-labelledby=\"contents\">\n<h2 id=\"contents\">";
    write_word("Contents");
    out_ += "</h2>\n";
    write_entries(document_.content);
    out_ += "</nav>\n";
    sections_ = tables_ = charts_ = 0;
  }

  static bool has_entries(const Section& section) {
    return std::ranges::any_of(section.items, [](const output::Item& item) {
      return !std::holds_alternative<std::unique_ptr<output::Message>>(item);
    });
  }

  void write_entries(const Section& section) {
    if (!has_entries(section)) return;
    out_ += "<ul>\n";
    for (const output::Item& item : section.items) {
      std::visit([this](const auto& content) { write_entry(*content); }, item);
    }
    out_ += "</ul>\n";
  }

  void write_entry(const Section& section) {
    open_entry('s', ++sections_);
    html::append_text(out_, section.title, style_);
    out_ += "</a>";
    write_entries(section);
    out_ += "</li>\n";
  }

  void write_entry(const Table& table) {
    open_entry('t', ++tables_);
    out_ += "<span>";
    html::append_escaped(out_, filled(document_.word("Table ^1"), std::to_string(tables_)));
    out_ += "</span> ";
    html::append_text(out_, table.title, style_);
    out_ += "</a></li>\n";
  }

  void write_entry(const output::Chart& chart) {
    open_entry('c', ++charts_);
    out_ += "<span>";
    html::append_escaped(out_, filled(document_.word("Figure ^1"), std::to_string(charts_)));
    out_ += "</span> ";
    html::append_escaped(out_, chart.title);
    out_ += "</a></li>\n";
  }

  void write_entry(const output::Message&) {}

  void open_entry(char part, uint32_t number) {
    ((out_ += "<li><a href=\"#") += part) += std::to_string(number);
    out_ += "\">";
  }

  // The results.

  void write_items(const Section& section, int level) {
    for (const output::Item& item : section.items) {
      std::visit([&](const auto& content) { write_item(*content, level); }, item);
    }
  }

  void write_item(const Section& section, int level) {
    const char heading = static_cast<char>('0' + std::min(level, kDeepestHeading));
    ((out_ += "<section>\n<h") += heading) += " id=\"s";
    (out_ += std::to_string(++sections_)) += "\">";
    html::append_text(out_, section.title, style_);
    ((out_ += "</h") += heading) += ">\n";
    write_items(section, level + 1);
    out_ += "</section>\n";
  }

  void write_item(const Table& table, int) {
    html::append_table(out_, document_, table, ++tables_);
  }

  void write_item(const output::Chart& chart, int) {
    html::append_chart(out_, document_, chart, ++charts_);
  }

  void write_item(const output::Message& message, int) {
    const MessageLook& look = kMessageLooks[static_cast<size_t>(message.severity)];
    ((out_ += "<p role=\"note\" class=\"message ") += look.css_class) += "\"><b>";
    write_word(look.word);
    out_ += "</b> ";
    html::append_text(out_, message.text, style_);
    out_ += "</p>\n";
  }

  const Document& document_;
  const Options& options_;
  output::NumberStyle style_;
  std::string out_;
  uint32_t sections_ = 0;
  uint32_t tables_ = 0;
  uint32_t charts_ = 0;
};

}  // namespace

std::string render_html(const Document& document, const Options& options) {
  return HtmlReport(document, options).write();
}

}  // namespace hierfit::report
