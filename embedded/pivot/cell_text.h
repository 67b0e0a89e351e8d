// What is behind the texts of the pivot library: their parts, how they show, which are the same.
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "host/dictionary.h"
#include "host/pivot.h"

#include "embedded/dictionary/data_dictionary.h"
#include "embedded/strings/string_table.h"
#include "output/document.h"

namespace hierfit::pivot {

struct StringText {
  std::string text;
  bool is_key = false;
};

struct NumberText {
  double value = 0;
  BpFormatSpec format;
};

struct VariableText {
  const VELT_Variable* variable = nullptr;
  int32_t show = 0;
};

/// A value that is neither null nor of the wrong kind stands in `value`.
struct DataValueText {
  const VELT_Variable* variable = nullptr;
  std::optional<OBS> value;
  int32_t preference = 0;
};

/// The list arguments and the single ones, in the order in which they were added.
struct CompositeText {
  struct Argument {
    bool is_list = false;
    std::vector<RefCountPtr<BpCellText::Impl>> items;  ///< exactly one when it is no list
  };

  std::string pattern;
  bool is_key = false;
  std::vector<Argument> arguments;
  bool list_is_open = false;
};

}  // namespace hierfit::pivot

struct BpCellText::Impl {
  std::variant<hierfit::pivot::StringText,
               hierfit::pivot::NumberText,
               hierfit::pivot::VariableText,
               hierfit::pivot::DataValueText,
               hierfit::pivot::CompositeText>
      part;
};

struct BpAnnotation::Impl {
  RefCountPtr<BpCellText::Impl> text;
  int32_t index = -1;
  bool flag = false;
};

/// The journal's form of a text and of a note.
void append_json(std::string& out, const BpCellText::Impl& text);
void append_json(std::string& out, const BpCellText& text);
void append_json(std::string& out, const BpAnnotation& note);

namespace hierfit::pivot {

/// What texts are worded with, and the document that they go into.
struct Wording {
  const StringTable& strings;
  output::Document& document;
  const DataDictionary& dictionary;
};

/// The text as a person sees it, in the language of the string table.
output::Text shown_text(const BpCellText::Impl& text, const Wording& wording);

/// The number that the text is, if it is one: a `BpNumber`, or a data value that has no value
/// label. A data value without a value is the system-missing number.
std::optional<output::Number> as_number(const BpCellText::Impl& text);

/// Appends bytes that are equal for two texts exactly when they are the same label: of one kind,
/// with equal text and flag, or with equal arguments.
void append_identity(std::string& out, const BpCellText::Impl& text);

/// Takes over the copy that `BpCellText::Replicate` made; null for a handle that it did not give.
RefCountPtr<BpCellText::Impl> take_replicate(long handle);

}  // namespace hierfit::pivot
