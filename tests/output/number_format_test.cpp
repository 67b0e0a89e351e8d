// How statistics are written.
#include "output/number_format.h"

#include <doctest/doctest.h>
#include <limits>

using hierfit::output::Format;
using hierfit::output::kSystemMissing;
using hierfit::output::Number;
using hierfit::output::NumberStyle;

TEST_CASE("numbers show as statisticians write them") {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  struct Case {
    double value;
    Format format;
    const char* shown;
  };
  const Case cases[] = {
      {251.40510484848497, Format::Coefficient, "251.405"},
      {0.00051, Format::Coefficient, "0.001"},
      {0.00049, Format::Coefficient, "4.900E-4"},
      {-0.0002, Format::GeneralStat, "-2.000E-4"},
      {0.0, Format::Coefficient, "0.000"},
      {-0.0, Format::CoefficientSE, "0.000"},
      {-1.5, Format::Coefficient, "-1.500"},
      {9999999999.4994, Format::GeneralStat, "9999999999.499"},
      {12345678901.0, Format::Count, "1.235E10"},
      {-1e300, Format::Coefficient, "-1.000E300"},
      {0.25, Format::Count, "2.500E-1"},
      {17.4, Format::Count, "17"},
      {0.0009999, Format::Significance, "<0.001"},
      {0.0, Format::Significance, "<0.001"},
      {0.001, Format::Significance, "0.001"},
      {0.9996, Format::Significance, "1.000"},
      {-0.5, Format::Significance, "-0.500"},
      {87.5, Format::Percent, "87.5%"},
      {0.95 * 100.0, Format::SigDigit, "95"},
      {0.57 * 100.0, Format::SigDigit, "57"},
      {97.5, Format::SigDigit, "97.5"},
      {-0.125, Format::SigDigit, "-0.125"},
      {1e-12, Format::SigDigit, "1.000E-12"},
      {0.0, Format::SigDigit, "0"},
      {kSystemMissing, Format::Significance, "."},
      {kSystemMissing * 100.0, Format::SigDigit, "."},
      {kInfinity, Format::Coefficient, "."},
      {std::numeric_limits<double>::quiet_NaN(), Format::Count, "."},
  };
  for (const Case& c : cases) {
    CAPTURE(c.value);
    CHECK(shown(Number{c.value, c.format}, {}) == c.shown);
  }
}

const NumberStyle kTypeset = {.decimal_mark = ",", .minus = "\u2212", .missing = ""};

TEST_CASE("a value has the decimals of its variable, and a language its marks") {
  CHECK(shown(Number{2.5, Format::Fixed, 2}, {}) == "2.50");
  CHECK(shown(Number{3.0, Format::Fixed, 0}, {}) == "3");
  CHECK(shown(Number{-1234.5, Format::Fixed, 1}, kTypeset) == "\u22121234,5");
  CHECK(shown(Number{4.5e-7, Format::Coefficient}, kTypeset) == "4,500E\u22127");
  CHECK(shown(Number{kSystemMissing, Format::Coefficient}, kTypeset).empty());
}
