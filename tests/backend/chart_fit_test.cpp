// The charts of the fit: predicted by observed, the two diagrams and the histogram in them.
#include <doctest/doctest.h>

#include "tests/backend/chart_calls.h"
#include "tests/embedded/failing_editor.h"

using namespace hierfit;
using namespace hierfit::test;

namespace {

bool holds(const std::string& text, std::string_view part) {
  return text.find(part) != std::string::npos;
}

ChartCalls predicted_by_observed(ChartRun& run) {
  return run.calls([](HFITChartOutput& charts) { charts.PredictedByObservedOutput(); });
}

ChartCalls effects_diagram(ChartRun& run) {
  return run.calls([](HFITChartOutput& charts) { charts.FixedEffectsDiagramOutput(); });
}

ChartCalls coefficients_diagram(ChartRun& run) {
  return run.calls([](HFITChartOutput& charts) { charts.FixedCoefficientsDiagramOutput(); });
}

ChartRun& with_points(ChartRun& run) {
  run.diagnostics().fPredByObserved = {.fDescription = "points",
                                       .fTotalFreq = 100,
                                       .fvObserved = {1, 2, 3},
                                       .fvStatistic = {4, 5, 6, 7, 8},
                                       .fvFrequency = {7, 8, 9, 10},
                                       .fMinValue = 0.25,
                                       .fMaxValue = 1234567.8};
  return run;
}

EffectTestData effect_test(int32_t id, double sig) {
  EffectTestData test;
  test.fTestID = id;
  test.fSig = sig;
  return test;
}

/// Effects of x, of s and g, and of nothing.
void add_effects(ChartRun& run) {
  run.settings().fvFixedEffectList = {{{"x"}, {2}, {0}}, {{"s", "g"}, {4, 3}, {0, 0}}, {}};
}

ParamStatData coefficient(std::string label, double sig) {
  ParamStatData stat;
  stat.fStatName = "fixedEffectIndex";
  stat.fStatIndex = 0;
  stat.fParamLabel = std::move(label);
  stat.fEstimate = 1;
  stat.fSig = sig;
  return stat;
}

FactorData factor(std::string field, const std::string& value, const VELT_Variable* variable) {
  FactorData data;
  data.fField = std::move(field);
  data.fValue.SetCompleteValue(value, variable, 0);
  return data;
}

void set_coefficients(ChartRun& run, std::vector<ParamStatData> stats) {
  run.reading.store.GetParamCollect()->fvFixedParamEstim.at(0).fvParamStats = std::move(stats);
}

}  // namespace

TEST_CASE("predicted by observed: the rows of the shortest list, and the calls in their order") {
  ChartRun run;
  const ChartCalls calls = predicted_by_observed(with_points(run));
  CHECK(calls.column("source0", "X") == "1 2 3");
  CHECK(calls.column("source0", "Y") == "4 5 6");
  CHECK(calls.column("source0", "Frequency") == "7 8 9");
  CHECK(calls.order() ==
        "XGlyphTemplate::XGlyphTemplate setTemplateInternalName VarDataProcessor::VarDataProcessor "
        "AddDataSource AddVariable AddVariable AddVariable XGlyphTemplate::addVariable addVariable "
        "addVariable addLabel convert XDocument::XDocument setEditor setLanguage getExternalGraph "
        "XGraph::getVariable XVariable::setFormat XGraph::getVariable XVariable::setFormat "
        "XDocument::SetDescription SetChartData applyCTemplate SendChart release:XDocument "
        "release:VarDataProcessor release:XGlyphTemplate");
  CHECK(calls.arguments("VarDataProcessor::AddDataSource") == "\"source0\" 3\n");
  CHECK(calls.arguments("XGlyphTemplate::addVariable") ==
        "\"X\" \"X\" false \"\" \"source0\" null \"Yield\" 0 null\n"
        "\"Y\" \"Y\" false \"\" \"source0\" null \"E61604\" 0 null\n"
        "\"Transparency\" \"Frequency\" false \"\" \"source0\" null \"E60352\" 0 null\n");
  CHECK(holds(calls.document(), "\"1.23457e+06\""));
  CHECK(holds(calls.document(), "\"0.25\""));
  CHECK_FALSE(holds(calls.document(), " visible=\"false\" id=\"legendStyle"));
}

TEST_CASE("predicted by observed: fewer than 100 cases hide the legend, no description the chart") {
  ChartRun run;
  with_points(run).diagnostics().fPredByObserved.fTotalFreq = 99;
  CHECK(holds(predicted_by_observed(run).document(), " visible=\"false\" id=\"legendStyle"));
  run.diagnostics().fPredByObserved.fDescription.clear();
  CHECK(predicted_by_observed(run).order().empty());
}

