#include "report/xlsx/number_format.h"

#include <array>
#include <charconv>

namespace hierfit::report::xlsx {

using output::Format;
using output::Number;
using output::NumberStyle;

namespace {

/// By letter: its raised form, which a number format can hold.
constexpr std::array<std::string_view, 26> kRaised = {"ᵃ", "ᵇ", "ᶜ", "ᵈ", "ᵉ", "ᶠ", "ᵍ", "ʰ",   "ⁱ",
                                                      "ʲ", "ᵏ", "ˡ", "ᵐ", "ⁿ", "ᵒ", "ᵖ", "(q)", "ʳ",
                                                      "ˢ", "ᵗ", "ᵘ", "ᵛ", "ʷ", "ˣ", "ʸ", "ᶻ"};

std::string quoted(std::string_view text) {
  std::string literal = "\"";
  for (const char character : text) {
    if (character != '"') literal += character;
  }
  return literal += '"';
}

std::string raised(std::string_view marks) {
  std::string letters;
  for (const char mark : marks) {
    if (mark == ',') {
      letters += ',';
    } else {
      letters += kRaised[static_cast<size_t>(mark - 'a')];
    }
  }
  return letters;
}

std::string threshold(double value) {
  std::array<char, 32> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  return {digits.data(), end};
}

bool is_probability(const Number& number) {
  return number.format == Format::Significance && number.value >= 0 && number.value <= 1;
}

/// The digits: "0.000", ".000", "0".
std::string digits_of(const AlignedCell& cell, bool leading_zero) {
  std::string digits = leading_zero ? "0" : "";
  if (cell.fraction > 1) (digits += '.').append(size_t{cell.fraction} - 1, '0');
  return digits;
}

/// Blanks as wide as what is missing behind the digits.
std::string padding(const AlignedCell& cell,
                    const ColumnParts& parts,
                    size_t right_length,
                    std::string_view marks,
                    std::string_view widest_marks) {
  std::string blanks;
  size_t missing = right_length - std::min(right_length, size_t{cell.fraction} + cell.tail);
  if (missing > 0 && cell.fraction == 0 && parts.fraction > 0) {
    blanks += "_.";
    --missing;
  }
  for (; missing > 0; --missing)
    blanks += "_0";
  for (size_t i = std::min(marks.size(), widest_marks.size()); i < widest_marks.size(); ++i)
    blanks += widest_marks[i] == ',' ? "_," : "_r";
  return blanks;
}

/// Probabilities beyond the bounds of the style show as the bound, whatever the cell comes to hold.
std::string bounded(const std::string& digits,
                    const std::string& behind,
                    const NumberStyle& style) {
  const auto bound = [&](double value, char comparison, double limit) {
    return std::string("[") + comparison + threshold(limit) + "]" +
           quoted(output::shown({value, Format::Significance}, style)) + behind + ";";
  };
  std::string format = bound(0, '<', style.significance.back().from);
  if (style.largest_significance < 1) format += bound(1, '>', style.largest_significance);
  return format + digits + behind;
}

}  // namespace

std::string number_format(const Number& number,
                          const AlignedCell& cell,
                          const ColumnParts& parts,
                          size_t right_length,
                          const NumberStyle& style,
                          std::string_view marks,
                          std::string_view widest_marks) {
  std::string behind = marks.empty() ? "" : quoted(raised(marks));
  behind += padding(cell, parts, right_length, marks, widest_marks);
  if (is_probability(number)) {
    return bounded(digits_of(cell, style.significance_zero), behind, style);
  }
  std::string format = digits_of(cell, true);
  if (number.format == Format::Percent) {
    format += quoted(style.percent);
  } else if (cell.tail > 0) {
    format += "E-0";
  }
  return format + behind;
}

}  // namespace hierfit::report::xlsx
