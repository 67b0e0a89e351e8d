// Texts, numbers and truth values of a fit document, on their way into fields.
#pragma once

#include <cstdint>
#include <string>

#include "import/member.h"

namespace hierfit::fit {

/// What stands in the document where no list and no object begins.
struct Scalar {
  enum class Type : uint8_t { Null, Flag, Integer, Number, Text } type = Type::Null;
  bool flag = false;
  int64_t integer = 0;
  double number = 0;  ///< of an integer, too
  std::string text = {};

  bool is_null() const { return type == Type::Null; }
  bool is_number() const { return type == Type::Number || type == Type::Integer; }
  bool is_text() const { return type == Type::Text; }
  bool is_whole() const;
  /// A text as it is, a number in its shortest form.
  std::string value_text() const;
  /// What a message shows of it.
  std::string shown() const;
};

/// "no number", "no list of texts": what something is that is not of the kind.
std::string not_of(Kind kind);

/// Puts the scalar into the field of a member. Gives what is wrong with it, "is 3, which is no
/// text", and nothing when nothing is.
std::string store(const Member& member, const Scalar& scalar, void* record);

/// Puts the scalar behind the items of a list of this kind, which is the value of the member or a
/// part of it. Gives what is wrong with it.
std::string store_item(const Member& member, Kind kind, const Scalar& scalar, void* list);

/// A value from a scalar. Gives what is wrong with it.
std::string store_value(const Scalar& scalar, Value& value);

}  // namespace hierfit::fit
