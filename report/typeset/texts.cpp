#include "report/typeset/texts.h"

#include <algorithm>

#include "output/utf8.h"
#include "report/text/display_text.h"

namespace hierfit::report {

using output::NumberStyle;
using output::Text;

namespace {

constexpr std::string_view kTrueMinus = "\u2212";

/// Whether files of markup and the libraries that draw take the character: those of XML, less the
/// controls of Latin-1 and what is never a character.
bool is_plain(char32_t code) {
  if (code < 0x20) return code == '\n';
  return code < 0x7F || (code >= 0xA0 && !utf8::is_noncharacter(code));
}

}  // namespace

std::string clean(std::string_view text) {
  std::string cleaned;
  cleaned.reserve(text.size());
  for (const utf8::Character& each : utf8::Characters(text)) {
    if (each.code == '\t') {
      cleaned += ' ';
    } else if (!each.valid || !is_plain(each.code)) {
      cleaned += "\uFFFD";
    } else {
      cleaned += each.bytes;
    }
  }
  return cleaned;
}

std::string restyled(const Text& text, const NumberStyle& style) {
  if (text.numbers.empty()) return text.shown;
  std::string written;
  size_t at = 0;
  for (const output::NumberSpan& span : text.numbers) {
    written.append(text.shown, at, span.begin - at);
    output::append_shown(written, span.number, style);
    at = size_t{span.begin} + span.length;
  }
  return written.append(text.shown, at);
}

std::string one_line(std::string text) {
  std::ranges::replace(text, '\n', ' ');
  return text;
}

Texts::Texts(const output::Document& document, Medium medium)
    : medium_(medium), numbers_(document.numbers) {
  if (medium == Medium::Page) numbers_.minus = kTrueMinus;
}

std::string Texts::shown(std::string_view text) const {
  return medium_ == Medium::Page ? clean(text) : text::printable(text);
}

std::string Texts::shown(const Text& text) const { return shown(restyled(text, numbers_)); }

}  // namespace hierfit::report
