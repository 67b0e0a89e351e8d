// Fit statistics, distributions and tests as they stand in the store.
#include <doctest/doctest.h>
#include <limits>

#include "tests/backend/result_documents.h"

using namespace hierfit;
using namespace hierfit::test;

namespace {

using Numbers = std::vector<double>;

constexpr int32_t kLowest = std::numeric_limits<int32_t>::min();

/// The base documents with further children of the diagnostics.
ResultDocuments with(std::string_view elements) {
  return ResultDocuments().insert_before("<StructuredData", elements);
}

constexpr char kDistribution[] = R"(<UnivariateData description="TargetDistribution">
  <Counts totalFreq="9"/><Statistic name="mean" value="3"/><Statistic name="shape" value="2"/>
  <Coordinates feature="frequency"><Array>4 5</Array></Coordinates>
  <Coordinates feature="observed"><Array>1 2</Array></Coordinates></UnivariateData>)";

}  // namespace

TEST_CASE("fit statistics: absent, empty, repeated, unknown") {
  const Reading reading(with(R"(<Statistic name="BIC" value=""/>
      <Statistic name="numOfColsOfFixed" value=""/><Statistic name="numOfColsOfRandom" value="7"/>
      <Statistic name="AICC" value="13"/><Statistic name="aicc" value="14"/>)"));
  REQUIRE(reading.reads);
  const ModelDiagnostics& diagnostics = reading.diagnostics();
  CHECK(diagnostics.fAICC == 13);
  CHECK(diagnostics.fBIC == kSystemMissing);
  CHECK(diagnostics.fGrandMean == kSystemMissing);
  CHECK(diagnostics.fNumOfColsOfFixed == kLowest);
  CHECK(diagnostics.fNumOfColsOfRandom == 7);
  CHECK(diagnostics.fNumOfCommonSubjects == -1);
}

TEST_CASE("a record that is read again starts from its defaults") {
  Reading reading(with(kDistribution));
  REQUIRE(reading.reads);
  SDOMXMLWrapper root;
  SDOMXMLWrapper* element = root.LoadFromString(
      "<x><Statistic name='BIC' value='7'/><UnivariateData description='TargetDistribution'>"
      "<Statistic/><Coordinates><Array/></Coordinates></UnivariateData>"
      "<BivariateData description='other'/><Parameter name='TargetField' value='y'/></x>");
  REQUIRE(element != nullptr);

  ModelDiagnostics& diagnostics = *reading.store.GetModelDiagnostics();
  CHECK(reading.reader.ReadModelDiagnostics(element, diagnostics));
  CHECK(diagnostics.fBIC == 7);
  CHECK(diagnostics.fAICC == kSystemMissing);
  CHECK(diagnostics.fNumOfColsOfRandom == -1);
  CHECK(diagnostics.fTargetDistribution.fMean == 0);
  CHECK(diagnostics.fTargetDistribution.fTotalFreq == 0);
  CHECK(diagnostics.fPredByObserved.fMaxValue == 0);

  BuildSettingsStruct& settings = *reading.store.GetBuildSettings();
  CHECK(reading.reader.ReadBuildSettings(element, settings));
  CHECK(settings.fAlgorithmName == "GLMM");
  CHECK(settings.fDistribution == Distribution::kUnknown);
  CHECK(settings.fvFixedEffectList.empty());
}

TEST_CASE("the target's distribution: the first usable element counts") {
  SUBCASE("empty statistics are zero, unknown features need their array alone") {
    const Reading reading(with(R"(<UnivariateData description="TargetDistribution"><Counts/>
        <Statistic name="mean" value=""/><Statistic/><Coordinates><Array>x</Array></Coordinates>
        </UnivariateData>)"));
    REQUIRE(reading.reads);
    CHECK(reading.diagnostics().fTargetDistribution.fMean == 0);
    CHECK(reading.diagnostics().fTargetDistribution.fTotalFreq == 0);
    CHECK(reading.diagnostics().fTargetDistribution.fvObserved.empty());
  }
  SUBCASE("elements behind it are not looked at") {
    const Reading reading(with(std::string("<UnivariateData/>") + kDistribution +
                               R"(<UnivariateData description="TargetDistribution"/>)"));
    REQUIRE(reading.reads);
    const TargetDistData& distribution = reading.diagnostics().fTargetDistribution;
    CHECK(distribution.fDescription == "TargetDistribution");
    CHECK(distribution.fTotalFreq == 9);
    CHECK(distribution.fMean == 3);
    CHECK(distribution.fShape == 2);
    CHECK(distribution.fvObserved == Numbers{1, 2});
    CHECK(distribution.fvFrequency == Numbers{4, 5});
  }
  SUBCASE("without a usable one the last test decides") {
    const std::string unusable =
        R"(<UnivariateData description="TargetDistribution"><Statistic name="mean" value="3"/>
        <Statistic name="shape" value="2"/></UnivariateData>)";
    const Reading reading(with(unusable + R"(<UnivariateData description="other"/>)"));
    CHECK(reading.reads);
    CHECK(reading.diagnostics().fTargetDistribution.fDescription == "other");
    CHECK(reading.diagnostics().fTargetDistribution.fMean == 3);
    CHECK(reading.diagnostics().fTargetDistribution.fShape == 0);
  }
}

TEST_CASE("observed by predicted: the first element counts, and the range spans both") {
  SUBCASE("missing items, and the range") {
    const Reading reading(with(R"(<BivariateData description="other"/>
        <BivariateData description="observedByPredicted"><Counts totalFreq="3"/>
        <Coordinates feature="observed"><Array n="2">1 2</Array></Coordinates>
        <Coordinates feature="statistic"><Array>0.5 "1.5" 2.5</Array></Coordinates>
        <Coordinates feature="frequency"><Array>__MISSING__ __missing__ 1</Array></Coordinates>
        </BivariateData><BivariateData/>)"));
    REQUIRE(reading.reads);
    const PredByObservData& data = reading.diagnostics().fPredByObserved;
    CHECK(data.fTotalFreq == 3);
    CHECK(data.fvObserved == Numbers{1, 2});
    CHECK(data.fvStatistic == Numbers{0.5, 1.5, 2.5});
    CHECK(data.fvFrequency == Numbers{kSystemMissing, kSystemMissing, 1});
    CHECK(data.fMinValue == 0.5);
    CHECK(data.fMaxValue == 2.5);
  }
  SUBCASE("none of that description is no failure") {
    const Reading reading(with(R"(<BivariateData description="other"/>)"));
    CHECK(reading.reads);
    CHECK(reading.diagnostics().fPredByObserved.fDescription == "other");
  }
}

TEST_CASE("tests of the model: nothing in them is required") {
  const Reading reading(with(R"(
      <ModelTestStats description="correctedModel" testID="4" testType="III"/>
      <ModelTestStats description="correctedModel" testID="5" testType="IV">
       <FTest fStatistic="1" df1="2" df2="3" sig=""/></ModelTestStats>
      <ModelTestStats description="fixedEffect" testID="" testType="iii"/>
      <ModelTestStats description="fixedEffect" testID="6"><FTest df2="9"/></ModelTestStats>
      <ModelTestStats/>)"));
  REQUIRE(reading.reads);
  const EffectStatData& tests = *reading.store.GetEffectStatData();
  CHECK(tests.fCorrectedModel.fTestID == 0);
  CHECK(tests.fCorrectedModel.fTestType == 4);
  CHECK(tests.fCorrectedModel.fFStatistic == 1);
  CHECK(tests.fCorrectedModel.fSig == kSystemMissing);
  REQUIRE(tests.fvFixedEffectTests.size() == 2);
  CHECK(tests.fvFixedEffectTests[0].fTestType == 0);
  CHECK(tests.fvFixedEffectTests[0].fDf1 == kSystemMissing);
  CHECK(tests.fvFixedEffectTests[1].fTestID == 6);
  CHECK(tests.fvFixedEffectTests[1].fDf2 == 9);
}

TEST_CASE("diagnostics that fail the read") {
  constexpr char kWhere[] = "<Statistic name=\"AICC\" value=\"12.5\"/>";
  check_changes({
      {"no statistic", kWhere, ""},
      {"a statistic without a value", kWhere, "<Statistic name=\"AICC\"/>"},
      {"a statistic without a name", kWhere, "<Statistic value=\"1\"/>"},
      {"a distribution without anything", kWhere,
       "<Statistic name=\"a\" value=\"1\"/><UnivariateData description=\"TargetDistribution\"/>"},
      {"a last distribution without a description", kWhere,
       "<Statistic name=\"a\" value=\"1\"/><UnivariateData description=\"x\"/><UnivariateData/>"},
      {"coordinates without an array", kWhere,
       "<Statistic name=\"a\" value=\"1\"/><UnivariateData description=\"TargetDistribution\">"
       "<Statistic/><Coordinates/></UnivariateData>"},
      {"bivariate data without a description", kWhere,
       "<Statistic name=\"a\" value=\"1\"/><BivariateData/>"},
      {"bivariate data without coordinates", kWhere,
       "<Statistic name=\"a\" value=\"1\"/><BivariateData description=\"observedByPredicted\"/>"},
      {"bivariate coordinates without a feature", kWhere,
       "<Statistic name=\"a\" value=\"1\"/><BivariateData description=\"observedByPredicted\">"
       "<Coordinates><Array>1</Array></Coordinates></BivariateData>"},
      {"an array that cannot be read", kWhere,
       "<Statistic name=\"a\" value=\"1\"/><BivariateData description=\"observedByPredicted\">"
       "<Coordinates feature=\"observed\"><Array n=\"2\">1</Array></Coordinates></BivariateData>"},
  });
}
