// The framework's conversions, values of fields and characters.
#include <clocale>
#include <doctest/doctest.h>
#include <limits>

#include "host/framework.h"
#include "host/text.h"

#include "embedded/dictionary/variable.h"
#include "output/number_format.h"

using hierfit::output::kSystemMissing;

TEST_CASE("a text is a number only as a whole") {
  struct Row {
    const char* text;
    double number;
  };
  const Row rows[] = {
      {"0", 0},
      {"-12.50", -12.5},
      {"+.5", 0.5},
      {"7.", 7},
      {"1e3", 1000},
      {"1.5E+02", 150},
      {"2e-2", 0.02},
      {"1.7976931348623157e308", std::numeric_limits<double>::max()},
      {"4.9406564584124654e-324", std::numeric_limits<double>::denorm_min()},
      {"1e-400", 0},
      {"0.00000001e-320", 0},
      {"0e99999999999999999999", 0},
      {"1e-99999999999999999999", 0},
      {"", kSystemMissing},
      {" 1", kSystemMissing},
      {"1 ", kSystemMissing},
      {".", kSystemMissing},
      {"-", kSystemMissing},
      {"+-1", kSystemMissing},
      {"1e", kSystemMissing},
      {"1e+", kSystemMissing},
      {"e5", kSystemMissing},
      {"1.2.3", kSystemMissing},
      {"1,5", kSystemMissing},
      {"0x10", kSystemMissing},
      {"inf", kSystemMissing},
      {"nan", kSystemMissing},
      {"1e309", kSystemMissing},
      {"-1e99999999999999999999", kSystemMissing},
      {"100000e304", kSystemMissing},
      {"1d5", kSystemMissing},
  };
  for (const Row& row : rows) {
    CAPTURE(row.text);
    CHECK(String2Double(row.text) == row.number);
  }
}

TEST_CASE("whole numbers and Roman numerals are read as a whole or are 0") {
  struct Row {
    const char* text;
    int32_t number;
  };
  const Row whole[] = {{"12", 12},
                       {"-3", -3},
                       {"+4", 4},
                       {"007", 7},
                       {"2147483647", 2147483647},
                       {"-2147483648", std::numeric_limits<int32_t>::min()},
                       {"2147483648", 0},
                       {"1.0", 0},
                       {"+-1", 0},
                       {"-+1", 0},
                       {" 1", 0},
                       {"1 ", 0},
                       {"", 0},
                       {"+", 0}};
  for (const Row& row : whole) {
    CAPTURE(row.text);
    CHECK(String2Integer(row.text) == row.number);
  }
  const Row roman[] = {{"I", 1},        {"III", 3},          {"IV", 4},   {"IX", 9},   {"XL", 40},
                       {"MCMXC", 1990}, {"MMMCMXCIX", 3999}, {"IIII", 0}, {"VX", 0},   {"IM", 0},
                       {"XLX", 0},      {"iv", 0},           {"", 0},     {"MMMM", 0}, {"I ", 0}};
  for (const Row& row : roman) {
    CAPTURE(row.text);
    CHECK(Roman2Integer(row.text) == row.number);
  }
  CHECK(Roman2Integer(std::string(1000000, 'M')) == 0);
}

TEST_CASE("a value loads when it fits its variable, and shows in its format") {
  hierfit::Variable number("number");
  number.set_format({8, 5, 2});
  hierfit::Variable text("text");
  text.set_format({8, kStringFormatType, 0});

  CFStatVariableValue value;
  CHECK(value.SetCompleteValue("-0.001", &number, 0));
  CHECK(ToString(value.GetObsValue(), number.GetFormat()) == "0.00");
  CHECK(value.SetCompleteValue("1e2", &number, 0));
  CHECK(ToString(value.GetObsValue(), number.GetFormat()) == "100.00");
  CHECK(value.SetCompleteValue("1e300", &number, 0));
  CHECK(ToString(value.GetObsValue(), {8, 5, 255}).size() == 301 + 1 + 255);

  CHECK_FALSE(value.SetCompleteValue("12 pears", &number, 0));
  CHECK(value.GetObsValue() == nullptr);
  CHECK(value.GetStringValue() == "12 pears");
  CHECK(value.LoadObsValue(&text, 0));
  CHECK(value.GetObsValue()->number == kSystemMissing);
  CHECK_FALSE(value.LoadObsValue(nullptr, 0));
  CHECK(value.GetObsValue() == nullptr);

  CHECK(value.SetCompleteValue(" pad  ", &text, 0));
  CHECK(ToString(value.GetObsValue(), text.GetFormat()) == " pad");
  value.SetStringValue("other");
  CHECK(ToString(value.GetObsValue(), text.GetFormat()).empty());
  const OBS missing;
  CHECK(ToString(&missing, number.GetFormat()) == ".");
}

TEST_CASE("value labels are found by value and kind") {
  hierfit::Variable number("number");
  CHECK(number.set_value_label("1.0", "one"));
  CHECK(number.set_value_label("1", "uno"));
  CHECK_FALSE(number.set_value_label("x", "nothing"));
  const VELT_ValueLabelMap labels(number.GetValueLabels());
  CHECK(std::string(labels.GetLabel(1.0)) == "uno");
  CHECK(labels.GetLabel(2.0) == nullptr);
  CHECK(labels.GetLabel(std::string("1")) == nullptr);
  const OBS as_string{.isString = true, .text = "1"};
  CHECK(labels.GetLabel(&as_string) == nullptr);
  CHECK(labels.GetLabel(static_cast<const OBS*>(nullptr)) == nullptr);

  number.set_format({8, kStringFormatType, 0});
  CHECK(std::string(labels.GetLabel(&as_string)) == "uno");
  CHECK(labels.GetLabel(1.0) == nullptr);
}

TEST_CASE("the length of a character never goes beyond the text") {
  CHECK(VELTMBmbclen_A("a") == 1);
  CHECK(VELTMBmbclen_A("\u00e9x") == 2);
  CHECK(VELTMBmbclen_A("\u2212x") == 3);
  CHECK(VELTMBmbclen_A("\U0001F40D") == 4);
  for (const char* broken : {"", "\x80", "\xC3", "\xE2\x88", "\xF0\x9F\x90", "\xFF\xFF\xFF\xFF"}) {
    CHECK(VELTMBmbclen_A(broken) == 1);
  }
}
