#include "embedded/chart/chart_text.h"

#include "output/chart.h"
#include "output/utf8.h"

namespace hierfit::chart {

std::string xml_characters(std::string_view text) {
  std::string kept;
  kept.reserve(text.size());
  while (!text.empty()) {
    const utf8::Character first = utf8::first_character(text);
    if (utf8::is_xml_character(first.code)) utf8::append(kept, first.code);
    text.remove_prefix(first.valid ? first.bytes.size() : utf8::sequence_bytes(text));
  }
  return kept;
}

std::string plain_text(std::string_view text) { return xml_characters(output::plain_text(text)); }

std::string plain_text(const ChartString& text) { return plain_text(text.toUTF8()); }

}  // namespace hierfit::chart

ChartString::ChartString(const char* text)
    : text_(text == nullptr ? std::u16string() : hierfit::utf8::to_utf16(text)) {}

void ChartString::replaceSubstring(const ChartString& from, const ChartString& to) {
  const size_t at = text_.find(from.text_);
  if (at != std::u16string::npos && !from.text_.empty()) {
    text_.replace(at, from.text_.size(), to.text_);
  }
}

std::string ChartString::toUTF8() const { return hierfit::utf8::from_utf16(text_); }

ChartString XUtility::ChartStringFromOLANG(const char* text) { return ChartString(text); }

ChartString XUtility::ChartStringFromLocalCodePage(const char* text) { return ChartString(text); }
