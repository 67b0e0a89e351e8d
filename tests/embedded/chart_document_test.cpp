// Chart documents: what their operations do to the text and to the chart that is sent.
#include <doctest/doctest.h>

#include "embedded/error.h"
#include "embedded/session_state.h"
#include "report/report.h"
#include "tests/embedded/chart_session.h"

using namespace hierfit;
using namespace hierfit::test;
using output::Chart;
using output::ChartVariable;

namespace {

constexpr char kTwoSources[] =
    R"(<source name="n"><variable name="v"/><variable name="w" role="r"/></source>)"
    R"(<source name="e"><variable name="v"/></source>)";

/// Sends a document with two sources after these steps; gives the chart.
template <class Steps>
Chart sent(ChartSession& session, Steps steps) {
  VarDataProcessor data;
  data.AddDataSource("n", 0);
  data.AddVariable("n", "v", nullptr);
  data.AddVariable("n", "w", nullptr);
  data.SetVariableValue("n", "v", 0, 1);
  data.SetStringVariableValue("n", "w", 1, "a &amp; b");
  XDocument document(document_of(kTwoSources));
  document.SetChartData(&data);
  steps(document);
  document.SendChart(true, false, false);
  auto charts = session.take_charts();
  REQUIRE(charts.size() == 1);
  return std::move(charts[0]);
}

constexpr const char* kHostile[] = {"a & b < c > \"d\" 'e'",
                                    "&amp; &lt; &#9472; &bogus; &#1; &",
                                    "]]> <![CDATA[ <!-- --> <?pi?>",
                                    "</label></variable></data></chart>",
                                    "line\none<BR/>two\r\nthree",
                                    "control \x01\x0B\x0C\x1F tab\t",
                                    "half \xE4\xB8 \xFF \xED\xA0\x80 \xEF\xBF\xBF",
                                    "\u202Eright to left \u05D0 \U0001F600",
                                    "^1 %1 [ \\: "};

}  // namespace

TEST_CASE("changes of a variable act on the document and on the chart") {
  ChartSession session;
  const Chart chart = sent(session, [&](XDocument& document) {
    XGraph* graph = document.getExternalGraph();
    XVariable* variable = graph->getVariable("v", 0);
    variable->setLabel(ChartString("A &lt; B<BR/>C"));
    variable->setFormat({8, 5, 2});
    variable->setCategorical(true);
    variable->setVELTVariable(session.variable("g"));
    variable->addRelabels();
    variable->addRelabel(2, ChartString("two"));
    variable->SetFormatPrefix(ChartString("v = "));
    graph->getVariable("w", 0)->addRelabel(ChartString("01"), ChartString("one"));
    CHECK(graph->getVariable("v", 1) != variable);
    CHECK(graph->getVariable("v", 2) == nullptr);
    CHECK(graph->getVariable("v", -1) == nullptr);
    CHECK(graph->getVariable("x", 0) == nullptr);
  });
  REQUIRE(chart.sources.size() == 1);
  const ChartVariable& v = *chart.source("n")->by_role("v");
  CHECK(v.label == "A < B\nC");
  CHECK(v.format == output::ChartFormat{8, 5, 2});
  CHECK(v.categorical);
  CHECK(v.prefix == "v = ");
  REQUIRE(v.label_of(1.0) != nullptr);
  CHECK(*v.label_of(1.0) == "one & only");
  CHECK(*v.label_of(2.0) == "two");
  CHECK(v.label_of(3.0) == nullptr);
  const ChartVariable& w = *chart.source("n")->by_role("r");
  CHECK(*w.label_of("01") == "one");
  CHECK(*w.label_of(1.0) == "one");
  CHECK(count_of(output::markup_of(chart.document),
                 R"(<variable name="v" categorical="true" dictionary="g")") == 1);
  CHECK(count_of(output::markup_of(chart.document), "<label>A &lt; B<BR/>C</label>") == 1);
  CHECK(count_of(output::markup_of(chart.document),
                 R"(<relabel number="1">one &amp; only</relabel>)") == 1);
}

