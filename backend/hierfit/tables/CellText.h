// Texts for the pivot library: which are keys of the string table, and which stand as they are.
#pragma once

#include <string>
#include <utility>

#include "host/pivot.h"

/// A text of fixed wording, which the string table translates.
inline BpString Key(std::string key) { return BpString(std::move(key), true); }

/// A text that is shown as it stands.
inline BpString Text(std::string text) { return BpString(std::move(text), false); }

/// A pattern of the string table with one argument.
inline BpComposite KeyWith(std::string pattern, const BpCellText& argument) {
  BpComposite composite(std::move(pattern), true);
  composite.Add(argument);
  composite.Finish();
  return composite;
}

/// A number in the format of `BpProcedure::SigDigit` for that very number.
inline BpNumber SigDigitNumber(double number) {
  return BpNumber(number, BpProcedure::SigDigit(number));
}
