#include "embedded/journal/journal.h"

#include <array>
#include <charconv>
#include <cmath>

#include "output/utf8.h"

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
  append_json(out, utf8::from_utf16(text));
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
