// The charts of estimated means and of contrasts.
#include <doctest/doctest.h>

#include "tests/backend/chart_calls.h"

using namespace hierfit;
using namespace hierfit::test;

namespace {

bool holds(const std::string& text, std::string_view part) {
  return text.find(part) != std::string::npos;
}

/// Means of one factor `g`, with a bound that is missing.
EmmeansEstimData means_of_group() {
  EmmeansEstimData means;
  means.fvCoordinates = {column_of("g", {"1", "2", "x"})};
  means.fMean = column_of("", {"5", "__MISSING__", "7"});
  means.fConfIntervalLower = column_of("", {"4", "1"});
  means.fConfIntervalUpper = column_of("", {"6", "2", "8"});
  return means;
}

ChartCalls top_effects(ChartRun& run, std::vector<EmmeansEstimData> blocks) {
  *run.reading.store.GetEmmeansEstimList() = std::move(blocks);
  return run.calls([](HFITChartOutput& charts) { charts.EmmeansChartsOutput(); });
}

ChartCalls custom_effects(ChartRun& run) {
  return run.calls([&](HFITChartOutput& charts) { charts.CustomEffectsOutput(run.block()); });
}

ChartCalls contrast_chart(ChartRun& run) {
  return run.calls([&](HFITChartOutput& charts) { charts.ContrastChartOutput(run.block()); });
}

/// Contrasts of the levels of `g`, with the other factors ahead.
void set_contrasts(ChartRun& run,
                   int32_t kind,
                   std::vector<CoordinatesData> coordinates,
                   std::vector<std::string> estimates,
                   std::vector<std::string> sigs) {
  EmmeansContrastData& contrasts = run.block().fContrasts;
  contrasts = {};
  contrasts.fContrastKind = kind;
  contrasts.fAdjustedSigLevel = 0.05;
  contrasts.fvCoordinates = std::move(coordinates);
  contrasts.fContrastEstimate = column_of("", std::move(estimates));
  contrasts.fAdjustedSig = column_of("", std::move(sigs));
}

}  // namespace

TEST_CASE("top effects: two rows a mean, what is no number reads as 0") {
  ChartRun run(labelled_documents());
  run.settings().fvFixedEffectList = {{{"g"}, {3}, {0}}};
  const ChartCalls calls = top_effects(run, {means_of_group()});
  CHECK(calls.column("source0", "effect1") == R"(1 1 2 2 "x" "x")");
  CHECK(calls.column("source0", "effect2").empty());
  CHECK(calls.column("source0", "target") == "5 5 0 0 7 7");
  CHECK(calls.column("source0", "confMargin") == "4 6 1 2 0 8");
  CHECK(calls.order() ==
        "BpHeading::Heading XGlyphTemplate::XGlyphTemplate setTemplateInternalName addLabel "
        "VarDataProcessor::VarDataProcessor AddDataSource AddVariable AddVariable AddVariable "
        "AddVariable XGlyphTemplate::addVariable addVariable addVariable addVariable convert "
        "XDocument::XDocument setEditor setLanguage getExternalGraph XGraph::getVariable "
        "XVariable::setLabel setVELTVariable addRelabels XDocument::SetDescription SetChartData "
        "applyCTemplate SendChart release:XDocument release:VarDataProcessor "
        "release:XGlyphTemplate release:BpHeading");
  CHECK(calls.arguments("XGlyphTemplate::addLabel") == "0 \"Yield by Group\"\n");
  CHECK(holds(calls.arguments("XGlyphTemplate::addVariable"),
              "\"effect1\" \"effect1\" true \"effect1Label\" \"source0\""));
  CHECK_FALSE(holds(calls.document(), "<legend"));
  CHECK_FALSE(holds(calls.document(), "YAxisLabel"));
}

