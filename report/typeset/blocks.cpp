#include "report/typeset/blocks.h"

#include <array>

#include "report/typeset/texts.h"
#include "report/wording.h"

namespace hierfit::report {

using output::Document;

namespace {

/// What the blocks of a kind have in common; by index of `Block::Content`.
struct Kind {
  char letter;
  std::string_view number;  ///< empty where none is shown
};
constexpr std::array<Kind, 5> kKinds = {
    {{'s', ""}, {'t', "Table ^1"}, {'c', "Figure ^1"}, {'m', ""}, {'a', ""}}};

struct SeverityNames {
  std::string_view name;
  std::string_view word;
};
constexpr std::array<SeverityNames, 3> kSeverities = {
    {{"note", "Note:"}, {"warning", "Warning:"}, {"error", "Error:"}}};

class BlockList {
 public:
  explicit BlockList(std::string_view prefix) : prefix_(prefix) {}

  std::vector<Block> write(const Document& document) {
    add_about(document.about);
    add_items(document.content, 1);
    return std::move(blocks_);
  }

 private:
  void add_about(const output::About& about) {
    if (about.empty()) return;
    add(&about, 1);
    for (const output::Message& message : about.messages)
      add(&message, 2);
  }

  void add_items(const output::Section& section, uint32_t level) {
    for (const output::Item& item : section.items) {
      std::visit([&](const auto& content) { add(content.get(), level); }, item);
      const auto* inner = std::get_if<std::unique_ptr<output::Section>>(&item);
      if (inner != nullptr) add_items(**inner, level + 1);
    }
  }

  void add(Block::Content content, uint32_t level) {
    blocks_.push_back({content, level, ++numbers_[content.index()], prefix_});
  }

  std::string_view prefix_;
  std::vector<Block> blocks_;
  std::array<uint32_t, std::variant_size_v<Block::Content>> numbers_{};
};

}  // namespace

std::string Block::anchor() const {
  std::string anchor(prefix);
  anchor += kKinds[content.index()].letter;
  return anchor += std::to_string(number);
}

std::vector<Block> blocks_of(const Document& document, std::string_view prefix) {
  return BlockList(prefix).write(document);
}

size_t opening_blocks(const Document& document) {
  return document.about.empty() ? 0 : 1 + document.about.messages.size();
}

std::string numbered(const Block& block, const Document& document) {
  const std::string_view word = kKinds[block.content.index()].number;
  return word.empty() ? "" : filled(document.word(word), std::to_string(block.number));
}

std::string continued(const Block& block, const Document& document) {
  return filled(document.word("Table ^1 (continued)"), std::to_string(block.number));
}

output::Text title_of(const Block& block) {
  if (const auto* section = block.as<output::Section>()) return section->title;
  if (const auto* table = block.as<output::Table>()) return table->title;
  if (const auto* chart = block.as<output::Chart>()) return {chart->title, {}};
  if (const auto* about = block.as<output::About>()) return about->title;
  return {};
}

std::string_view severity_name(output::Severity severity) {
  return kSeverities[static_cast<size_t>(severity)].name;
}

std::string_view severity_word(output::Severity severity, const Document& document) {
  return document.word(kSeverities[static_cast<size_t>(severity)].word);
}

std::string report_title(const Document& document) {
  return clean(document.title.empty() ? document.word("Report") : document.title);
}

}  // namespace hierfit::report
