#include "report/selection.h"

#include <algorithm>
#include <iterator>
#include <memory>

namespace hierfit::report {
namespace {

/// What is said about the result, chosen like a table.
constexpr std::string_view kAbout = "About";

bool is_same_letter(char a, char b) {
  const auto lower = [](char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
  };
  return lower(a) == lower(b);
}

/// The name of an item, or null for what has none.
struct NameOf {
  const std::string* operator()(const std::unique_ptr<output::Table>& table) const {
    return &table->subtype;
  }
  const std::string* operator()(const std::unique_ptr<output::Chart>& chart) const {
    return &chart->kind;
  }
  template <class Other>
  const std::string* operator()(const Other&) const {
    return nullptr;
  }
};

void add_names(const output::Section& section, std::vector<std::string>& names) {
  for (const output::Item& item : section.items) {
    const std::string* name = std::visit(NameOf{}, item);
    if (name != nullptr && std::ranges::find(names, *name) == names.end()) names.push_back(*name);
    const auto* inner = std::get_if<std::unique_ptr<output::Section>>(&item);
    if (inner != nullptr) add_names(**inner, names);
  }
}

void keep_in(output::Section& section, std::span<const std::string> names) {
  std::erase_if(section.items, [&](output::Item& item) {
    if (auto* inner = std::get_if<std::unique_ptr<output::Section>>(&item)) {
      keep_in(**inner, names);
      return (*inner)->items.empty();
    }
    const std::string* name = std::visit(NameOf{}, item);
    return name == nullptr || !is_among(*name, names);
  });
}

}  // namespace

std::vector<std::string> names_in(const output::Document& document) {
  std::vector<std::string> names;
  if (!document.about.facts.empty()) names.emplace_back(kAbout);
  add_names(document.content, names);
  return names;
}

bool is_among(std::string_view name, std::span<const std::string> names) {
  return std::ranges::any_of(names, [&](const std::string& each) {
    return std::ranges::equal(each, name, is_same_letter);
  });
}

void keep(std::span<const std::string> names, output::Document& document) {
  keep_in(document.content, names);
  if (is_among(kAbout, names)) return;
  std::vector<output::Item> items;
  for (output::Message& message : document.about.messages)
    items.emplace_back(std::make_unique<output::Message>(std::move(message)));
  std::ranges::move(document.content.items, std::back_inserter(items));
  document.content.items = std::move(items);
  document.about = {};
}

}  // namespace hierfit::report
