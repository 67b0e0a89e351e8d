// Numbers, texts and edits of the charts, with hostile texts.
#include <bit>
#include <cmath>
#include <cstring>
#include <doctest/doctest.h>
#include <limits>
#include <locale>
#include <random>
#include <sstream>

#include "backend/hierfit/charts/ChartText.h"
#include "backend/hierfit/charts/HFITChartImpl.h"
#include "backend/hierfit/charts/TextEdits.h"
#include "backend/hierfit/store/LabelText.h"

namespace {

/// What a stream makes of a text.
struct StreamRead {
  double number = 0.0;
  bool is_whole = false;
};

StreamRead read_by_stream(const std::string& text) {
  std::istringstream stream(text);
  stream.imbue(std::locale::classic());
  StreamRead read;
  const bool works = static_cast<bool>(stream >> read.number);
  stream.clear(stream.rdstate() & ~std::ios::failbit);
  read.is_whole = works && stream.peek() == std::istringstream::traits_type::eof();
  return read;
}

void check_like_stream(const std::string& text) {
  const StreamRead expected = read_by_stream(text);
  double number = -7;
  const bool is_whole = ParseNumber(text, number);
  if (is_whole == expected.is_whole && std::memcmp(&number, &expected.number, sizeof number) == 0) {
    return;
  }
  CAPTURE(text);
  CHECK(is_whole == expected.is_whole);
  CHECK(number == expected.number);
  CHECK(std::signbit(number) == std::signbit(expected.number));
}

std::string escaped(std::string text) {
  EscapeChartText(text);
  return text;
}

}  // namespace

TEST_CASE("a number is read as a stream reads it") {
  for (const char* text : {"",
                           " ",
                           "__MISSING__",
                           "1",
                           "-0",
                           "+5",
                           "1e",
                           "1e+",
                           "1ex",
                           "1e5x",
                           "1E-3",
                           " 2",
                           "2 ",
                           "\t\v2",
                           ".5",
                           "5.",
                           ".",
                           "+",
                           "-",
                           "+-5",
                           "--5",
                           "1.2.3",
                           "1,5",
                           "0x1A",
                           "inf",
                           "nan",
                           "Infinity",
                           "1e999",
                           "-1e999",
                           "1e999x",
                           "1e-999",
                           "4e-324",
                           "2e-324",
                           "1e-310",
                           "00012",
                           "000",
                           "1e0005",
                           "e5",
                           ".e5",
                           "1e5e5",
                           "1e5.5",
                           "12 months",
                           "1.7976931348623157e308",
                           "1.7976931348623159e308",
                           "0.1000000000000000055511151231257827021181583404541015625",
                           "\xC2\xA0"
                           "1"}) {
    check_like_stream(text);
  }
  check_like_stream(std::string("1\0", 2));
  check_like_stream(std::string(400, '9'));
  check_like_stream("0." + std::string(400, '0') + "1e400");

  std::mt19937 random(20);
  constexpr char kAlphabet[] = "0123456789012345..++--eE  x,inf\t";
  for (int i = 0; i < 100000; ++i) {
    std::string text;
    for (std::size_t n = random() % 12; n > 0; --n) {
      text += kAlphabet[random() % (sizeof kAlphabet - 1)];
    }
    check_like_stream(text);
  }
}

TEST_CASE("a number is printed as a stream prints it") {
  std::mt19937_64 random(20);
  const auto check = [](double number) {
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream << number;
    CHECK(NumberText(number) == stream.str());
  };
  for (double number :
       {0.0, -0.0, 1.0, 100000.0, 1234567.0, 0.0001, 0.00001234567, 98.76545, kSystemMissing,
        std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
        std::numeric_limits<double>::quiet_NaN()}) {
    check(number);
  }
  for (int i = 0; i < 1000; ++i) {
    check(std::bit_cast<double>(random()));
  }
}

