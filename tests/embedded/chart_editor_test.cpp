// The headless editor: the histogram in the diagram, and what happens when it cannot run.
#include <doctest/doctest.h>

#include "host/editor.h"

#include "tests/embedded/chart_session.h"
#include "tests/embedded/failing_editor.h"

using namespace hierfit;
using namespace hierfit::test;

namespace {

constexpr char kDiagram[] = "GLMMFixedCoefficients.glyphtemplate";

void fill(VarDataProcessor& data) {
  data.AddDataSource("source0", 0);
  data.AddVariable("source0", "X", nullptr);
  data.AddVariable("source0", "Y", nullptr);
  data.SetVariableValue("source0", "X", 0, 1.5);
  data.SetVariableValue("source0", "Y", 1, 3);
}

/// Starts what is not started and embeds a histogram in a diagram.
std::string embed(const std::string& graph, const std::string& histogram, int32_t field_type = 3) {
  VeltJVM& machine = VeltJVM::GetInstance();
  if (!machine.IsStarted()) machine.StartJVM();
  JNIEnvironment* environment = nullptr;
  machine.AttachCurrentThread(&environment);
  GlyphEditor& editor = GlyphEditor::GetInstance();
  if (!editor.IsStartedHeadless()) editor.StartEditorHeadless(machine.GetEnv());
  VarDataProcessor data;
  fill(data);
  int32_t length = 0;
  const std::unique_ptr<char[]> stream(data.GetDataStream(length));
  return editor.EmbedHistogramInGraph(graph, histogram, stream.get(), length, field_type);
}

}  // namespace

TEST_CASE("the histogram stands inside the target's node, behind the diagram's settings") {
  ChartSession session;
  const std::string graph = template_text(kDiagram);
  const std::string both = embed(graph, template_text("GLMMHistogram", "high= <low= &"));
  const size_t place = both.find("<embedded kind=\"histogram\" fieldType=\"3\">");
  REQUIRE(place != std::string::npos);
  CHECK(place == graph.find("</inset>"));
  CHECK(both.substr(0, place) == graph.substr(0, place));
  CHECK(both.ends_with(graph.substr(place)));
  CHECK(count_of(both, "<values><n>1.5</n></values>") == 1);
  CHECK(count_of(both, "<values><u/><n>3</n></values>") == 1);

  SUBCASE("its data come out of the document when it is sent") {
    VarDataProcessor data;
    fill(data);
    XDocument document(both);
    document.SetChartData(&data);
    document.SendChart(true, false, false);
    const auto charts = session.take_charts();
    REQUIRE(charts.size() == 1);
    const std::string text = output::markup_of(charts[0].document);
    CHECK(count_of(text, "<values>") == 0);
    REQUIRE(charts[0].sources.size() == 2);
    CHECK(charts[0].sources[1].name == "source0_embedded");
    CHECK(charts[0].sources[1].by_role("X")->label == "high= <low= &");
    CHECK(charts[0].sources[1].by_role("Y")->values.number(1) == 3);
    CHECK(count_of(text, "<source name=\"source0_embedded\">") == 1);
  }
  SUBCASE("a place that is taken, or is not there, takes nothing") {
    CHECK(embed(both, template_text("GLMMHistogram")).empty());
    CHECK(embed(document_of(""), template_text("GLMMHistogram")).empty());
    CHECK(embed("<chart><inset/></chart>", template_text("GLMMHistogram")).empty());
    CHECK(embed("<chart>", template_text("GLMMHistogram")).empty());
    CHECK(embed(graph, "").empty());
    CHECK(GlyphEditor::GetInstance()
              .EmbedHistogramInGraph(graph, template_text("GLMMHistogram"), "HFCD", 4, 3)
              .empty());
  }
}

TEST_CASE("the machine starts once a session, unless it is told to fail") {
  ChartSession session;
  const std::string graph = template_text(kDiagram);
  SUBCASE("once") {
    embed(graph, "");
    embed(graph, "");
    CHECK(count_of(session.journal(), "VeltJVM::StartJVM") == 1);
    CHECK(count_of(session.journal(), "GlyphEditor::StartEditorHeadless") == 1);
    CHECK(count_of(session.journal(), "VeltJVM::AttachCurrentThread") == 2);
  }
  SUBCASE("a machine that does not start embeds nothing") {
    use_failing_editor(false);
    CHECK(embed(graph, template_text("GLMMHistogram")).empty());
    CHECK_FALSE(VeltJVM::GetInstance().IsStarted());
  }
  SUBCASE("an editor that throws leaves a line without a result") {
    use_failing_editor(true);
    CHECK_THROWS_AS(embed("g", "h"), JNIException);
    const std::string journal = session.journal();
    const size_t line = journal.find(R"({"call":"GlyphEditor::EmbedHistogramInGraph")");
    REQUIRE(line != std::string::npos);
    CHECK(journal.find(R"("on":"GlyphEditor#1","args":["g","h",)", line) != std::string::npos);
    CHECK(journal.substr(journal.find('\n', line) - 4).starts_with(",3]}\n"));
  }
}
