// The HTML form: one page, complete in itself.
#include <algorithm>
#include <array>

#include "report/append.h"
#include "report/html/assets.h"
#include "report/html/html_chart.h"
#include "report/html/html_table.h"
#include "report/html/markup.h"
#include "report/html/page.h"
#include "report/html/scoped_sheet.h"
#include "report/report.h"
#include "report/typeset/blocks.h"

namespace hierfit::report {

using output::Document;

namespace {

constexpr uint32_t kDeepestHeading = 6;

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

/// The class of the element that holds a fragment.
constexpr std::string_view kScope = "hierfit";
/// How its sheet names it: three times, so that rules for all tables, which notebooks give with two
/// classes, give way.
constexpr std::string_view kScopeInSheet = "hierfit.hierfit.hierfit";

const std::string& fragment_sheet() {
  static const std::string sheet =
      html::scoped_sheet(html::kStyle.content, kScopeInSheet).append(html::kFragment.content);
  return sheet;
}

class HtmlReport {
 public:
  HtmlReport(const Document& document, const Options& options)
      : document_(document),
        options_(options),
        texts_(document),
        blocks_(blocks_of(document, options.fragment ? options.id_prefix : "")),
        has_contents_(std::ranges::any_of(blocks_, &Block::is_listed)) {}

  /// The results alone, in an element with the style sheet for it.
  std::string write_fragment() {
    if (options_.styles) append(out_, "<style>\n", fragment_sheet(), "</style>\n");
    append(out_, "<div class=\"", kScope, "\"");
    html::append_attribute(out_, "lang", document_.language);
    write_value("theme", options_.theme == "dark" ? "dark" : "light");
    out_ += document_.right_to_left ? " dir=\"rtl\">\n" : " dir=\"ltr\">\n";
    write_blocks();
    out_ += "</div>\n";
    return std::move(out_);
  }

  std::string write() {
    html::append_page_begin(out_, document_,
                            document_.title.empty() ? document_.word("Report") : document_.title,
                            options_.theme);
    write_contents();
    out_ += "<main id=\"main\">\n";
    write_way_back();
    write_blocks();
    out_ += "</main>\n";
    write_tools();
    html::append_page_end(out_);
    return std::move(out_);
  }

 private:
  void write_word(std::string_view key) { html::append_escaped(out_, document_.word(key)); }

  // The contents: the headings, the tables and the charts, nested as they lie.

  void write_contents() {
    if (!has_contents_) return;
    out_ += "<nav aria-labelledby=\"contents\">\n<h2 id=\"contents\">";
    write_word("Contents");
    out_ += "</h2>\n<input id=\"filter\" type=\"search\" autocomplete=\"off\" hidden";
    html::append_attribute(out_, "aria-label", document_.word("Filter the contents"));
    html::append_attribute(out_, "placeholder", document_.word("Filter the contents"));
    out_ += ">\n";
    write_entries();
    out_ += "</nav>\n";
  }

  void write_entries() {
    uint32_t lists = 0;
    for (const Block& block : blocks_) {
      if (!block.is_listed()) continue;
      for (; lists > block.level; --lists)
        out_ += "</li>\n</ul>\n";
      out_ += lists < block.level ? "<ul>\n" : "</li>\n";
      lists = block.level;
      write_entry(block);
    }
    for (; lists > 0; --lists)
      out_ += "</li>\n</ul>\n";
  }

  void write_entry(const Block& block) {
    append(out_, "<li><a href=\"#", block.anchor(), "\">");
    if (const std::string number = numbered(block, document_); !number.empty()) {
      out_ += "<span>";
      html::append_escaped(out_, number);
      out_ += "</span> ";
    }
    html::append_text(out_, title_of(block), texts_);
    out_ += "</a>";
  }

  /// A link to the contents that stays in view where they do not stand at the side.
  void write_way_back() {
    if (!has_contents_) return;
    out_ += "<a class=\"back\" href=\"#contents\">";
    write_word("Contents");
    out_ += "</a>\n";
  }

  /// What the script puts beneath each table, with the marks that it writes numbers by.
  void write_tools() {
    out_ += "<template id=\"tools\"";
    write_value("mark", texts_.numbers().decimal_mark);
    write_value("minus", texts_.numbers().minus);
    write_value("less", texts_.numbers().less_than);
    if (texts_.numbers().largest_significance < 1) write_value("more", texts_.numbers().more_than);
    if (texts_.numbers().significance_zero) write_value("zero", "0");
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

  void write_blocks() {
    uint32_t sections = 0;
    for (const Block& block : blocks_) {
      for (; sections >= block.level; --sections)
        out_ += "</section>\n";
      std::visit([&](const auto* content) { write(*content, block); }, block.content);
      if (block.is_section() || block.is_about()) ++sections;
    }
    for (; sections > 0; --sections)
      out_ += "</section>\n";
  }

  void write_heading(const output::Text& title, const Block& block) {
    // Pages that take a fragment in have headings of their own above it.
    const uint32_t level = std::min(block.level + (options_.fragment ? 2 : 1), kDeepestHeading);
    append(out_, "<h", level, " id=\"", block.anchor(), "\">");
    html::append_text(out_, title, texts_);
    append(out_, "</h", level, ">\n");
  }

  void write(const output::Section& section, const Block& block) {
    out_ += "<section>\n";
    write_heading(section.title, block);
  }

  /// A section, which its messages end.
  void write(const output::About& about, const Block& block) {
    out_ += "<section class=\"about\">\n";
    write_heading(about.title, block);
    out_ += "<dl>\n";
    for (const output::Fact& fact : about.facts) {
      append(out_, "<div data-fact=\"", fact.key, "\"><dt>");
      html::append_text(out_, fact.label, texts_);
      out_ += "</dt>";
      for (const output::Text& value : fact.values) {
        out_ += "<dd>";
        html::append_text(out_, value, texts_);
        out_ += "</dd>";
      }
      out_ += "</div>\n";
    }
    out_ += "</dl>\n";
  }

  void write(const output::Table&, const Block& block) {
    html::append_table(out_, document_, block);
  }

  void write(const output::Chart&, const Block& block) {
    html::append_chart(out_, document_, block);
  }

  void write(const output::Message& message, const Block&) {
    html::append_message(out_, message, document_, texts_);
  }

  const Document& document_;
  const Options& options_;
  Texts texts_;
  std::vector<Block> blocks_;
  bool has_contents_;
  std::string out_;
};

}  // namespace

std::string render_html(const Document& document, const Options& options) {
  HtmlReport report(document, options);
  return options.fragment ? report.write_fragment() : report.write();
}

}  // namespace hierfit::report
