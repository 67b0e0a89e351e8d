// Reads the attributes of an element into the fields of a record, by tables of bindings.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

#include "host/framework.h"

#include "backend/hierfit/reader/Elements.h"
#include "backend/hierfit/store/SystemMissing.h"

/// What the absence of an attribute means for the element that lacks it.
enum class Need { Required, Optional };

/// A field of a record by the name of the attribute that fills it, or of the statistic whose value
/// does. Texts go in unchanged, a bool is whether the text is "true", numbers are converted.
template <class Record>
struct AttributeBinding {
  std::string_view name;
  std::variant<std::string Record::*, double Record::*, int32_t Record::*, bool Record::*> field;
  double ifEmpty = kSystemMissing;  ///< the number that an empty text stands for
  int32_t (*toInteger)(const std::string&) = &String2Integer;
  Need need = Need::Required;
};

/// The double without its fraction, held within the range of the integer.
inline int32_t TruncateToInteger(double number) {
  using Limits = std::numeric_limits<int32_t>;
  if (!(number > Limits::min())) return Limits::min();
  return number < Limits::max() ? static_cast<int32_t>(number) : Limits::max();
}

/// The position of a text among the texts of an enumeration; their number for any other text.
inline int32_t CodeOf(std::span<const std::string_view> texts, std::string_view text) {
  return static_cast<int32_t>(std::ranges::find(texts, text) - texts.begin());
}

/// Stores a text into the field of a binding.
template <class Record>
void StoreText(const AttributeBinding<Record>& binding, const std::string& text, Record& record) {
  const auto store = [&](auto field) {
    using Value = std::remove_cvref_t<decltype(record.*field)>;
    if constexpr (std::is_same_v<Value, std::string>) {
      record.*field = text;
    } else if constexpr (std::is_same_v<Value, double>) {
      record.*field = text.empty() ? binding.ifEmpty : String2Double(text);
    } else if constexpr (std::is_same_v<Value, int32_t>) {
      record.*field = text.empty() ? TruncateToInteger(binding.ifEmpty) : binding.toInteger(text);
    } else {
      record.*field = text == "true";
    }
  };
  std::visit(store, binding.field);
}

/// Stores a text into each field that is bound to the name; a name without a field does nothing.
template <class Record, std::size_t N>
void StoreNamed(const AttributeBinding<Record> (&bindings)[N],
                std::string_view name,
                const std::string& text,
                Record& record) {
  for (const AttributeBinding<Record>& binding : bindings) {
    if (binding.name == name) StoreText(binding, text, record);
  }
}

/// Fills the field of one binding; an absent attribute reads as an empty text. Gives whether it is
/// there. `scratch` is room for a text.
template <class Record>
bool ReadAttribute(SDOMXMLWrapper& element,
                   const AttributeBinding<Record>& binding,
                   std::string& scratch,
                   Record& record) {
  if (auto field = std::get_if<std::string Record::*>(&binding.field)) {
    return ReadText(element, binding.name, record.**field);
  }
  const bool isThere = ReadText(element, binding.name, scratch);
  StoreText(binding, scratch, record);
  return isThere;
}

/// Fills `record` in the order of the bindings. False at the first required attribute that is
/// absent; its field then has the value of an empty text, as that of an optional one that is
/// absent.
template <class Record, std::size_t N>
[[nodiscard]] bool ReadAttributes(SDOMXMLWrapper& element,
                                  const AttributeBinding<Record> (&bindings)[N],
                                  Record& record) {
  std::string scratch;
  for (const AttributeBinding<Record>& binding : bindings) {
    const bool isThere = ReadAttribute(element, binding, scratch, record);
    if (!isThere && binding.need == Need::Required) return false;
  }
  return true;
}

/// Fills `record` in the order of the bindings; absent attributes read as empty texts.
template <class Record, std::size_t N>
void ReadAttributesUntested(SDOMXMLWrapper& element,
                            const AttributeBinding<Record> (&bindings)[N],
                            Record& record) {
  std::string scratch;
  for (const AttributeBinding<Record>& binding : bindings) {
    ReadAttribute(element, binding, scratch, record);
  }
}

/// Gives the fields of the bindings the values that empty texts stand for.
template <class Record, std::size_t N>
void StoreEmptyTexts(const AttributeBinding<Record> (&bindings)[N], Record& record) {
  const std::string text;
  for (const AttributeBinding<Record>& binding : bindings) {
    StoreText(binding, text, record);
  }
}
