// Chart data: columns with gaps and mixed kinds, their bytes, and what texts and conditions mean.
#include "embedded/chart/chart_data.h"

#include <doctest/doctest.h>
#include <limits>

#include "embedded/chart/chart_text.h"
#include "tests/embedded/chart_session.h"

using namespace hierfit;
using namespace hierfit::test;
using output::ChartColumn;

namespace {

/// A row each: "1.5", "'text'" or "-".
std::string rows_of(const ChartColumn& column) {
  std::string rows;
  for (size_t row = 0; row < column.rows(); ++row) {
    if (row > 0) rows += ' ';
    switch (column.kind(row)) {
      case ChartColumn::Kind::Unset:
        rows += '-';
        break;
      case ChartColumn::Kind::Number:
        journal::append_json(rows, column.number(row));
        break;
      case ChartColumn::Kind::Text:
        ((rows += '\'') += column.text(row)) += '\'';
    }
  }
  return rows;
}

/// A source "s" with variables "a" (by handle) and "b" (by name).
struct Sample {
  Sample() {
    data.AddDataSource("s", 0);
    data.AddVariable("s", "a", &a);
    data.AddVariable("s", "b", nullptr);
  }
  const ChartColumn& column(size_t variable) const {
    return data.impl().sources[0].variables[variable].values;
  }
  VarDataProcessor data;
  _varinfo a;
};

}  // namespace

TEST_CASE("a column holds numbers, texts and gaps") {
  Sample sample;
  SUBCASE("numbers alone stay a plain column") {
    for (int32_t row = 0; row < 3; ++row) {
      sample.data.SetVariableValue(&sample.a, row, row / 2.0);
    }
    CHECK(rows_of(sample.column(0)) == "0 0.5 1");
    CHECK(sample.column(0).all_numbers());
  }
  SUBCASE("rows between are unset, and the last value of a row holds") {
    sample.data.SetVariableValue("s", "b", 3, 1);
    sample.data.SetStringVariableValue("s", "b", 1, "x");
    sample.data.SetVariableValue("s", "b", 4, 2);
    sample.data.SetStringVariableValue("s", "b", 3, "");
    CHECK(rows_of(sample.column(1)) == "- 'x' - '' 2");
    sample.data.SetVariableValue("s", "b", 1, 7);
    CHECK(rows_of(sample.column(1)) == "- 7 - '' 2");
    CHECK(sample.column(1).kind(99) == ChartColumn::Kind::Unset);
  }
  SUBCASE("a number takes text into its rows later on") {
    sample.data.SetVariableValue(&sample.a, 0, 1);
    sample.data.SetStringVariableValue(&sample.a, 1, "x");
    sample.data.SetStringVariableValue(&sample.a, 2, "x");
    CHECK(rows_of(sample.column(0)) == "1 'x' 'x'");
  }
}

TEST_CASE("texts stay whole as long as the documents account for them") {
  const ChartSession session;
  Sample sample;
  const std::string text = "\u00E9" + std::string(size_t{3} << 20, 'y');
  const std::string some(2 * chart::kShortText, 'x');
  const std::string* const texts[] = {&text, &text, &some};
  for (int32_t row = 0; row < 3; ++row) {
    sample.data.SetStringVariableValue(&sample.a, row, *texts[row]);
  }
  CHECK(sample.column(0).text(0).size() == text.size());
  CHECK(sample.column(0).text(1).size() == chart::kShortText);
  CHECK(sample.column(0).text(1).ends_with("y\u2026"));
  CHECK(sample.column(0).text(2) == some);
}

TEST_CASE("values for nothing that is there are dropped") {
  Sample sample;
  const _varinfo unknown;
  _varinfo lost;
  sample.data.AddVariable("nowhere", "a", &lost);
  sample.data.SetVariableValue(&unknown, 0, 1);
  sample.data.SetVariableValue(&lost, 0, 1);
  sample.data.SetVariableValue(nullptr, 0, 1);
  sample.data.SetVariableValue("s", "c", 0, 1);
  sample.data.SetStringVariableValue("t", "a", 0, "x");
  sample.data.SetVariableValue(&sample.a, -1, 1);
  sample.data.SetVariableValue(&sample.a, std::numeric_limits<int32_t>::max(), 1);
  CHECK(sample.column(0).rows() == 0);
  CHECK(sample.column(1).rows() == 0);

  _varinfo again;
  sample.data.AddDataSource("s", 7);
  sample.data.AddVariable("s", "a", &again);
  CHECK(again.variable == sample.a.variable);
  CHECK(sample.data.impl().sources.size() == 1);
}

TEST_CASE("data go through their bytes and back") {
  Sample sample;
  sample.data.AddDataSource("fixed", 9);
  sample.data.SetVariableValue(&sample.a, 0, -0.5);
  sample.data.SetVariableValue(&sample.a, 2, std::numeric_limits<double>::infinity());
  sample.data.SetStringVariableValue("s", "b", 1, "caf\u00e9 <&>");
  int32_t length = 0;
  const std::unique_ptr<char[]> buffer(sample.data.GetDataStream(length));
  const std::string bytes(buffer.get(), static_cast<size_t>(length));

  const auto sources = chart::read_data_stream(bytes);
  REQUIRE(sources.size() == 2);
  CHECK(sources[0].name == "s");
  CHECK(rows_of(sources[0].variables[0].values) == rows_of(sample.column(0)));
  CHECK(rows_of(sources[0].variables[1].values) == "- 'caf\u00e9 <&>'");
  CHECK(sources[1].rows == 9);

  for (size_t cut = 0; cut < bytes.size(); ++cut) {
    CHECK(chart::read_data_stream(bytes.substr(0, cut)).empty());
  }
  CHECK(chart::read_data_stream(bytes + "x").empty());
  std::string counts = bytes;
  for (size_t at = 4; at < counts.size(); ++at) {
    counts[at] = '\xFF';  // counts beyond what is there must not be believed
    CHECK(chart::read_data_stream(counts).size() <= 2);
    counts[at] = bytes[at];
  }
}

TEST_CASE("texts keep what a document can hold") {
  CHECK(chart::xml_characters("a\x01\x0B\tb\xEF\xBF\xBE") == "a\tb");

  ChartString text("^1 by ^1");
  text.replaceSubstring(ChartString("^1"), ChartString("x"));
  text.replaceSubstring(ChartString(""), ChartString("y"));
  CHECK(text.toUTF8() == "x by ^1");
}

TEST_CASE("plain text resolves breaks and references, nothing else") {
  CHECK(output::plain_text("a<BR/>b &lt;&amp;&quot;&#9472;&#x41;") == "a\nb <&\"\u2500A");
  CHECK(output::plain_text("&amp;lt; &unknown; &#0; &#xD800; &#12 < & <b>") ==
        "&lt; &unknown; &#0; &#xD800; &#12 < & <b>");
}
