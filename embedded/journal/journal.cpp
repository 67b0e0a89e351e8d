#include "embedded/journal/journal.h"

#include <array>
#include <charconv>
#include <cmath>

namespace hierfit::journal {
namespace {

void append_escaped(std::string& out, unsigned char byte) {
  constexpr char kHex[] = "0123456789abcdef";
  switch (byte) {
    case '"':
      out += "\\\"";
      return;
    case '\\':
      out += "\\\\";
      return;
    case '\n':
      out += "\\n";
      return;
    case '\r':
      out += "\\r";
      return;
    case '\t':
      out += "\\t";
      return;
  }
  out += "\\u00";
  out += kHex[byte >> 4];
  out += kHex[byte & 15];
}

bool must_escape(unsigned char byte) { return byte < 0x20 || byte == '"' || byte == '\\'; }

template <class Value>
void append_number(std::string& out, Value value) {
  std::array<char, 32> buffer;
  const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  out.append(buffer.data(), end);
}

void append_utf8(std::string& out, char32_t code) {
  if (code < 0x80) {
    out += static_cast<char>(code);
    return;
  }
  const int tail = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
  constexpr unsigned kLead[] = {0, 0xC0, 0xE0, 0xF0};
  out += static_cast<char>(kLead[tail] | (code >> (6 * tail)));
  for (int i = tail - 1; i >= 0; --i) {
    out += static_cast<char>(0x80 | ((code >> (6 * i)) & 0x3F));
  }
}

}  // namespace

void append_json(std::string& out, std::string_view text) {
  out += '"';
  for (size_t begin = 0; begin < text.size();) {
    size_t end = begin;
    while (end < text.size() && !must_escape(static_cast<unsigned char>(text[end])))
      ++end;
    out += text.substr(begin, end - begin);
    if (end < text.size()) append_escaped(out, static_cast<unsigned char>(text[end++]));
    begin = end;
  }
  out += '"';
}

void append_json(std::string& out, const std::string& text) {
  append_json(out, std::string_view(text));
}

void append_json(std::string& out, const char* text) {
  if (text == nullptr) return append_json(out, nullptr);
  append_json(out, std::string_view(text));
}

void append_json(std::string& out, bool value) { out += value ? "true" : "false"; }

void append_json(std::string& out, int32_t value) { append_number(out, value); }

void append_json(std::string& out, double value) {
  if (std::isnan(value)) {
    out += "\"NaN\"";
  } else if (std::isinf(value)) {
    out += value < 0 ? "\"-Infinity\"" : "\"Infinity\"";
  } else {
    append_number(out, value);
  }
}

void append_json(std::string& out, Id id) {
  out += '"';
  out += id.class_name;
  if (id.number != 0) {
    out += '#';
    append_number(out, id.number);
  }
  out += '"';
}

void append_json(std::string& out, const Id* id) {
  if (id == nullptr) return append_json(out, nullptr);
  append_json(out, *id);
}

void append_json(std::string& out, std::nullptr_t) { out += "null"; }

void append_json(std::string& out, std::u16string_view text) {
  std::string utf8;
  for (size_t i = 0; i < text.size(); ++i) {
    char32_t code = text[i];
    const bool leads = code >= 0xD800 && code < 0xDC00;
    if (leads && i + 1 < text.size() && (text[i + 1] & 0xFC00) == 0xDC00) {
      code = 0x10000 + ((code & 0x3FF) << 10) + (text[++i] & 0x3FFu);
    } else if ((code & 0xF800) == 0xD800) {
      code = 0xFFFD;
    }
    append_utf8(utf8, code);
  }
  append_json(out, utf8);
}

Line::Line(Journal* journal, std::string_view call) : journal_(journal) {
  if (journal_ == nullptr) return;
  text() = "{\"call\":";
  append_json(text(), call);
}

Line::~Line() {
  if (journal_ == nullptr) return;
  close_arguments();
  text() += "}\n";
  journal_->out_.write(text().data(), static_cast<std::streamsize>(text().size()));
}

Line& Line::on(Id receiver) {
  if (journal_ == nullptr) return *this;
  text() += ",\"on\":";
  append_json(text(), receiver);
  return *this;
}

std::string& Line::text() { return journal_->text_; }

void Line::open_argument() {
  text() += arguments_open_ ? "," : ",\"args\":[";
  arguments_open_ = true;
}

void Line::open_result() {
  close_arguments();
  text() += ",\"result\":";
}

void Line::close_arguments() {
  if (arguments_open_) text() += ']';
  arguments_open_ = false;
}

}  // namespace hierfit::journal