TEST_CASE("top effects: a second factor") {
  ChartRun run;
  run.settings().fvFixedEffectList = {{{"g", "s"}, {3, 4}, {0, 0}}};
  EmmeansEstimData means = means_of_group();
  SUBCASE("of the dictionary") {
    means.fvCoordinates.push_back(column_of("s", {"a", "2"}));
    const ChartCalls calls = top_effects(run, {means});
    CHECK(calls.column("source0", "effect2") == R"("a" "a" 2 2)");
    CHECK(calls.arguments("XGlyphTemplate::addLabel") == "0 \"Yield by g * s\"\n");
    CHECK(holds(calls.document(), "<legend"));
    CHECK(holds(calls.relabels(), "\"effect2\" 0: setVELTVariable {\"variable\":\"s\"}"));
  }
  SUBCASE("of nobody") {
    means.fvCoordinates.push_back(column_of("nobody", {"a"}));
    const ChartCalls calls = top_effects(run, {means});
    CHECK(calls.column("source0", "effect2") == R"("a" "a")");
    CHECK(calls.arguments("XGlyphTemplate::addLabel") == "0 \"Yield by g\"\n");
    CHECK_FALSE(holds(calls.document(), "<legend"));
  }
}

TEST_CASE("top effects: at most eleven charts, each of a fixed effect, under one heading") {
  ChartRun run;
  CHECK(top_effects(run, {means_of_group()}).order().empty());
  run.settings().fvFixedEffectList = {{{"g"}, {3}, {0}}};
  std::vector<EmmeansEstimData> blocks(12, means_of_group());
  blocks[1].fvCoordinates.clear();
  blocks[2].fvCoordinates = {column_of("x", {"1"})};
  CHECK(top_effects(run, blocks).count("XDocument::SendChart") == 10);
  blocks.resize(16, means_of_group());
  CHECK(top_effects(run, blocks).count("XDocument::SendChart") == 11);
  CHECK(top_effects(run, {}).order() == "BpHeading::Heading release:BpHeading");
}

TEST_CASE("a hostile label stays text in the document") {
  ResultDocuments documents;
  const std::size_t name = documents.model.find("Yield");
  documents.model.replace(name, 5,
                          "&lt;a y=&quot;1&quot;&gt; &amp;amp; 98.8&#10;]]&gt; YAxisLabel");
  ChartRun run(documents);
  run.settings().fvFixedEffectList = {{{"g"}, {3}, {0}}};
  CHECK(top_effects(run, {means_of_group()}).count("XDocument::SendChart") == 1);
  run.block().fEstimates = means_of_group();
  run.block().fvWarningList.clear();
  CHECK(custom_effects(run).count("XDocument::SendChart") == 1);
  for (int32_t kind : {0, 1, 2}) {
    CAPTURE(kind);
    set_contrasts(run, kind,
                  {column_of("s", {"\"]]><y=\n&"}), column_of("g", {"<1"}), column_of("g", {"2"})},
                  {"1"}, {"0.5"});
    CHECK(contrast_chart(run).count("XDocument::SendChart") == 1);
  }
}

TEST_CASE("custom effects: rows, and what a missing number leaves empty") {
  ChartRun run(labelled_documents());
  run.block().fvWarningList.clear();
  EmmeansEstimData& means = run.block().fEstimates;
  means.fvCoordinates = {column_of("g", {"1", "2", "3", "1", "2"})};
  means.fMean = column_of("", {"5", "__MISSING__", "7", "8", "9"});
  means.fConfIntervalLower = column_of("", {"4", "1", "__MISSING__", "7", ""});
  means.fConfIntervalUpper = column_of("", {"6", "2", "8", "x", ""});
  const ChartCalls calls = custom_effects(run);
  CHECK(calls.column("source_0", "targetValue") == "5 5 - - 7 7 8 8 9 9");
  CHECK(calls.column("source_0", "confMargin") == "4 6 - - 8 8 7");
  CHECK(calls.column("source_0", "effect1") == "1 1 - - 3 3 1 1 2 2");
  CHECK(calls.column("source_0", "effect2") == R"("" "" - - "" "" "" "" "" "")");
  CHECK(calls.order() ==
        "VarDataProcessor::VarDataProcessor AddDataSource AddVariable AddVariable AddVariable "
        "AddVariable AddVariable XGlyphTemplate::XGlyphTemplate setTemplateInternalName "
        "addVariable addVariable addVariable addVariable addVariable convert XDocument::XDocument "
        "setEditor setLanguage applyCTemplate SetChartData SetDescription getExternalGraph "
        "XGraph::getVariable XVariable::setLabel setCategorical setVELTVariable addRelabels "
        "XDocument::applyCTemplate SendChart release:XDocument release:XGlyphTemplate "
        "release:VarDataProcessor");
  const std::string text = calls.document();
  CHECK(holds(text, ">Estimates<"));
  CHECK(holds(text, "Continuous predictors fixed at x = 4.50"));
  CHECK(holds(text, "99%"));
  for (const char* gone : {"<faceting", "<color", "<legend id=\"legend\">", "75%", "popup"}) {
    CHECK_FALSE(holds(text, gone));
  }
}

