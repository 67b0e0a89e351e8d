// The templates hold what writers of charts search for, each where it means something.
#include <doctest/doctest.h>

#include "tests/embedded/chart_session.h"

using namespace hierfit::test;

namespace {

constexpr char kDiagram[] = "GLMMFixedCoefficients.glyphtemplate";
constexpr char kPairwise[] = "GLMMPairwiseContrasts.glyphtemplate";
constexpr const char* kTemplates[] = {"GLMMHistogram",
                                      "GLMMPredictedByObserved",
                                      "GLMMEmMeans",
                                      "GLMMCustomEffects",
                                      "GLMMSimpleContrasts",
                                      kDiagram,
                                      kPairwise};

/// A literal, which stands once, and the text around it that gives it its meaning.
struct Literal {
  const char* of;
  const char* literal;
  const char* context;
  int count = 1;
};

constexpr Literal kLiterals[] = {
    {"GLMMHistogram", "binStatistic", "<binStatistic variable="},
    {"GLMMHistogram", "<distributionStatistic", "<distributionStatistic method="},
    {"GLMMHistogram", "normal", "method=\"normal\""},
    {"GLMMPredictedByObserved", "33.667", " min=\"33.667\""},
    {"GLMMPredictedByObserved", "98.8", " max=\"98.8\""},
    {"GLMMPredictedByObserved", "id=\"legendStyle", "<legend id=\"legendStyle\" role="},
    {"GLMMEmMeans", "YAxisLabel", "<label>YAxisLabel</label>"},
    {"GLMMEmMeans", "<legend", "<legend id="},
    {"GLMMEmMeans", "</legend>", "></legend>"},
    {"GLMMCustomEffects", ">TitleText", "<title>TitleText</title>"},
    {"GLMMCustomEffects", "FootnoteText", "<footnote>FootnoteText</footnote>"},
    {"GLMMCustomEffects", "popup1", "<tooltip variable=\"effect1\">popup1</tooltip>"},
    {"GLMMCustomEffects", "popup2", "<tooltip variable=\"targetValue\">popup2</tooltip>"},
    {"GLMMCustomEffects", "<color", "<color variable=\"effect2\"/>"},
    {"GLMMCustomEffects", "<legend id=\"legend\">", "<legend id=\"legend\"></legend>"},
    {"GLMMCustomEffects", "</legend>", "></legend>"},
    {"GLMMCustomEffects", "75%", " width=\"75%\""},
    {"GLMMSimpleContrasts", "TitleText", "<title>TitleText</title>"},
    {"GLMMSimpleContrasts", "CaptionText", "<caption>CaptionText</caption>"},
    {"GLMMSimpleContrasts", "FootnoteText", "<footnote>FootnoteText</footnote>"},
    {kPairwise, "TitleText", "<subTitle>subTitleText</subTitle>", 2},
    {kPairwise, ">TitleText", "<title>TitleText</title>"},
    {kPairwise, "subTitleText", "<subTitle>subTitleText</subTitle>"},
    {kPairwise, "FootnoteText", "<footnote>FootnoteText</footnote>"},
    {kPairwise, " name=\"facet1\"", "<variable name=\"facet1\"", 2},
    {kPairwise, " name=\"facet2\"", "<variable name=\"facet2\"", 2},
    {kDiagram, "9.3", "<axis dimension=\"x\" visible=\"false\" max=\"9.3\"/>"},
    {kDiagram, "7.0", "<axis dimension=\"y\" visible=\"false\" max=\"7.0\"/>"},
    {kDiagram, "id=\"graphStyle\"", "<graph id=\"graphStyle\">"},
    {kDiagram, "title1", "<title>title1</title>"},
    {kDiagram, "high=", "<size variable=\"Weight\" high=\"9\" low=\"1\"/>"},
    {kDiagram, "low=", " high=\"9\" low=\"1\"/>"},
    {kDiagram, "id=\"legendStyle\"", "<legend id=\"legendStyle\" role=\"color\">"},
    {kDiagram, "Coefficient Estimate", "<title>Coefficient Estimate</title>"},
};

/// Two literals of a template, in the order in which they stand.
struct Order {
  const char* of;
  const char* first;
  const char* second;
};
constexpr Order kOrders[] = {
    {"GLMMHistogram", "binStatistic", "normal"},
    {"GLMMPredictedByObserved", "33.667", "98.8"},
    {"GLMMCustomEffects", "popup1", "popup2"},
    // A label takes the place of these, and what is searched after it must stand ahead.
    {"GLMMEmMeans", "<legend", "YAxisLabel"},
    {"GLMMCustomEffects", "75%", "popup1"},
    {"GLMMCustomEffects", "</legend>", "popup1"},
    {"GLMMCustomEffects", "<color", "popup1"},
    {"GLMMCustomEffects", "popup2", "FootnoteText"},
    {"GLMMCustomEffects", "TitleText", "FootnoteText"},
    // Nothing that a label may hold, and no attribute, stands where a panel too many would look.
    {"GLMMSimpleContrasts", "FootnoteText", "CaptionText"},
    {"GLMMSimpleContrasts", "CaptionText", "TitleText"},
    {"GLMMSimpleContrasts", "TitleText", "<lineGuide"},
    {kPairwise, "<title>TitleText", "subTitleText"},
    {kPairwise, "FootnoteText", "subTitleText"},
    {kDiagram, "high=", "low="},
    {kDiagram, "Coefficient Estimate", "<inset></inset>"},
    {kDiagram, "id=\"legendStyle\"", "<inset></inset>"},
    {kDiagram, "low=", "<inset></inset>"},
};

void erase(std::string& text, const std::string& from, const std::string& to) {
  const size_t begin = text.find(from);
  const size_t end = text.find(to, begin);
  REQUIRE(end != std::string::npos);
  text.erase(begin, end + to.size() - begin);
}

void check_reads(const std::string& text) {
  const ChartSession session;
  CHECK_NOTHROW(XDocument{text});
}

}  // namespace