TEST_CASE("a label is escaped byte by byte, a character of several bytes never") {
  CHECK(escaped("").empty());
  CHECK(escaped("a\nb\fc\rd\r\ne\r\r\n\n") == "a<BR/>b<BR/>c<BR/>d<BR/>e<BR/><BR/><BR/>");
  CHECK(escaped("<a href=\"x\">&amp;'") == "&lt;a href=&quot;x&quot;&gt;&amp;amp;'");
  CHECK(escaped("\x0E\x0F\x10\x11\x12\x13\x14\x15\x16\x17\x18") ==
        "&#9472;&#9474;&#9532;&#9492;&#9484;&#9496;&#9488;&#9500;&#9508;&#9516;&#9524;");
  CHECK(escaped("\x0B\x01\t") == "\x0B\x01\t");
  CHECK(escaped("\xC3\xA9\xE2\x82\xAC") == "\xC3\xA9\xE2\x82\xAC");
  // A character that is cut off by the end of the text.
  CHECK(escaped("a\xE2\x82") == "a\xE2\x82");
}

TEST_CASE("a text of a document goes into a chart document as it is, or well-formed") {
  CHECK(EscapeXmlText("plain, text = 1") == "plain, text = 1");
  CHECK(EscapeXmlText("a\"b<c>&\n") == "a&quot;b&lt;c&gt;&amp;&#10;");
  CHECK(DocumentText(std::string("a\x01\x1F\tb\n")) == "a\tb\n");
  CHECK(DocumentText(std::string("\xEF\xBF\xBE"
                                 "a\xEF\xBF\xBD"
                                 "b\xEF\xBF\xBF")) ==
        "a\xEF\xBF\xBD"
        "b");
}

TEST_CASE("edits that find nothing leave the text, and so do those that follow them") {
  std::string text = "a one b one";
  CHECK(ReplaceFirst(text, "two", "2") == std::string::npos);
  CHECK(ReplaceFirst(text, "one", "1", std::string::npos) == std::string::npos);
  InsertAhead(text, "two", "2");
  InsertBehind(text, "two", "2");
  ReplaceAt(text, text.find("two"), 1, 1, "2");
  ReplaceAt(text, text.find("b one"), 4, 2, "2");
  InsertAt(text, text.find("b one"), 6, "2");
  EraseFromThrough(text, "b", "a");
  EraseFromThrough(text, "two", "one");
  CHECK(text == "a one b one");

  CHECK(ReplaceFirst(text, "one", "1") == 2);
  ReplaceAt(text, text.find("b one"), 4, 1, "2");
  InsertAt(text, text.find("b on2"), 5, "!");
  CHECK(text == "a 1 b on2!");
}

TEST_CASE("each literal is replaced once, and the result has a limit") {
  std::string text = "^1 and ^1";
  ReplaceEach(text, "^1", "^1^1");
  CHECK(text == "^1^1 and ^1^1");
  std::string labels;
  for (int i = 0; i < 100000; ++i) {
    labels += "^2";
  }
  ReplaceEach(labels, "^2", labels);
  CHECK(labels.size() <= kMaxLabelBytes + 10);
}

TEST_CASE("facets") {
  constexpr char kBoth[] =
      R"(<g><faceting><variableReference ref="f1"/><variableReference ref="f2"></variableReference>)"
      R"(</faceting><facetLayout><facetLevel n="1"/><facetLevel n="2"></facetLevel></facetLayout></g>)";
  SUBCASE("both go") {
    std::string text = kBoth;
    HFITChartImpl::RemoveFaceting(text);
    CHECK(text == "<g></g>");
  }
  SUBCASE("the second goes") {
    std::string text = kBoth;
    HFITChartImpl::RemoveSecondFacet(text);
    CHECK(text == R"(<g><faceting><variableReference ref="f1"/></faceting>)"
                  R"(<facetLayout><facetLevel n="1"/></facetLayout></g>)");
  }
  SUBCASE("what is missing or in another order leaves the text") {
    for (const char* text : {"", "<faceting>", "</facetLayout>", "</facetLayout><faceting>",
                             "<variableReference/>", "<variableReference/><variableReference/>",
                             "</variableReference><variableReference/><variableReference/>"}) {
      std::string edited = text;
      HFITChartImpl::RemoveFaceting(edited);
      HFITChartImpl::RemoveSecondFacet(edited);
      CHECK(edited == text);
    }
  }
  SUBCASE("a reference goes without its level") {
    std::string text =
        "<variableReference/><variableReference></variableReference><facetLevel n=\"1\"/>";
    HFITChartImpl::RemoveSecondFacet(text);
    CHECK(text == "<variableReference/><facetLevel n=\"1\"/>");
  }
}