TEST_CASE("labels stay text, whatever they hold") {
  for (const char* label : kHostile) {
    CAPTURE(label);
    ChartSession session;
    const Chart chart = sent(session, [&](XDocument& document) {
      XVariable* variable = document.getExternalGraph()->getVariable("v", 0);
      variable->setLabel(ChartString(label));
      variable->addRelabel(ChartString(label), ChartString(label));
      variable->SetFormatPrefix(ChartString(label));
      document.SetDescription(ChartString(label).xc_str());
      const std::string text = document.AsUTF8();
      XDocument again(text);
      CHECK(again.AsUTF8() == text);
    });
    CHECK(count_of(output::markup_of(chart.document), "<variable ") == 3);
    const std::string bound = template_text("GLMMEmMeans", label);
    XDocument again(bound);
    CHECK(again.AsUTF8() == bound);
    CHECK(count_of(bound, "<variable ") == 4);
  }
}

TEST_CASE("a template takes labels that are escaped and labels that are not") {
  ChartSession session;
  CHECK(count_of(template_text("GLMMEmMeans", "a &amp; b<BR/>&lt;"), "a &amp; b<BR/>&lt;<") == 5);
  CHECK(count_of(template_text("GLMMEmMeans", "a & b < c\x0B"), "a &amp; b &lt; c<") == 5);
  XGlyphTemplate unknown;
  unknown.setTemplateInternalName("None");
  std::string text = "before";
  std::string second;
  CHECK_FALSE(unknown.convert(text, second));
  CHECK(text.empty());
}

TEST_CASE("a text that is no chart throws; an empty one delivers nothing") {
  ChartSession session;
  for (const char* text :
       {"<chart", "<chart></graph>", "<other/>", "<chart/><chart/>", "<chart a='1' a='2'/>",
        "<!DOCTYPE chart [<!ENTITY e 'x'>]><chart/>", "<chart>&nbsp;</chart>"}) {
    CAPTURE(text);
    CHECK_THROWS_AS(XDocument{text}, DocumentError);
  }
  std::string deep;
  for (int i = 0; i < 600; ++i) {
    deep += "<chart>";
  }
  CHECK_THROWS_AS(XDocument{deep}, DocumentError);

  XDocument nothing("\n");
  CHECK(nothing.getExternalGraph()->getVariable("v", 0) == nullptr);
  nothing.setLanguage();
  nothing.applyCTemplate(false);
  CHECK(nothing.AsUTF8().empty());
  nothing.SendChart(true, false, false);
  XDocument kept(document_of(""));
  kept.SendChart(false, false, false);
  CHECK(session.take_charts().empty());
}

TEST_CASE("a graph among the values of another is no more when they go") {
  ChartSession session;
  XDocument document(
      "<chart kind=\"k\"><graph><embedded><data><source name=\"a\"><variable name=\"v\"><values>"
      "<n>1</n><embedded><data><source name=\"b\"/></data></embedded></values></variable></source>"
      "</data></embedded></graph><texts/><data/></chart>");
  document.SendChart(true, false, false);
  const std::vector<Chart> charts = session.take_charts();
  REQUIRE(charts.size() == 1);
  REQUIRE(charts[0].source("a") != nullptr);
  CHECK(charts[0].source("a")->rows == 1);
}

TEST_CASE("style and language are set once, however often they are asked for") {
  ChartSession session;
  const Chart chart = sent(session, [](XDocument& document) {
    document.setLanguage();
    document.applyCTemplate(false);
    document.applyStyleTemplate();
    document.applyCTemplate(false);
  });
  CHECK(count_of(output::markup_of(chart.document), "<style>") == 1);
  CHECK(count_of(output::markup_of(chart.document), " lang=\"en\"") == 1);
  CHECK(chart.document.content.back().element()->name == "style");
}