TEST_CASE("the effects: which are nodes, where they stand and what they are called") {
  ChartRun run(labelled_documents());
  add_effects(run);
  run.reading.store.NewEffectStatData()->fvFixedEffectTests = {
      effect_test(1, 0),    effect_test(0, 1.0), effect_test(0, kSystemMissing),
      effect_test(2, 0.5),  effect_test(5, 1),   effect_test(-1, 0.1),
      effect_test(10, 0.1), effect_test(0, 0.03)};
  const ChartCalls calls = effects_diagram(run);
  // Effect 2 has no fields and -1 is none: each counts as a node and leaves its row empty.
  CHECK(calls.column("pointSource", "Nodes") == R"("s*g" - - "x")");
  CHECK(calls.column("pointSource", "Type") == R"("interaction" - - "continuous")");
  CHECK(calls.column("pointSource", "PointTooltip") == R"t("s(g\nGroup)" - - "x")t");
  CHECK(calls.column("pointSource", "Y") == "4 - - 1");
  CHECK(calls.column("edgeSource", "Weight") == "9 - - 4");
  CHECK(calls.column("edgeSource", "Weight2").empty());
  CHECK(calls.column("edgeSource", "ToY") == "2.5 - - 2.5");
  CHECK(calls.column("edgeSource", "LineTooltip") == R"("E62317 = 0.000" - - "E62317 = 0.030")");
  CHECK(calls.column("targetPointSource", "X") == "4");
  CHECK(calls.column("targetPointSource", "Y") == "2.5");
  CHECK(calls.column("targetPointSource", "Nodes") == "\"y\"");
  const std::string text = calls.document(1);
  CHECK(holds(text, "max=\"5.33333\""));
  CHECK(holds(text, "max=\"4\""));
  CHECK(holds(text, "id=\"graphStyle\" margin-bottom=\"30px\" "));
  CHECK(holds(text, "high=\"9\" low=\"4\""));
  CHECK(holds(text, " visible=\"false\"  id=\"legendStyle\""));
  CHECK(holds(text, "Coefficient Estimate"));
}

TEST_CASE("the effects: without tests an empty chart, with none that qualifies no chart") {
  ChartRun run;
  const ChartCalls empty = effects_diagram(run);
  CHECK(empty.count("XDocument::SendChart") == 1);
  // The histogram alone has a source.
  CHECK(empty.count("VarDataProcessor::AddDataSource") == 1);
  CHECK(holds(empty.document(1), "max=\"2\" min=\"0\" />"));
  CHECK_FALSE(holds(empty.document(1), "margin-bottom"));
  run.reading.store.NewEffectStatData()->fvFixedEffectTests = {effect_test(0, 1.0)};
  CHECK(effects_diagram(run).order() ==
        "VarDataProcessor::VarDataProcessor release:VarDataProcessor");
}

TEST_CASE("the coefficients: which are nodes") {
  ChartRun run;
  ParamStatData intercept = coefficient("Intercept", 1.0);
  intercept.fRegressionParam.fIsIntercept = true;
  intercept.fIsRedundant = true;
  ParamStatData redundant = coefficient("redundant", 0);
  redundant.fIsRedundant = true;
  ParamStatData eleventh = coefficient("eleventh", 0);
  eleventh.fStatIndex = 10;
  ParamStatData other = coefficient("other", 0);
  other.fStatName = "effect";
  set_coefficients(run, {intercept, redundant, eleventh, other});
  CHECK(coefficients_diagram(run).order().empty());

  intercept.fSig = 0.99;
  set_coefficients(run, {intercept, redundant, coefficient("x", 0)});
  const ChartCalls calls = coefficients_diagram(run);
  CHECK(calls.column("pointSource", "Nodes") == R"("Intercept" "x")");
  CHECK(calls.column("pointSource", "Type") == R"("intercept" "continuous")");
  CHECK(calls.column("pointSource", "PointTooltip") == R"("" "x")");
  CHECK(calls.column("pointSource", "Label_X") == "-0.13205080756887722 -0.13205080756887722");
}