TEST_CASE("guides take the levels and panels in the order of their keys") {
  constexpr char kGuide[] = R"(<lineGuide y="00" when="whenText"></lineGuide>)";
  const std::string template_text = std::string("<a>") + kGuide + kGuide + "</a>";
  const auto applied = [](std::string text, const LineGuideMap& guides) {
    HFITChartImpl::ApplyLineGuides(text, guides);
    return text;
  };
  CHECK(applied(template_text, {}) == "<a></a>");
  CHECK(applied("<a>whenText</a>", {}) == "<a>whenText</a>");
  CHECK(applied(template_text, {{"", {{"", ""}, 12.3456789}}}) ==
        R"(<a><lineGuide y="12.3457" when="false"></lineGuide></a>)");
  CHECK(applied(template_text, {{"b", {{"b", ""}, 2}}, {"a1", {{"a", "1"}, 1}}}) ==
        R"(<a><lineGuide y="1" when="facet1!=&quot;a&quot;||facet2!=&quot;1&quot;"></lineGuide>)"
        R"(<lineGuide y="2" when="facet1!=&quot;b&quot;"></lineGuide></a>)");

  // More guides than the template has, and values that look like the template.
  LineGuideMap many;
  for (const char* value : {"y=\"00\"", "whenText", "third"}) {
    many[value] = {{value, ""}, 3};
  }
  CHECK(applied(template_text, many) ==
        R"(<a><lineGuide y="3" when="facet1!=&quot;third&quot;"></lineGuide>)"
        R"(<lineGuide y="3" when="facet1!=&quot;whenText&quot;"></lineGuide></a>)");
  // A guide that is passed over is removed, with all behind it.
  CHECK(applied(R"(<lineGuide when="whenText" y="00">whenText</lineGuide>)",
                {{"", {{"", ""}, 4}}}) == "");
  CHECK(applied(R"(<lineGuide y="0)", many) == R"(<lineGuide y="0)");
  CHECK(applied(R"(<lineGuide y="00" whenText</lineGuide><lineGuide)", {}) == "<lineGuide");
}

TEST_CASE("the nodes of a diagram stand on a curve that bends towards the target") {
  CHECK(HFITChartImpl::NodeLayout(0).fvPositions.empty());
  CHECK(HFITChartImpl::NodeLayout(0).fExtent == 1);
  const NodeLayoutData one = HFITChartImpl::NodeLayout(1);
  REQUIRE(one.fvPositions.size() == 1);
  CHECK(one.fvPositions[0].fFromX == 0);
  CHECK(one.fvPositions[0].fFromY == 1);
  CHECK(one.fvPositions[0].fToX == 1);
  CHECK(one.fvPositions[0].fToY == 1);
  const NodeLayoutData five = HFITChartImpl::NodeLayout(5);
  REQUIRE(five.fvPositions.size() == 5);
  CHECK(five.fExtent == 5);
  CHECK(five.fvPositions[0].fFromY == 5);
  CHECK(five.fvPositions[0].fFromX == doctest::Approx(2));
  CHECK(five.fvPositions[2].fFromX == 0);
  CHECK(five.fvPositions[4].fFromX == five.fvPositions[0].fFromX);
  CHECK(five.fvPositions[4].fToX == 5);
  CHECK(five.fvPositions[4].fToY == 3);
}

TEST_CASE("the smaller a significance, the heavier its edge") {
  const std::pair<double, double> weights[] = {
      {kSystemMissing, 9}, {0, 9},     {0.000099, 9}, {0.0001, 8}, {0.0005, 7},
      {0.001, 6},          {0.005, 5}, {0.01, 4},     {0.05, 3},   {0.1, 2},
      {0.1999, 2},         {0.2, 1},   {1, 1}};
  for (const auto& [sig, weight] : weights) {
    CAPTURE(sig);
    CHECK(HFITChartImpl::WeightOfSig(sig) == weight);
  }
}