TEST_CASE("keys of the document turn into their words") {
  ChartSession session;
  const std::string keyed =
      R"(<chart kind="test"><graph/><texts><title key="A &amp; B"><BR/>old</title></texts><data/></chart>)";
  CHECK(count_of(XDocument(keyed).AsUTF8(), "<title>A &amp; B</title>") == 1);
}

TEST_CASE("the chart has the document's title, or else its description") {
  ChartSession session;
  const Chart untitled =
      sent(session, [](XDocument& document) { document.SetDescription(u"Said \u00e9"); });
  CHECK(untitled.kind == "test");
  CHECK(untitled.title == "Said \u00e9");
  CHECK(untitled.description == "Said \u00e9");

  XDocument titled("<chart kind='t'><graph/><texts><title>A<BR/>B</title></texts><data/></chart>");
  titled.SendChart(true, false, false);
  const auto charts = session.take_charts();
  CHECK(charts.at(0).title == "A\nB");
  CHECK(charts.at(0).description == "A\nB");
}

TEST_CASE("the JSON form has the data of a chart by source, variable and row") {
  ChartSession session;
  VarDataProcessor data;
  data.AddDataSource("n", 0);
  data.AddVariable("n", "v", nullptr);
  data.SetVariableValue("n", "v", 0, 0.1);
  data.SetVariableValue("n", "v", 1, -1.7976931348623157e+308);
  data.SetStringVariableValue("n", "v", 3, "a &lt;<BR/>\"b\"");
  XDocument document(document_of(kTwoSources));
  XVariable* variable = document.getExternalGraph()->getVariable("v", 0);
  variable->setLabel(ChartString("Label"));
  variable->setFormat({8, 5, 2});
  variable->addRelabel(0.1, ChartString("a tenth"));
  document.SetChartData(&data);
  document.SendChart(true, false, false);
  const std::string json = report::render_json(session.state().outputs.document, {});
  CHECK(count_of(json, R"({"name":"n","rows":4,"variables":[)") == 1);
  CHECK(count_of(json, R"({"name":"v","role":"v","label":"Label","categorical":false,)"
                       R"("holdsStrings":false,"width":8,"decimals":2,)"
                       R"("valueLabels":[{"value":0.1,"label":"a tenth"}],)"
                       R"("values":[0.1,null,null,"a <\n\"b\""]})") == 1);
}