TEST_CASE("templates hold each literal once, in its place") {
  for (const auto& [of, literal, context, count] : kLiterals) {
    CAPTURE(of);
    CAPTURE(literal);
    const std::string text = template_text(of);
    CHECK(count_of(text, literal) == count);
    CHECK(count_of(text, context) >= 1);
  }
  for (const auto& [of, first, second] : kOrders) {
    CAPTURE(of);
    CAPTURE(second);
    const std::string text = template_text(of);
    CHECK(text.find(first) < text.find(second));
  }
  CHECK(count_of(template_text("GLMMHistogram"), "arameter") == 0);
  CHECK(count_of(template_text("GLMMPredictedByObserved"), " visible=\"false\"") == 0);
  for (const char* name : kTemplates) {
    CHECK(count_of(template_text(name), "<!--") == 0);
  }
}

TEST_CASE("labels stand behind every literal, whatever they hold") {
  std::string all = "y=\"00\" whenText <faceting </facetLayout> <variableReference <facetLevel ";
  for (const Literal& row : kLiterals) {
    (all += row.literal) += " ";
  }
  for (const char* name : {"GLMMHistogram", "GLMMPredictedByObserved", "GLMMEmMeans",
                           "GLMMCustomEffects", "GLMMSimpleContrasts"}) {
    const std::string plain = template_text(name);
    const std::string hostile = template_text(name, all);
    check_reads(hostile);
    for (const Literal& row : kLiterals) {
      if (std::string_view(row.of) != name) continue;
      CAPTURE(row.literal);
      CHECK(hostile.find(row.literal) == plain.find(row.literal));
    }
  }
}

TEST_CASE("what the edits take out of a template is balanced") {
  for (const char* name : {"GLMMCustomEffects", "GLMMSimpleContrasts", kPairwise}) {
    CAPTURE(name);
    const std::string text = template_text(name);
    REQUIRE(count_of(text, "</faceting><facetLayout") == 1);

    std::string without_facets = text;
    erase(without_facets, "<faceting", "</facetLayout>");
    check_reads(without_facets);
    CHECK(count_of(without_facets, "<variable ") == count_of(text, "<variable "));

    std::string one_facet = text;
    const size_t second =
        one_facet.find("<variableReference", one_facet.find("<variableReference") + 2);
    const size_t end = one_facet.find("</variableReference>", second);
    one_facet.erase(second, end + 20 - second);
    const size_t level = one_facet.find("<facetLevel ", one_facet.find("<facetLevel ", second) + 2);
    one_facet.erase(level, one_facet.find("</facetLevel>", level) + 13 - level);
    check_reads(one_facet);
    CHECK(count_of(one_facet, "<variableReference") == 1);
    CHECK(count_of(one_facet, "<facetLevel ") == 1);
  }
  std::string custom = template_text("GLMMCustomEffects");
  erase(custom, "<color", "/>");
  erase(custom, "<legend id=\"legend\">", "</legend>");
  check_reads(custom);
}

TEST_CASE("line guides stand side by side") {
  const std::string guide = "<lineGuide y=\"00\" hideWhen=\"whenText\"></lineGuide>";
  std::string text = template_text("GLMMSimpleContrasts");
  const int guides = count_of(text, guide);
  CHECK(guides >= 16);
  CHECK(count_of(text, "whenText") == guides);
  CHECK(count_of(text, "<lineGuide") == guides);
  const size_t first = text.find(guide);
  CHECK(text.substr(first).starts_with(guide + guide));
  CHECK(text.find("y=", text.rfind(guide) + guide.size()) == std::string::npos);
  text.erase(first, text.rfind("</lineGuide>") + 12 - first);
  CHECK(count_of(text, "lineGuide") == 0);
  check_reads(text);
}
