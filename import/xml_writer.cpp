#include "import/xml_writer.h"

#include <cmath>

#include "import/number_text.h"

namespace hierfit::fit {
namespace {

constexpr std::string_view kMissingItem = "__MISSING__";

/// How many bytes of U+FFFE and U+FFFF, which XML cannot hold, begin here: three or none.
size_t noncharacter_bytes(std::string_view text) {
  return text.starts_with("\xEF\xBF\xBE") || text.starts_with("\xEF\xBF\xBF") ? 3 : 0;
}

/// How a character stands in XML; null for one that stands as it is, empty for one that cannot.
const char* escape_of(char c) {
  switch (c) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\t':
      return "&#9;";
    case '\n':
      return "&#10;";
    case '\r':
      return "&#13;";
    default:
      return static_cast<unsigned char>(c) < 0x20 ? "" : nullptr;
  }
}

void append_escaped(std::string& out, std::string_view text) {
  size_t plain = 0;
  for (size_t at = 0; at < text.size(); ++at) {
    const char* escape = escape_of(text[at]);
    const bool may_be_none = text[at] == '\xEF';
    const size_t none = may_be_none ? noncharacter_bytes(text.substr(at)) : 0;
    if (escape == nullptr && none == 0) continue;
    out += text.substr(plain, at - plain);
    if (escape != nullptr) out += escape;
    if (none > 0) at += none - 1;
    plain = at + 1;
  }
  out += text.substr(plain);
}

void append_item(std::string& out, std::string_view text) {
  if (!text.empty() && text.find_first_of(" \t\r\n\"\\") == std::string_view::npos) {
    out += text;
    return;
  }
  out += '"';
  for (const char c : text) {
    if (c == '"' || c == '\\') out += '\\';
    out += c;
  }
  out += '"';
}

}  // namespace

XmlWriter::XmlWriter() : out_("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n") {}

void XmlWriter::open(std::string_view name, Attributes attributes) {
  if (is_empty_) out_ += ">\n";
  is_empty_ = false;
  out_.append(2 * open_.size(), ' ');
  (out_ += '<') += name;
  for (const auto& [attribute, value] : attributes) {
    ((out_ += ' ') += attribute) += "=\"";
    append_escaped(out_, value);
    out_ += '"';
  }
}

XmlWriter::Element XmlWriter::element(std::string_view name, Attributes attributes) {
  open(name, attributes);
  open_.push_back(name);
  is_empty_ = true;
  return Element(*this);
}

void XmlWriter::close() {
  const std::string_view name = open_.back();
  open_.pop_back();
  if (is_empty_) {
    out_ += "/>\n";
  } else {
    out_.append(2 * open_.size(), ' ');
    ((out_ += "</") += name) += ">\n";
  }
  is_empty_ = false;
}

void XmlWriter::leaf(std::string_view name, Attributes attributes) {
  open(name, attributes);
  out_ += "/>\n";
}

void XmlWriter::text(std::string_view name, Attributes attributes, std::string_view text) {
  open(name, attributes);
  out_ += '>';
  append_escaped(out_, text);
  ((out_ += "</") += name) += ">\n";
}

void XmlWriter::array(size_t count, const char* type, std::string_view items) {
  open("Array", {{"n", std::to_string(count)}, {"type", type}});
  ((out_ += '>') += items) += "</Array>\n";
}

void XmlWriter::numbers(const std::vector<double>& items) {
  std::string list;
  for (const double item : items) {
    if (!list.empty()) list += ' ';
    std::isfinite(item) ? append_number(list, item) : void(list += kMissingItem);
  }
  array(items.size(), "real", list);
}

void XmlWriter::texts(const std::vector<std::string_view>& items) {
  std::string list;
  for (const std::string_view item : items) {
    if (!list.empty()) list += ' ';
    append_item(list, item);
  }
  std::string escaped;
  append_escaped(escaped, list);
  array(items.size(), "string", escaped);
}

std::string XmlWriter::take() { return std::move(out_); }

}  // namespace hierfit::fit