TEST_CASE("every operation has its line in the journal") {
  ChartSession session;
  {
    VarDataProcessor data;
    data.AddDataSource("n", 0);
    _varinfo handle;
    data.AddVariable("n", "v", &handle);
    data.SetVariableValue(&handle, 0, 0.5);
    data.SetStringVariableValue("n", "v", 1, "x\"");
    XGlyphTemplate chart_template;
    chart_template.setTemplateInternalName("None");
    const VELT_Format format{40, 5, 2};
    chart_template.addVariable("r", "v", true, "key", "n", &format, "label", 0, nullptr);
    chart_template.addVariable("r", "v", false, "", "n", nullptr, nullptr, 0, nullptr);
    chart_template.addLabel(0, "title");
    std::string text;
    chart_template.convert(text, text);
    CHECK_THROWS(XDocument{"<"});
    XDocument document("<chart><data><source><variable name=\"v\"/></source></data></chart>");
    document.setEditor(2);
    document.setLanguage();
    XGraph* graph = document.getExternalGraph();
    XVariable* v = graph->getVariable("v", 0);
    graph->getVariable("v", 0);
    graph->getVariable("x", 1);
    v->setLabel(ChartString("\u00e9"));
    v->setFormat(format);
    v->setCategorical(true);
    v->setVELTVariable(session.variable("s"));
    v->setFormatBasedOnVELTVariable(session.variable("s"));
    v->addRelabels();
    v->addRelabel(1, ChartString("one"));
    v->addRelabel(ChartString("1"), ChartString("one"));
    v->SetFormatPrefix(ChartString("p"));
    document.SetDescription(u"d");
    document.SetChartData(&data);
    document.applyCTemplate(false);
    document.SendChart(true, false, false);
  }
  const char* expected =
      R"({"call":"VarDataProcessor::VarDataProcessor","result":"VarDataProcessor#1"}
{"call":"VarDataProcessor::AddDataSource","on":"VarDataProcessor#1","args":["n",0]}
{"call":"VarDataProcessor::AddVariable","on":"VarDataProcessor#1","args":["n","v",true]}
{"call":"VarDataProcessor::SetVariableValue","on":"VarDataProcessor#1","args":["n","v",0,0.5]}
{"call":"VarDataProcessor::SetStringVariableValue","on":"VarDataProcessor#1","args":["n","v",1,"x\""]}
{"call":"XGlyphTemplate::XGlyphTemplate","result":"XGlyphTemplate#1"}
{"call":"XGlyphTemplate::setTemplateInternalName","on":"XGlyphTemplate#1","args":["None"]}
{"call":"XGlyphTemplate::addVariable","on":"XGlyphTemplate#1","args":["r","v",true,"key","n",{"width":40,"type":5,"decimals":2},"label",0,null]}
{"call":"XGlyphTemplate::addVariable","on":"XGlyphTemplate#1","args":["r","v",false,"","n",null,null,0,null]}
{"call":"XGlyphTemplate::addLabel","on":"XGlyphTemplate#1","args":[0,"title"]}
{"call":"XGlyphTemplate::convert","on":"XGlyphTemplate#1","result":""}
{"call":"XDocument::XDocument","args":["<"]}
{"call":"XDocument::XDocument","args":["<chart><data><source><variable name=\"v\"/></source></data></chart>"],"result":"XDocument#1"}
{"call":"XDocument::setEditor","on":"XDocument#1","args":[2]}
{"call":"XDocument::setLanguage","on":"XDocument#1"}
{"call":"XDocument::getExternalGraph","on":"XDocument#1","result":"XGraph#1"}
{"call":"XGraph::getVariable","on":"XGraph#1","args":["v",0],"result":"XVariable#1"}
{"call":"XGraph::getVariable","on":"XGraph#1","args":["v",0],"result":"XVariable#1"}
{"call":"XGraph::getVariable","on":"XGraph#1","args":["x",1],"result":null}
{"call":"XVariable::setLabel","on":"XVariable#1","args":["é"]}
{"call":"XVariable::setFormat","on":"XVariable#1","args":[{"width":40,"type":5,"decimals":2}]}
{"call":"XVariable::setCategorical","on":"XVariable#1","args":[true]}
{"call":"XVariable::setVELTVariable","on":"XVariable#1","args":[{"variable":"s"}]}
{"call":"XVariable::setFormatBasedOnVELTVariable","on":"XVariable#1","args":[{"variable":"s"}]}
{"call":"XVariable::addRelabels","on":"XVariable#1"}
{"call":"XVariable::addRelabel","on":"XVariable#1","args":[1,"one"]}
{"call":"XVariable::addRelabel","on":"XVariable#1","args":["1","one"]}
{"call":"XVariable::SetFormatPrefix","on":"XVariable#1","args":["p"]}
{"call":"XDocument::SetDescription","on":"XDocument#1","args":["d"]}
{"call":"XDocument::SetChartData","on":"XDocument#1","args":["VarDataProcessor#1"]}
{"call":"XDocument::applyCTemplate","on":"XDocument#1","args":[false]}
{"call":"XDocument::SendChart","on":"XDocument#1","args":[true,false,false]}
{"call":"release","on":"XDocument#1"}
{"call":"release","on":"XGlyphTemplate#1"}
{"call":"release","on":"VarDataProcessor#1"}
)";
  CHECK(session.journal() == expected);
}
