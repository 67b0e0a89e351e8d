// How the output writes numbers.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>

namespace hierfit::output {

/// The formats of statistics, and that of a value of a variable.
enum class Format : uint8_t {
  Coefficient,    ///< three decimals
  CoefficientSE,  ///< three decimals
  Count,          ///< no decimals
  GeneralStat,    ///< three decimals
  Percent,        ///< one decimal
  Significance,   ///< three decimals, "<0.001" below that
  SigDigit,       ///< as many decimals as the number needs
  Fixed,          ///< the decimals of a variable's print format
};
inline constexpr int kFormats = 8;

/// The name of a format, as the journal and the JSON form write it: "Coefficient", ...
std::string_view format_name(Format format);

/// The double that stands for a number that does not exist.
inline constexpr double kSystemMissing = -1.7976931348623157e+308;

/// A number and how it is to be shown.
struct Number {
  double value = kSystemMissing;
  Format format = Format::GeneralStat;
  uint8_t decimals = 0;  ///< of `Fixed`: digits behind the decimal mark

  /// A number that does not exist; so is what arithmetic made of one, which is not finite.
  bool missing() const { return value == kSystemMissing || !std::isfinite(value); }
  bool operator==(const Number&) const = default;
};

/// The decimals of a significance depend on its size: those of the first step that it reaches.
struct SignificanceStep {
  double from = 0;
  int8_t decimals = 3;

  bool operator==(const SignificanceStep&) const = default;
};

/// The marks of a language and the decimals of a house style.
struct NumberStyle {
  std::string decimal_mark = ".";
  std::string minus = "-";      ///< U+2212 in forms that are typeset
  std::string missing = ".";    ///< what a number that does not exist shows as
  std::string percent = "%";    ///< with the space ahead of it that the language wants
  std::string less_than = "<";  ///< ahead of the smallest significance
  std::string more_than = ">";  ///< ahead of the largest

  /// By format. Of `Significance` the `significance` steps tell; -1: as many as the number needs or
  /// as its variable has.
  std::array<int8_t, kFormats> decimals = {3, 3, 0, 3, 1, 3, -1, -1};
  /// In falling order. A significance below the last step shows as less than that step.
  std::array<SignificanceStep, 4> significance = {{{0.001, 3}, {0.001, 3}, {0.001, 3}, {0.001, 3}}};
  /// A significance above it shows as more than it.
  double largest_significance = 1;
  /// Whether a significance, which cannot exceed 1, has a zero ahead of the decimal mark.
  bool significance_zero = true;

  bool operator==(const NumberStyle&) const = default;
};

/// Appends the number as a reader sees it. A number that is not 0 never shows as 0: below half a
/// unit of the last decimal it goes to scientific form ("2.345E-5"), a significance below the
/// smallest of the style to "<0.001". "-0.000" never shows. From eleven digits ahead of the decimal
/// mark on the form is scientific. A percentage has its sign behind it.
void append_shown(std::string& out, const Number& number, const NumberStyle& style);

/// The same as a text of its own.
std::string shown(const Number& number, const NumberStyle& style);

}  // namespace hierfit::output