TEST_CASE("the coefficients: texts of their edges and nodes") {
  ChartRun run(labelled_documents());
  VELT_DataSource& dictionary = *run.reading.data_source();
  ParamStatData labelled = coefficient("g=1", 0.2);
  labelled.fRegressionParam.fvFactors = {factor("g", "1", dictionary.GetVariable(3))};
  labelled.fEstimate = -0.5;
  ParamStatData bare = coefficient("g=3", 0.2);
  bare.fRegressionParam.fvFactors = {factor("g", "3", dictionary.GetVariable(3))};
  bare.fEstimate = kSystemMissing;
  ParamStatData plain = coefficient("s=a*x", 0.2);
  plain.fRegressionParam.fvFactors = {factor("s", "a", dictionary.GetVariable(4))};
  plain.fRegressionParam.fvCovariates = {{"x", 2, 1}};
  ParamStatData null = coefficient("t=?", 0.2);
  null.fRegressionParam.fvFactors = {factor("t", "?", dictionary.GetVariable(5))};
  ParamStatData unknown = coefficient("nobody", 0.2);
  set_coefficients(run, {labelled, bare, plain, null, unknown, coefficient("y", 0.2)});
  const ChartCalls calls = coefficients_diagram(run);
  CHECK(calls.column("pointSource", "PointTooltip") ==
        R"t("g = 1\nGroup = one" "g = 3\nGroup = " "s = a (A & B)" - - "y\nYield")t");
  CHECK(calls.column("pointSource", "Type") ==
        R"("categorical" "categorical" "interaction" "ordinal" "unknown" "continuous")");
  CHECK(calls.column("edgeSource", "Weight2") ==
        R"("Negative" "Positive" "Positive" "Positive" "Positive" "Positive")");
  CHECK(calls.column("edgeSource", "LineTooltip")
            .starts_with(R"("Coefficient = -0.500\nE62317 = 0.200" "Coefficient = .\nE62317)"));
  CHECK_FALSE(holds(calls.document(1), "visible=\"false\"  id=\"legendStyle\""));
}

TEST_CASE("the coefficients: a margin for 2 to 8 nodes, and weights of both diagrams of a run") {
  ChartRun run;
  for (const auto& [count, has_margin] :
       {std::pair{1, false}, {2, true}, {7, true}, {8, true}, {9, false}}) {
    CAPTURE(count);
    set_coefficients(
        run, std::vector<ParamStatData>(static_cast<std::size_t>(count), coefficient("x", 0.3)));
    CHECK(holds(coefficients_diagram(run).document(1), "margin-bottom") == has_margin);
  }
  add_effects(run);
  run.reading.store.NewEffectStatData()->fvFixedEffectTests = {effect_test(0, 0.03)};
  const ChartCalls both = run.calls([](HFITChartOutput& charts) {
    charts.FixedEffectsDiagramOutput();
    charts.FixedCoefficientsDiagramOutput();
  });
  CHECK(holds(both.document(1), "high=\"4\" low=\"4\""));
  CHECK(holds(both.document(3), "high=\"4\" low=\"1\""));
}

TEST_CASE("the target's tooltip") {
  ChartRun run;
  run.settings().fDistribution = Distribution::kGamma;
  run.settings().fLink = Link::kPower;
  run.settings().fLinkParamText = "-0.5";
  set_coefficients(run, {coefficient("x", 0)});
  CHECK(coefficients_diagram(run).column("targetPointSource", "PointTooltip") ==
        R"t("y\nYield\nProbability Distribution Gamma, Link Function Power (-0.5) ...")t");
}

TEST_CASE("the histogram tells the target's distribution") {
  ChartRun run;
  TargetDistData& bins = run.diagnostics().fTargetDistribution;
  bins.fvObserved = {1, 2, 3};
  bins.fvFrequency = {4, 5};
  bins.fMean = 0.1;
  bins.fShape = 0.2;
  bins.fRate = 0.3;
  bins.fR = 0.4;
  bins.fP = 0.5;
  const std::pair<int32_t, const char*> distributions[] = {
      {Distribution::kGamma, "parameter=\"0.2\"  secondaryParameter=\"0.3\" "},
      {Distribution::kInverseGaussian, "parameter=\"0.1\"  secondaryParameter=\"0.2\" "},
      {Distribution::kNegativeBinomial, "parameter=\"0.4\"  secondaryParameter=\"0.5\" "},
      {Distribution::kPoisson, "parameter=\"0.1\" "},
      {Distribution::kNormal, nullptr},
      {Distribution::kBinomial, nullptr},
  };
  for (const auto& [distribution, attributes] : distributions) {
    CAPTURE(distribution);
    run.settings().fDistribution = distribution;
    const ChartCalls calls = effects_diagram(run);
    const std::string text = calls.document();
    CHECK(holds(text, "binStatistic binCount=\"2\" "));
    CHECK(calls.column("source0", "X") == "1 2");
    CHECK(calls.column("source0", "Y") == "4 5");
    CHECK(holds(text, "normal") == (attributes == nullptr));
    CHECK(holds(text, "arameter=") == (attributes != nullptr));
    if (attributes != nullptr) {
      CHECK(holds(text, std::string("<distributionStatistic ") + attributes));
    }
    CHECK(calls.count("GlyphEditor::EmbedHistogramInGraph") == 1);
  }
}

TEST_CASE("what keeps the histogram away leaves the diagram") {
  ChartRun run;
  REQUIRE(holds(effects_diagram(run).document(1), "<embedded"));
  std::size_t asked = 0;
  SUBCASE("no metadata") { run.reading.store.SetMetaData(nullptr); }
  SUBCASE("no field of the target") { run.settings().fTargetIndex = 99; }
  SUBCASE("an editor that throws") {
    use_failing_editor(true);
    asked = 1;
  }
  const ChartCalls calls = effects_diagram(run);
  CHECK(calls.count("GlyphEditor::EmbedHistogramInGraph") == asked);
  CHECK(calls.count("VeltJVM::AttachCurrentThread") == asked);
  CHECK_FALSE(holds(calls.document(1), "<embedded"));
  CHECK(calls.count("XDocument::SendChart") == 1);
}

TEST_CASE("a machine that does not start is asked once a diagram") {
  ChartRun run;
  use_failing_editor(false);
  const ChartCalls calls = effects_diagram(run);
  CHECK(calls.count("VeltJVM::StartJVM") == 1);
  CHECK(calls.count("VeltJVM::AttachCurrentThread") == 0);
  CHECK(calls.count("XDocument::SendChart") == 1);
}