TEST_CASE("custom effects: a predictor without a value is in no footnote") {
  ChartRun run;
  run.block().fvWarningList.clear();
  run.block().fEstimates = means_of_group();
  std::vector<EmmeansLabelData>& predictors = run.block().fvLabels;
  predictors.insert(predictors.begin(), {"nobody", CFStatVariableValue("4")});
  CHECK(holds(custom_effects(run).document(),
              "<footnote>Continuous predictors fixed at x = 4.50</footnote>"));
  predictors.pop_back();
  CHECK(holds(custom_effects(run).document(), "<footnote></footnote>"));
}

TEST_CASE("custom effects: what two and three factors keep, and variables that move up") {
  ChartRun run;
  run.block().fvWarningList.clear();
  run.block().fvLabels.clear();
  EmmeansEstimData& means = run.block().fEstimates;
  means.fvCoordinates = {column_of("nobody", {"1"}), column_of("x", {"2"})};
  means.fMean = column_of("", {"5"});
  {
    const ChartCalls calls = custom_effects(run);
    CHECK(holds(calls.document(), "75%"));
    CHECK(holds(calls.document(), "<legend id=\"legend\">"));
    CHECK_FALSE(holds(calls.document(), "<faceting"));
    CHECK_FALSE(holds(calls.document(), "FootnoteText"));
    CHECK(calls.relabels() ==
          "\"effect1\" 0: setLabel \"x\"\n\"effect1\" 0: setCategorical false\n");
  }
  means.fvCoordinates = {column_of("g", {"1"}), column_of("x", {"2"}), column_of("y", {"3"})};
  const ChartCalls calls = custom_effects(run);
  CHECK(holds(calls.document(), "<faceting"));
  CHECK(calls.column("source_0", "effect3") == "3 3");
  CHECK(holds(calls.relabels(),
              "\"effect3\" 0: setLabel \"Yield\"\n"
              "\"effect3\" 0: setVELTVariable {\"variable\":\"y\"}\n"
              "\"effect3\" 0: addRelabels \n"
              "\"effect3\" 0: setFormatBasedOnVELTVariable {\"variable\":\"y\"}\n"
              "\"effect3\" 0: SetFormatPrefix \"Yield = \"\n"));
}

TEST_CASE("custom effects: what keeps the chart away") {
  ChartRun run;
  run.block().fEstimates = means_of_group();
  CHECK(custom_effects(run).order().empty());  // The base block has the message kGLMM_C20.
  run.block().fvWarningList = {{"kGLMM_C25", {}}};
  CHECK(custom_effects(run).order().empty());
  run.block().fvWarningList = {{"kGLMM_C19_1", {}}};
  CHECK(custom_effects(run).count("XDocument::SendChart") == 1);
  run.block().fEstimates.fvCoordinates.clear();
  CHECK(custom_effects(run).order().empty());
}

