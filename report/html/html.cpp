// The HTML form: one page, complete in itself.
#include <algorithm>
#include <array>

#include "report/html/html_chart.h"
#include "report/html/html_table.h"
#include "report/html/markup.h"
#include "report/html/page.h"
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

/// What a reader can do with a table: the name of the action for the script, its word, and the sign
/// that a button shows in its place. Without an action the word stands ahead of the next buttons.
struct Tool {
  std::string_view action;
  std::string_view word;
  std::string_view sign;
};
constexpr std::array<Tool, 6> kTools = {{
    {"text", "Copy as text", ""},
    {"table", "Copy as table", ""},
    {"", "Decimals", ""},
    {"fewer", "Fewer decimals", "\u2212"},
    {"more", "More decimals", "+"},
    {"given", "Decimals as in the report", "\u21BA"},
}};

class HtmlReport {
 public:
  HtmlReport(const Document& document, const Options& options)
      : document_(document), options_(options), style_(document.numbers) {
    style_.minus = "\u2212";
  }

  std::string write() {
    html::append_page_begin(out_, document_,
                            document_.title.empty() ? document_.word("Report") : document_.title,
                            options_.theme);
    write_contents();
    out_ += "<main id=\"main\">\n";
    write_way_back();
    write_items(document_.content, 2);
    out_ += "</main>\n";
    write_tools();
    html::append_page_end(out_);
    return std::move(out_);
  }

 private:
  void write_word(std::string_view key) { html::append_escaped(out_, document_.word(key)); }

  // The contents: the headings, the tables and the charts, nested as they lie.

  void write_contents() {
    if (!has_entries(document_.content)) return;
    out_ += "<nav aria-labelledby=\"contents\">\n<h2 id=\"contents\">";
    write_word("Contents");
    out_ += "</h2>\n<input id=\"filter\" type=\"search\" autocomplete=\"off\" hidden";
    html::append_attribute(out_, "aria-label", document_.word("Filter the contents"));
    html::append_attribute(out_, "placeholder", document_.word("Filter the contents"));
    out_ += ">\n";
    write_entries(document_.content);
    out_ += "</nav>\n";
    sections_ = tables_ = charts_ = 0;
  }

  /// A link to the contents that stays in view where they do not stand at the side.
  void write_way_back() {
    if (!has_entries(document_.content)) return;
    out_ += "<a class=\"back\" href=\"#contents\">";
    write_word("Contents");
    out_ += "</a>\n";
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

  /// What the script puts beneath each table, with the marks that it writes numbers by.
  void write_tools() {
    out_ += "<template id=\"tools\"";
    write_value("mark", style_.decimal_mark);
    write_value("minus", style_.minus);
    write_value("less", style_.less_than);
    if (style_.largest_significance < 1) write_value("more", style_.more_than);
    if (style_.significance_zero) write_value("zero", "0");
    out_ += "><div class=\"tools\" role=\"group\">\n";
    for (const auto& [action, key, sign] : kTools)
      write_tool(action, document_.word(key), sign);
    out_ += "<span role=\"status\"";
    write_value("copied", document_.word("Copied"));
    out_ += "></span>\n</div></template>\n";
  }

  void write_tool(std::string_view action, std::string_view word, std::string_view sign) {
    if (action.empty()) {
      out_ += "<span class=\"d\">";
      html::append_escaped(out_, word);
      out_ += "</span>\n";
      return;
    }
    out_ += "<button type=\"button\"";
    write_value("do", action);
    if (!sign.empty()) {
      html::append_attribute(out_, "class", "d");
      html::append_attribute(out_, "aria-label", word);
      html::append_attribute(out_, "title", word);
    }
    out_ += '>';
    html::append_escaped(out_, sign.empty() ? word : sign);
    out_ += "</button>\n";
  }

  void write_value(std::string_view name, std::string_view value) {
    html::append_attribute(out_, "data-" + std::string(name), value);
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
