// The framework: the XML wrapper over a document, values of fields, the conversions of text.
#include "host/framework.h"

#include <charconv>
#include <iomanip>
#include <sstream>

#include "tests/tiny_host/xml.h"

namespace {

/// A document and all that was handed out from it.
struct Loaded {
  tiny::Document document;
  std::vector<std::shared_ptr<void>> handed_out;

  /// Makes an object that lives as long as the document.
  template <class Object, class... Arguments>
  Object& hand_out(Arguments&&... arguments) {
    auto object = std::make_shared<Object>(std::forward<Arguments>(arguments)...);
    Object& reference = *object;
    handed_out.push_back(std::move(object));
    return reference;
  }
};

template <class Number>
std::optional<Number> number_in(std::string_view text) {
  // The conversion below takes words for infinity, and no plus sign.
  if (text.find_first_not_of("+-.0123456789eE") != std::string_view::npos) return std::nullopt;
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  Number number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

constexpr std::string_view kRomanLetters = "IVXLCDM";

/// Takes a decimal digit off the head of `text`, written in the letters for one, five and ten of
/// its place, of which `one` is the first; 0 when there is none.
int32_t take_roman_digit(std::string_view& text, size_t one) {
  constexpr std::string_view kDigits[] = {"0", "00", "000", "01", "1", "10", "100", "1000", "02"};
  for (size_t digit = std::size(kDigits); digit > 0; --digit) {
    std::string letters;
    for (const char step : kDigits[digit - 1]) {
      const size_t letter = one + static_cast<size_t>(step - '0');
      letters += letter < kRomanLetters.size() ? kRomanLetters[letter] : '?';
    }
    if (!text.starts_with(letters)) continue;
    text.remove_prefix(letters.size());
    return static_cast<int32_t>(digit);
  }
  return 0;
}

}  // namespace

/// An element that was handed out, with its wrapper; or a root, whose wrapper the module made.
struct SDOMXMLWrapper::Impl {
  Impl(Loaded& loaded_, const tiny::Element* element_) : loaded(loaded_), element(element_) {}

  std::vector<const tiny::Element*> find(std::string_view path) const {
    return element == nullptr ? std::vector<const tiny::Element*>() : element->find(path);
  }

  Loaded& loaded;
  const tiny::Element* element;  ///< null: nothing is loaded
  SDOMXMLWrapper wrapper{this};
};

/// A walk that was handed out.
struct SDOMXMLIterator::Impl {
  Impl(Loaded& loaded_, std::vector<const tiny::Element*> elements_)
      : loaded(loaded_), elements(std::move(elements_)) {}

  Loaded& loaded;
  std::vector<const tiny::Element*> elements;
  size_t next = 0;
  SDOMXMLIterator iterator{this};
};

SDOMXMLWrapper::SDOMXMLWrapper() : impl_(nullptr) {
  auto loaded = std::make_unique<Loaded>();
  impl_ = std::make_unique<Impl>(*loaded, nullptr).release();
  static_cast<void>(loaded.release());
}

// A root goes with its document; a wrapper that was handed out is a part of its element.
SDOMXMLWrapper::~SDOMXMLWrapper() {
  if (this == &impl_->wrapper) return;
  const std::unique_ptr<Loaded> loaded(&impl_->loaded);
  const std::unique_ptr<Impl> root(impl_);
}

SDOMXMLWrapper* SDOMXMLWrapper::LoadFromString(const std::string& text) {
  auto document = tiny::parse(text);
  if (!document) return nullptr;
  impl_->loaded.document = std::move(*document);
  impl_->element = &impl_->loaded.document.front();
  return this;
}

bool SDOMXMLWrapper::GetFirstElement(std::string_view path, SDOMXMLWrapper** element, bool) {
  const std::vector<const tiny::Element*> found = impl_->find(path);
  *element = nullptr;
  if (found.empty()) return false;
  *element = &impl_->loaded.hand_out<Impl>(impl_->loaded, found.front()).wrapper;
  return true;
}

bool SDOMXMLWrapper::GetElementIterator(std::string_view name, SDOMXMLIterator** iterator, bool) {
  std::vector<const tiny::Element*> found = impl_->find(name);
  *iterator = nullptr;
  if (found.empty()) return false;
  using Walk = SDOMXMLIterator::Impl;
  *iterator = &impl_->loaded.hand_out<Walk>(impl_->loaded, std::move(found)).iterator;
  return true;
}

bool SDOMXMLWrapper::GetAttribute(std::string_view name, std::string& value) {
  value.clear();
  if (impl_->element == nullptr || !impl_->element->attributes.contains(name)) return false;
  value = impl_->element->value(name);
  return true;
}

bool SDOMXMLWrapper::GetSimpleArray(std::vector<std::string>& items) {
  items.clear();
  if (impl_->element == nullptr) return false;
  std::istringstream text(impl_->element->text);
  for (std::string item; text >> std::quoted(item);) {
    items.push_back(item);
  }
  const std::string count = impl_->element->value("n");
  if (count.empty() || count == std::to_string(items.size())) return true;
  items.clear();
  return false;
}

SDOMXMLIterator::~SDOMXMLIterator() = default;

bool SDOMXMLIterator::Next(SDOMXMLWrapper** element) {
  *element = nullptr;
  if (impl_->next == impl_->elements.size()) return false;
  const tiny::Element* next = impl_->elements[impl_->next++];
  *element = &impl_->loaded.hand_out<SDOMXMLWrapper::Impl>(impl_->loaded, next).wrapper;
  return true;
}

void CFStatVariableValue::SetStringValue(const std::string& text) {
  text_ = text;
  value_.reset();
}

bool CFStatVariableValue::LoadObsValue(const VELT_Variable* variable, int32_t) {
  value_.reset();
  if (variable == nullptr) return false;
  if (variable->GetFormat().type == kStringFormatType) {
    value_ = OBS{.isString = true, .text = text_};
  } else if (const auto number = number_in<double>(text_)) {
    value_ = OBS{.number = *number, .text = {}};
  }
  return value_.has_value();
}

bool CFStatVariableValue::SetCompleteValue(const std::string& text,
                                           const VELT_Variable* variable,
                                           int32_t flag) {
  SetStringValue(text);
  return LoadObsValue(variable, flag);
}

double String2Double(const std::string& text) {
  return number_in<double>(text).value_or(OBS().number);
}

int32_t String2Integer(const std::string& text) { return number_in<int32_t>(text).value_or(0); }

int32_t Roman2Integer(const std::string& text) {
  if (text.find_first_not_of(kRomanLetters) != std::string::npos) return 0;
  std::string_view rest = text;
  int32_t number = 0;
  size_t one = kRomanLetters.size() - 1;
  for (int32_t unit = 1000; unit > 0; unit /= 10, one -= 2) {
    number += unit * take_roman_digit(rest, one);
  }
  return rest.empty() ? number : 0;
}
