// Appends HTML to a text.
#include "report/html/markup.h"

#include <array>
#include <charconv>

#include "report/append.h"
#include "report/typeset/blocks.h"

namespace hierfit::report::html {

void append_text(std::string& out, const output::Text& text, const Texts& texts) {
  if (text.symbol) out += "<i>";
  const std::string shown = texts.shown(text);
  std::string_view rest = shown;
  for (size_t feed; (feed = rest.find('\n')) != std::string_view::npos;) {
    append_escaped(out, rest.substr(0, feed));
    out += "<br>";
    rest.remove_prefix(feed + 1);
  }
  append_escaped(out, rest);
  if (text.symbol) out += "</i>";
}

void append_label(std::string& out, const output::Text& text, const Texts& texts) {
  constexpr std::string_view kSigns = "=*";
  constexpr size_t kLong = 20;
  if (text.shown.size() < kLong) return append_text(out, text, texts);
  std::string label;
  append_text(label, text, texts);
  for (size_t at = 0; at < label.size(); ++at) {
    out += label[at];
    const bool is_sign = kSigns.find(label[at]) != std::string_view::npos;
    if (is_sign && at + 1 < label.size() && label[at + 1] != ' ') out += "<wbr>";
  }
}

void append_message(std::string& out,
                    const output::Message& message,
                    const output::Document& document,
                    const Texts& texts) {
  append(out, "<p role=\"note\" class=\"message ", severity_name(message.severity), "\"><b>");
  append_escaped(out, severity_word(message.severity, document));
  out += "</b> ";
  append_text(out, message.text, texts);
  out += "</p>\n";
}

void append_number(std::string& out, uint32_t number) {
  std::array<char, 12> digits;
  out.append(digits.data(),
             std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr);
}

void append_double(std::string& out, double value) {
  std::array<char, 32> digits;
  out.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr);
}

void append_span(std::string& out, std::string_view attribute, uint32_t span) {
  if (span < 2) return;
  append(out, ' ', attribute, "=\"");
  append_number(out, span);
  out += '"';
}

}  // namespace hierfit::report::html
