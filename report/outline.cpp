#include "report/outline.h"

#include <array>

#include "output/utf8.h"
#include "report/wording.h"

namespace hierfit::report {

using output::Document;

namespace {

constexpr std::array<std::string_view, 3> kSeverityWords = {"Note:", "Warning:", "Error:"};

/// The word that numbers the parts of a kind; by index of `Entry::Content`.
constexpr std::array<std::string_view, 4> kNumberWords = {"", "Table ^1", "Figure ^1", ""};

class Outline {
 public:
  std::vector<Entry> write(const Document& document) {
    add_items(document.content, 1);
    return std::move(entries_);
  }

 private:
  void add_items(const output::Section& section, uint32_t level) {
    for (const output::Item& item : section.items) {
      std::visit([&](const auto& part) { add(part.get(), level); }, item);
      const auto* inner = std::get_if<std::unique_ptr<output::Section>>(&item);
      if (inner != nullptr) add_items(**inner, level + 1);
    }
  }

  void add(Entry::Content content, uint32_t level) {
    entries_.push_back({content, level, ++numbers_[content.index()]});
  }

  std::vector<Entry> entries_;
  std::array<uint32_t, 4> numbers_{};
};

/// Whether files of markup take the character: those of XML, less the controls of Latin-1.
bool is_plain(char32_t code) {
  if (code < 0x20) return code == '\n';
  return code < 0x7F || (code >= 0xA0 && code != 0xFFFE && code != 0xFFFF);
}

}  // namespace

std::vector<Entry> outline(const Document& document) { return Outline().write(document); }

std::string numbered(const Entry& entry, const Document& document) {
  const std::string_view word = kNumberWords[entry.content.index()];
  return word.empty() ? "" : filled(document.word(word), std::to_string(entry.number));
}

output::Text title_of(const Entry& entry) {
  if (const auto* section = entry.as<output::Section>()) return section->title;
  if (const auto* table = entry.as<output::Table>()) return table->title;
  if (const auto* chart = entry.as<output::Chart>()) return {chart->title, {}};
  return {};
}

std::string_view severity_word(output::Severity severity, const Document& document) {
  return document.word(kSeverityWords[static_cast<size_t>(severity)]);
}

std::string report_title(const Document& document) {
  return clean(document.title.empty() ? document.word("Report") : document.title);
}

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

}  // namespace hierfit::report
