// House styles: how journals and their manuals want numbers and symbols to look.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "output/document.h"

namespace hierfit::report {

/// A house style. An empty text leaves what the language has.
struct Preset {
  std::string_view name;  ///< as in `--style`
  std::string_view decimal_mark;
  std::string_view less_than;
  std::string_view significance;  ///< the symbol that stands for "Sig." over a column
  std::array<int8_t, output::kFormats> decimals;
  std::array<output::SignificanceStep, 4> steps;
  double largest_significance;
  bool significance_zero;
  bool symbols;  ///< whether statistical symbols are set in italics
};

/// The first one is in force when none is asked for: three decimals, p below 0.001 as "<0.001".
///
/// - `apa`: Publication Manual of the American Psychological Association, 7th edition,
/// section 6.36:
///   two decimals, exact p of three, "< .001" below, no zero ahead of the point, italic symbols.
/// - `jama`: AMA Manual of Style, 11th edition, chapter 19: p of two decimals, of three below .01,
///   bounded by "<.001" and ">.99", no zero ahead of the point, italic capital P.
/// - `lancet`: The Lancet's guide for authors: raised decimal point, p of two significant digits,
///   "<0\u00B70001" below.
inline constexpr Preset kPresets[] = {
    {"default",
     "",
     "<",
     "",
     {3, 3, 0, 3, 1, 3, -1, -1},
     {{{0.001, 3}, {0.001, 3}, {0.001, 3}, {0.001, 3}}},
     1,
     true,
     false},
    {"apa",
     "",
     "< ",
     "p",
     {2, 2, 0, 2, 1, 3, -1, -1},
     {{{0.001, 3}, {0.001, 3}, {0.001, 3}, {0.001, 3}}},
     1,
     false,
     true},
    {"jama",
     "",
     "<",
     "P",
     {2, 2, 0, 2, 1, 3, -1, -1},
     {{{0.01, 2}, {0.001, 3}, {0.001, 3}, {0.001, 3}}},
     0.99,
     false,
     true},
    {"lancet",
     "\u00B7",
     "<",
     "p",
     {2, 2, 0, 2, 1, 3, -1, -1},
     {{{0.1, 2}, {0.01, 3}, {0.001, 4}, {0.0001, 5}}},
     1,
     true,
     true},
};

/// The preset of that name, or null. Case matters.
const Preset* preset_by_name(std::string_view name);

/// Has a document show in a house style. Which tables, rows, columns and cells there are does not
/// change, nor does any number: only how they are written. A number in a column of significances
/// follows the rule of the style for p, in whatever format it came.
void apply(const Preset& preset, output::Document& document);

}  // namespace hierfit::report
