// What may stand in the two documents: facts that the reader does not need, and people do.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace hierfit::fit {

/// What stands in an attribute.
enum class FactKind : uint8_t {
  Word,    ///< one of a list
  Number,  ///< a number, or nothing
  Count,   ///< a whole number of 0 or more, or nothing
  Level,   ///< a number between 0 and 1
  Truth,   ///< "true" or "false"
  Field,   ///< the name of a variable
};

/// One attribute of an element.
struct Fact {
  std::string_view element;
  /// Of an element that is known by its attribute `name`: that name, else empty.
  std::string_view name;
  std::string_view attribute;
  FactKind kind;
  std::span<const std::string_view> words = {};  ///< of `Word`
  const char* otherwise = "";                    ///< what becomes of another word
};

std::span<const Fact> result_facts();
std::span<const Fact> model_facts();

}  // namespace hierfit::fit