TEST_CASE("pairwise: edges, weights, words and nodes") {
  ChartRun run(labelled_documents());
  set_contrasts(run, ContrastKind::kPairwise,
                {column_of("g", {"1", "3", "3", "2"}), column_of("g", {"2", "2", "1", "02"})},
                {"4", "-1", "3", "x"}, {"0.5", "0.0", "1.0", "__MISSING__"});
  const ChartCalls calls = contrast_chart(run);
  CHECK(calls.column("edgeSource_1", "from") == "2 2 2");
  CHECK(calls.column("edgeSource_1", "to") == "1 3 2");
  CHECK(calls.column("edgeSource_1", "weight") == "4 1 1");
  CHECK(calls.column("edgeSource_1", "weightInPopup") == "0.5 0 0");
  CHECK(calls.column("edgeSource_1", "type") == "0 1 1");
  CHECK(calls.column("edgeSource_1", "facet1") == R"("" "" "")");
  CHECK(calls.column("edgeSource_1", "tooltip") ==
        R"("Simple Same" "Simple Higher" "Simple Higher")");
  CHECK(calls.column("nodeSource_1", "node") == "3 2 1 2");
  // The first label of a key without its leading zeros stands.
  CHECK(holds(calls.relabels(),
              "\"to\" 0: addRelabel \"1\" \"one\"\n"
              "\"node\" 0: addRelabel \"2\" \"two\"\n"
              "\"from\" 0: addRelabel \"2\" \"two\"\n"
              "\"to\" 0: addRelabel \"2\" \"two\"\n"));
  CHECK_FALSE(holds(calls.document(), "<faceting"));
  CHECK(holds(calls.document(), "Target: Yield"));
  CHECK(calls.order().ends_with(
      "addRelabel XDocument::setEditor setLanguage SetDescription SetChartData applyCTemplate "
      "SendChart release:XDocument release:VarDataProcessor"));
}

TEST_CASE("pairwise: panels, and categories that are no numbers") {
  ChartRun run(labelled_documents());
  set_contrasts(
      run, ContrastKind::kPairwise,
      {column_of("g", {"1", "2"}), column_of("s", {"a", "a"}), column_of("s", {"b", "b"})},
      {"1", "1"}, {"0.01", "0.01"});
  const ChartCalls calls = contrast_chart(run);
  CHECK(calls.column("edgeSource_1", "from") == R"("1b" "2b")");
  CHECK(calls.column("edgeSource_1", "weight").empty());
  CHECK(calls.column("nodeSource_1", "node") == R"("2b" "2a" "1b" "1a")");
  CHECK(calls.column("nodeSource_1", "facet1") == "2 2 1 1");
  CHECK(calls.column("nodeSource_1", "facet2") == R"("" "" "" "")");
  CHECK(holds(calls.document(), "<faceting"));
  CHECK(holds(calls.relabels(), "\"facet1\" 0: setLabel \"Group\""));
  CHECK(holds(calls.relabels(), "\"facet1\" 1: setLabel \"Group\""));
  CHECK(holds(calls.relabels(), R"("node" 0: addRelabel "1a" "A & B")"));
}

TEST_CASE("simple contrasts: levels, guides and words") {
  ChartRun run(labelled_documents());
  EmmeansEstimData& means = run.block().fEstimates;
  means.fvCoordinates = {column_of("s", {"a", "a", "b", "b"}),
                         column_of("g", {"1", "2", "1", "2"})};
  means.fMean = column_of("", {"10", "12", "20", "19"});
  set_contrasts(run, ContrastKind::kSimple,
                {column_of("s", {"a", "b", "c"}), column_of("g", {"2", "2", "1"}),
                 column_of("g", {"1", "1", "1"})},
                {"2", "-1", "5"}, {"0.01", "0.01", "0.5"});
  run.block().fContrasts.fConfIntervalLower = column_of("", {"1", "-2"});
  run.block().fContrasts.fConfIntervalUpper = column_of("", {"3", "0.5"});
  const ChartCalls calls = contrast_chart(run);
  CHECK(calls.column("source", "value") == "10 12 20 19 -5 0");
  CHECK(calls.column("source", "category") == "2 2 2 2 1 1");
  CHECK(calls.column("source", "type") == "1 1 1 1 0 0");
  CHECK(calls.column("source", "facet1") == R"("a" "a" "b" "b" "c" "c")");
  CHECK(calls.column("source", "facet2") == "0 0 0 0 0 0");
  CHECK(calls.column("source", "confMargin") == "11 13 18 20.5 -5 -5");
  CHECK(
      calls.column("source", "tooltip") ==
      R"("Simple Higher" "Simple Higher" "Simple Lower" "Simple Lower" "Simple Same" "Simple Same")");
  const std::string text = calls.document();
  CHECK(holds(text, R"(y="10" hideWhen="facet1!=&quot;a&quot;")"));
  CHECK(holds(text, R"(y="20" hideWhen="facet1!=&quot;b&quot;")"));
  CHECK(holds(text, R"(y="-5" hideWhen="facet1!=&quot;c&quot;")"));
  CHECK_FALSE(holds(text, "whenText"));
  CHECK_FALSE(holds(text, "variable=\"facet2\"></variableReference>"));
  CHECK(holds(calls.relabels(), "\"facet1\" 0: SetFormatPrefix \"s = \""));
  CHECK(holds(calls.relabels(),
              "\"type\" 0: addRelabel 0 \"Not Significant\"\n"
              "\"type\" 0: addRelabel 1 \"Significant\"\n"
              "\"type\" 0: setLabel \"E62317\""));
  CHECK(calls.order().ends_with(
      "addRelabel addRelabel setLabel XDocument::SetChartData SetDescription applyCTemplate "
      "SendChart release:XDocument release:XGlyphTemplate release:VarDataProcessor"));
}

