#include "tests/tiny_host/xml.h"

#include <algorithm>
#include <utility>

namespace tiny {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::pair<std::string_view, std::string_view> kSkipped[] = {
    {"<?", "?>"}, {"<!--", "-->"}, {"<!", ">"}};
constexpr std::pair<std::string_view, char> kEntities[] = {
    {"&lt;", '<'}, {"&gt;", '>'}, {"&amp;", '&'}, {"&quot;", '"'}, {"&apos;", '\''}};

std::string unescaped(std::string_view text) {
  std::string plain;
  while (!text.empty()) {
    const auto* entity = std::ranges::find_if(
        kEntities, [text](const auto& row) { return text.starts_with(row.first); });
    const bool found = entity != std::end(kEntities);
    plain += found ? entity->second : text.front();
    text.remove_prefix(found ? entity->first.size() : 1);
  }
  return plain;
}

std::string local_name(std::string_view name) {
  return std::string(name.substr(name.find(':') + 1));
}

class Parser {
 public:
  explicit Parser(std::string_view text) : rest_(text) {}

  std::optional<Document> run() {
    while (!rest_.empty()) {
      const std::string_view text = rest_.substr(0, rest_.find('<'));
      rest_.remove_prefix(text.size());
      if (!open_.empty()) open_.back()->text += unescaped(text);
      if (!rest_.empty() && !markup()) return std::nullopt;
    }
    if (document_.empty() || !open_.empty()) return std::nullopt;
    return std::move(document_);
  }

 private:
  bool markup() {
    for (const auto& [begin, end] : kSkipped) {
      if (rest_.starts_with(begin)) return take_until(end).has_value();
    }
    if (rest_.starts_with("</")) return end_tag();
    return start_tag();
  }

  /// What stands ahead of `end`, which is taken too; nothing when `end` does not follow.
  std::optional<std::string_view> take_until(std::string_view end) {
    const size_t place = rest_.find(end);
    if (place == std::string_view::npos) return std::nullopt;
    const std::string_view taken = rest_.substr(0, place);
    rest_.remove_prefix(place + end.size());
    return taken;
  }

  void skip_blanks() {
    rest_.remove_prefix(std::min(rest_.find_first_not_of(kBlanks), rest_.size()));
  }

  bool end_tag() {
    const auto tag = take_until(">");
    if (!tag || open_.empty()) return false;
    const std::string name = local_name(tag->substr(2, tag->find_last_not_of(kBlanks) - 1));
    const bool closes = name == open_.back()->name;
    open_.pop_back();
    return closes;
  }

  bool start_tag() {
    if (open_.empty() && !document_.empty()) return false;
    rest_.remove_prefix(1);
    const std::string_view name = rest_.substr(0, rest_.find_first_of(" \t\r\n/>"));
    rest_.remove_prefix(name.size());
    Element& element = document_.emplace_back();
    element.name = local_name(name);
    if (!open_.empty()) open_.back()->children.push_back(&element);
    open_.push_back(&element);
    for (skip_blanks(); !rest_.starts_with('>') && !rest_.starts_with("/>"); skip_blanks()) {
      if (!attribute(element)) return false;
    }
    if (rest_.front() == '/') open_.pop_back();
    return !name.empty() && take_until(">");
  }

  bool attribute(Element& element) {
    const auto name = take_until("=");
    skip_blanks();
    if (!name || rest_.empty()) return false;
    const std::string_view quote = rest_.substr(0, 1);
    rest_.remove_prefix(1);
    const auto value = take_until(quote);
    if (!value) return false;
    const std::string_view trimmed = name->substr(0, name->find_last_not_of(kBlanks) + 1);
    element.attributes.emplace(local_name(trimmed), unescaped(*value));
    return true;
  }

  std::string_view rest_;
  Document document_;
  std::vector<Element*> open_;
};

}  // namespace

std::string Element::value(std::string_view attribute) const {
  const auto found = attributes.find(attribute);
  return found == attributes.end() ? std::string() : found->second;
}

std::vector<const Element*> Element::find(std::string_view path) const {
  std::vector<const Element*> found = {this};
  for (bool more = true; more;) {
    const std::string_view step = path.substr(0, path.find('/'));
    more = step.size() < path.size();
    path.remove_prefix(more ? step.size() + 1 : step.size());
    std::vector<const Element*> below;
    for (const Element* parent : found) {
      std::ranges::copy_if(parent->children, std::back_inserter(below),
                           [step](const Element* child) { return child->name == step; });
    }
    found = std::move(below);
  }
  return found;
}

std::optional<Document> parse(std::string_view text) { return Parser(text).run(); }

}  // namespace tiny
