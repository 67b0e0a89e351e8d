#include "output/markup.h"

#include <algorithm>

namespace hierfit::output {
namespace {

constexpr std::string_view kBreak = "BR";
constexpr std::string_view kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

struct Escape {
  char character;
  std::string_view text;
};
constexpr Escape kInText[] = {
    {'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'\r', "&#13;"}};
constexpr Escape kInAttribute[] = {{'&', "&amp;"},  {'<', "&lt;"},  {'>', "&gt;"},  {'"', "&quot;"},
                                   {'\n', "&#10;"}, {'\t', "&#9;"}, {'\r', "&#13;"}};

template <size_t N>
void append_escaped(std::string& out, std::string_view text, const Escape (&escapes)[N]) {
  for (const char character : text) {
    const auto* escape = std::ranges::find(escapes, character, &Escape::character);
    if (escape == std::end(escapes)) {
      out += character;
    } else {
      out += escape->text;
    }
  }
}

/// Parsers limit nesting to 512, so the depth of the calls is bounded.
void append_text_of(std::string& out, const Element& element) {
  for (const Content& part : element.content) {
    if (const auto* text = std::get_if<std::string>(&part)) {
      out += *text;
    } else if (part.element()->name == kBreak) {
      out += '\n';
    } else {
      append_text_of(out, *part.element());
    }
  }
}

void collect(std::vector<Element*>& elements, Element& element) {
  elements.push_back(&element);
  for (Content& part : element.content) {
    if (Element* child = part.element()) collect(elements, *child);
  }
}

}  // namespace

const std::string* Element::attribute(std::string_view attribute_name) const {
  const auto found = std::ranges::find_if(
      attributes, [&](const auto& attribute) { return attribute.first == attribute_name; });
  return found == attributes.end() ? nullptr : &found->second;
}

std::string_view Element::value(std::string_view attribute_name) const {
  const std::string* found = attribute(attribute_name);
  return found == nullptr ? std::string_view() : *found;
}

void Element::set(std::string_view attribute_name, std::string value) {
  const auto found = std::ranges::find_if(
      attributes, [&](const auto& attribute) { return attribute.first == attribute_name; });
  if (found == attributes.end()) {
    attributes.emplace_back(attribute_name, std::move(value));
  } else {
    found->second = std::move(value);
  }
}

void Element::remove(std::string_view attribute_name) {
  std::erase_if(attributes,
                [&](const auto& attribute) { return attribute.first == attribute_name; });
}

const Element* Element::child(std::string_view child_name) const {
  for (const Content& part : content) {
    const Element* element = part.element();
    if (element != nullptr && element->name == child_name) return element;
  }
  return nullptr;
}

Element* Element::child(std::string_view child_name) {
  return const_cast<Element*>(std::as_const(*this).child(child_name));
}

std::vector<const Element*> Element::children() const {
  std::vector<const Element*> found;
  for (const Content& part : content) {
    if (const Element* element = part.element()) found.push_back(element);
  }
  return found;
}

std::vector<Element*> Element::children(std::string_view child_name) {
  std::vector<Element*> found;
  for (Content& part : content) {
    Element* element = part.element();
    if (element != nullptr && element->name == child_name) found.push_back(element);
  }
  return found;
}

Element& Element::add(std::string child_name) {
  Element& added = *content.emplace_back(Element()).element();
  added.name = std::move(child_name);
  added.self_closing = true;
  return added;
}

void Element::remove_children(std::string_view child_name) {
  std::erase_if(content, [&](const Content& part) {
    const Element* element = part.element();
    return element != nullptr && element->name == child_name;
  });
}

std::string Element::text() const {
  std::string text;
  append_text_of(text, *this);
  return text;
}

void Element::set_text(std::string_view text) {
  content.clear();
  for (;;) {
    const size_t end = std::min(text.find('\n'), text.size());
    if (end > 0) content.emplace_back(std::string(text.substr(0, end)));
    if (end == text.size()) return;
    add(std::string(kBreak));
    text.remove_prefix(end + 1);
  }
}

std::vector<Element*> elements_of(Element& root) {
  std::vector<Element*> elements;
  collect(elements, root);
  return elements;
}

void append_markup(std::string& out, const Element& element) {
  (out += '<') += element.name;
  for (const auto& [name, value] : element.attributes) {
    ((out += ' ') += name) += "=\"";
    append_escaped(out, value, kInAttribute);
    out += '"';
  }
  if (element.content.empty() && element.self_closing) {
    out += "/>";
    return;
  }
  out += '>';
  for (const Content& part : element.content) {
    if (const auto* text = std::get_if<std::string>(&part)) {
      append_escaped(out, *text, kInText);
    } else {
      append_markup(out, *part.element());
    }
  }
  ((out += "</") += element.name) += '>';
}

std::string markup_of(const Element& root) {
  std::string out(kDeclaration);
  append_markup(out, root);
  out += '\n';
  return out;
}

}  // namespace hierfit::output