TEST_CASE("deviation contrasts: one panel, whose level the first contrast gives") {
  ChartRun run(labelled_documents());
  run.block().fEstimates = means_of_group();
  set_contrasts(run, ContrastKind::kDeviation,
                {column_of("g", {"1", "2"}), column_of("g", {"1", "2"})}, {"1.5", "-1"},
                {"0.01", "0.2"});
  const ChartCalls calls = contrast_chart(run);
  CHECK(calls.column("source", "value") == "3.5 5 3.5 0");
  CHECK(calls.arguments("XDocument::SetDescription") == "\"Deviation Contrasts\"\n");
  CHECK(holds(calls.document(), R"(y="3.5" hideWhen="false")"));
  CHECK_FALSE(holds(calls.document(), "<faceting"));
  CHECK(holds(calls.document(), "Horizontal Line Deviation"));
}

TEST_CASE("contrasts: the footnote of each adjustment") {
  ChartRun run;
  run.block().fEstimates = means_of_group();
  const std::pair<int32_t, const char*> footnotes[] = {
      {0, ">Least Significant significance adjust 0.05<"},
      {1,
       ">Sequential Bonferroni significance adjust 0.05\nConfidence interval bounds are "
       "approximate.<"},
      {2,
       ">Sequential Sidak significance adjust 0.05\nConfidence interval bounds are "
       "approximate.<"},
      {3, "<footnote></footnote>"},
  };
  for (const auto& [adjustment, footnote] : footnotes) {
    CAPTURE(adjustment);
    run.settings().fPAdjustment = adjustment;
    for (int32_t kind : {0, 2}) {
      set_contrasts(run, kind, {column_of("g", {"1"}), column_of("g", {"2"})}, {"1"}, {"0.5"});
      CHECK(holds(contrast_chart(run).document(), footnote));
    }
  }
}

TEST_CASE("contrasts: what keeps the chart away") {
  ChartRun run;
  for (int32_t kind : {-1, 0, 1, 2, 3}) {
    CAPTURE(kind);
    const bool has_chart = kind >= 0 && kind <= 2;
    set_contrasts(run, kind, {column_of("g", {"1"}), column_of("g", {"2"})}, {"1"}, {"1.0"});
    CHECK(contrast_chart(run).count("XDocument::SendChart") == (has_chart ? 1 : 0));
    set_contrasts(run, kind, {column_of("g", {"1"})}, {"1"}, {"0.5"});
    CHECK(contrast_chart(run).order().empty());
    set_contrasts(run, kind, {}, {"1"}, {"0.5"});
    CHECK(contrast_chart(run).order().empty());
  }
  run.block().fvOverallTests.clear();
  set_contrasts(run, 2, {column_of("g", {"1"}), column_of("g", {"2"})}, {"1"}, {"0.5"});
  CHECK(contrast_chart(run).order().empty());
}
