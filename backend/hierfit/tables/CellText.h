// Texts for the pivot library: which are keys of the string table, and which stand as they are.
#pragma once

#include <string>
#include <utility>

#include "host/pivot.h"

/// A text of fixed wording, which the string table translates.
inline BpString Key(std::string key) { return BpString(std::move(key), true); }

/// A text that is shown as it stands.
inline BpString Text(std::string text) { return BpString(std::move(text), false); }

/// A pattern of the string table with its arguments in order.
template <class... Arguments>
BpComposite KeyWith(std::string pattern, const Arguments&... arguments) {
  BpComposite composite(std::move(pattern), true);
  (composite.Add(arguments), ...);
  composite.Finish();
  return composite;
}

/// The pattern that sets the items of its one list argument below each other.
inline constexpr char kLinesPattern[] = "[%1:\n^1:]1";

/// A number in the format of `BpProcedure::SigDigit` for that very number.
inline BpNumber SigDigitNumber(double number) {
  return BpNumber(number, BpProcedure::SigDigit(number));
}

/// A footnote of this text.
inline BpAnnotation Footnote(const BpCellText& text) {
  return BpAnnotation(text.Replicate(), -1, false);
}
