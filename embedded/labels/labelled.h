// Expressions of field names, as a reader is to see them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "embedded/dictionary/data_dictionary.h"

namespace hierfit {

/// What fields and their values are called in a report.
enum class Naming : uint8_t { Name, Label, Both };

struct NamedNaming {
  std::string_view name;
  Naming naming;
};
/// By the words of the command line.
inline constexpr NamedNaming kNamings[] = {
    {"name", Naming::Name}, {"label", Naming::Label}, {"both", Naming::Both}};

/// Has the dictionary give labels as they are to be read: none with `Name`; with `Both` "label
/// (name)" and "label (value)".
void apply(Naming naming, DataDictionary& dictionary);

/// An effect, a term, a covariance parameter or a subject specification ("a * b(c)", "[a=1]*x",
/// "Var(x)") with the labels of its fields and, behind "=", of their values. Names end where a
/// character of such expressions or the text does; of several names the longest counts. What is no
/// name stays. As long as a label may be, at most.
std::string labelled(std::string_view expression, const DataDictionary& dictionary);

/// The label of a value of a field, given as text; null for none.
const std::string* label_of_value(const Variable& variable, std::string_view value);

}  // namespace hierfit
