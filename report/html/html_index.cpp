// The index of many reports, as a page that looks like one.
#include "report/append.h"
#include "report/html/markup.h"
#include "report/html/page.h"
#include "report/index.h"
#include "report/wording.h"

namespace hierfit::report {
namespace {

/// A path as part of an address: what an address does not take goes by its bytes.
std::string address_of(std::string_view path) {
  constexpr std::string_view kPlain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
  constexpr std::string_view kHex = "0123456789ABCDEF";
  std::string address = "./";
  for (const char c : path) {
    if (kPlain.find(c) != std::string_view::npos) {
      address += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      append(address, '%', kHex[byte >> 4], kHex[byte & 15]);
    }
  }
  return address;
}

class HtmlIndex {
 public:
  HtmlIndex(const output::Document& document, std::span<const IndexEntry> entries)
      : document_(document), texts_(document), entries_(entries) {}

  std::string write() {
    const std::string title(document_.word("Reports"));
    html::append_page_begin(out_, document_, title, "auto");
    out_ += "<main id=\"main\">\n<div class=\"scroll\" role=\"region\" tabindex=\"0\"";
    html::append_attribute(out_, "aria-label", title);
    out_ += ">\n<table>\n<thead><tr><th scope=\"col\" class=\"s\">";
    html::append_escaped(out_, document_.word("Model"));
    out_ += "</th><th scope=\"col\" class=\"t\">";
    html::append_escaped(out_, document_.word("Result"));
    out_ += "</th></tr></thead>\n<tbody>\n";
    for (const IndexEntry& entry : entries_)
      write_entry(entry);
    out_ += "</tbody>\n</table>\n</div>\n</main>\n";
    html::append_page_end(out_);
    return std::move(out_);
  }

 private:
  void write_entry(const IndexEntry& entry) {
    out_ += "<tr><th scope=\"row\">";
    html::append_escaped(out_, entry.name);
    if (!entry.title.empty() && entry.title != entry.name) {
      out_ += "<span class=\"title\">";
      html::append_escaped(out_, clean(entry.title));
      out_ += "</span>";
    }
    out_ += "</th><td class=\"t forms\">";
    if (entry.links.empty()) {
      html::append_escaped(out_, filled(document_.word("Not made: ^1"), entry.failure));
    }
    for (const IndexLink& link : entry.links) {
      out_ += "<a";
      html::append_attribute(out_, "href", address_of(link.path));
      html::append_attribute(out_, "aria-label", entry.name + ", " + link.form);
      out_ += '>';
      html::append_escaped(out_, link.form);
      out_ += "</a>";
    }
    for (const output::Message& message : entry.messages)
      html::append_message(out_, message, document_, texts_);
    out_ += "</td></tr>\n";
  }

  const output::Document& document_;
  Texts texts_;
  std::span<const IndexEntry> entries_;
  std::string out_;
};

}  // namespace

std::string render_index(const output::Document& document, std::span<const IndexEntry> entries) {
  return HtmlIndex(document, entries).write();
}

}  // namespace hierfit::report
