// The settings of the model as they stand in the store.
#include <doctest/doctest.h>
#include <limits>

#include "tests/backend/result_documents.h"

using namespace hierfit;
using namespace hierfit::test;

namespace {

using Texts = std::vector<std::string>;

constexpr char kEnd[] = "</BuildSettings>";

/// The base documents with further parameters.
ResultDocuments with(std::string_view parameters) {
  return ResultDocuments().insert_before(kEnd, parameters);
}

/// An effect of one field as a structured value.
std::string effect(std::string_view field) {
  return R"(<StructuredValue><Attribute name="Fields"><ListValue><Value value=")" +
         std::string(field) + R"("/></ListValue></Attribute></StructuredValue>)";
}

}  // namespace

TEST_CASE("settings that the document does not have keep their defaults") {
  const Reading reading((ResultDocuments()));
  const BuildSettingsStruct& settings = reading.settings();
  CHECK(settings.fTargetIndex == 0);
  CHECK(settings.fTrialsIndex == -1);
  CHECK(settings.fDistribution == 8);
  CHECK(settings.fLink == 9);
  CHECK(settings.fLinkParam == kSystemMissing);
  CHECK(settings.fCIn == kSystemMissing);
  CHECK(settings.fIntercept);
  CHECK(settings.fPAdjustment == 3);
  CHECK(settings.fAlgorithmName == "GLMM");
  CHECK(settings.fvRandomSpecs.at(0).fIntercept);
  CHECK(settings.fvRandomSpecs.at(0).fCovType == 8);
}

TEST_CASE("values of parameters, the last one of a name counting") {
  const Reading reading(with(R"(<Parameter name="UseTrials" value="true"/>
      <Parameter name="TrialsField" value="n"/><Parameter name="TrialsValue" value="-12.9"/>
      <Parameter name="DistributionOfTarget" value="POISSON"/>
      <Parameter name="DistributionOfTarget" value="ORDINAL"/>
      <Parameter name="LinkFunctionType" value="LOGC"/>
      <Parameter name="LinkFunctionParam" value="0.5"/><Parameter name="Intercept" value="True"/>
      <Parameter name="ResidualCovarianceType" value="ARMA11"/>
      <Parameter name="ResidualCovarianceTBand" value="4"/><Parameter name="CIn" value="0.95"/>
      <Parameter name="pAdjustment" value="SEQSIDAK"/><Parameter name="unknown" value="x"/>)"));
  REQUIRE(reading.reads);
  const BuildSettingsStruct& settings = reading.settings();
  CHECK(settings.fUseTrials);
  CHECK(settings.fTrialsIndex == 1);
  CHECK(settings.fTrialsValue == -12);
  CHECK(settings.fDistributionText == "ORDINAL");
  CHECK(settings.fDistribution == 4);
  CHECK(settings.fLinkText == "LOGC");
  CHECK(settings.fLink == 3);
  CHECK(settings.fLinkParam == 0.5);
  CHECK(settings.fLinkParamText == "0.5");
  CHECK_FALSE(settings.fIntercept);
  CHECK(settings.fResidualCovType == 2);
  CHECK(settings.fResidualCovTBand == 4);
  CHECK(settings.fCIn == 0.95);
  CHECK(settings.fPAdjustment == 2);
}

TEST_CASE("a value that is empty or absent") {
  const Reading reading(with(R"(<Parameter name="TrialsValue" value=""/>
      <Parameter name="LinkFunctionType" value="logit"/><Parameter name="LinkFunctionParam"/>
      <Parameter name="CIn" value=""/><Parameter name="ResidualCovarianceTBand"/>
      <Parameter name="Intercept"/><Parameter name="ResidualSubjectSpec"/>
      <Parameter name="ResidualGroupSpec"/><Parameter name="FixedEffectList"/>)"));
  REQUIRE(reading.reads);
  const BuildSettingsStruct& settings = reading.settings();
  CHECK(settings.fTrialsValue == std::numeric_limits<int32_t>::min());
  CHECK(settings.fLink == 9);
  CHECK(settings.fLinkParam == kSystemMissing);
  CHECK(settings.fCIn == kSystemMissing);
  CHECK(settings.fResidualCovTBand == 2);
  CHECK_FALSE(settings.fIntercept);
}

TEST_CASE("effects: the status is that of the last attribute, and the walk goes on") {
  const std::string fields = R"(<Attribute name="Fields"><ListValue><Value value="x"/>
      <Value value="nobody"/><Value value="g"/></ListValue></Attribute>)";
  const std::string levels = R"(<Attribute name="NestingLevels"><ListValue><Value value="0"/>
      <Value value=""/><Value value="2"/></ListValue></Attribute>)";
  const auto spec = [](const std::string& attributes) {
    return with(R"(<Parameter name="ResidualSubjectSpec"><StructuredValue>)" + attributes +
                "</StructuredValue></Parameter>");
  };
  SUBCASE("an unknown field ahead of good levels") {
    const Reading reading(spec(fields + levels));
    REQUIRE(reading.reads);
    const EffectStruct& effect = reading.settings().fResidualSubjectSpec;
    CHECK(effect.fvFieldNames == Texts{"x", "nobody"});
    CHECK(effect.fvVarIndices == std::vector<int32_t>{2});
    CHECK(effect.fvNestingLevels == std::vector<int32_t>{0, 0, 2});
  }
  for (const std::string& attributes :
       {levels + fields, fields, std::string(R"(<Attribute name="Fields"/>)"), std::string()}) {
    CAPTURE(attributes);
    Reading reading(spec(attributes));
    CHECK_FALSE(reading.reads);
    CHECK(reading.store.GetBuildSettings() == nullptr);
  }
}

TEST_CASE("lists of effects and texts grow with each parameter of their name") {
  const std::string list =
      R"(<Parameter name="FixedEffectList"><ListValue>)" + effect("x") + "</ListValue></Parameter>";
  const Reading reading(
      with(list + list + R"(<Parameter name="FixedEffectList"><ListValue/></Parameter>
      <Parameter name="ResidualGroupSpec"><ListValue><Value value="g"/><Value/></ListValue></Parameter>)"));
  REQUIRE(reading.reads);
  CHECK(reading.settings().fvFixedEffectList.size() == 2);
  CHECK(reading.settings().fvResidualGroupSpec == Texts{"g", ""});
}

TEST_CASE("requests of estimated means") {
  const auto request = [](const std::string& attributes) {
    return with(R"(<Parameter name="EMMEANS"><ListValue><StructuredValue>)" + attributes +
                "</StructuredValue></ListValue></Parameter>");
  };
  SUBCASE("values and their defaults") {
    const Reading reading(request(R"(<Attribute name="Factors">)" + effect("g") +
                                  R"(</Attribute><Attribute name="EstimateMeans" value="TRUE"/>
        <Attribute name="CompareFactor" value="g"/><Attribute/></StructuredValue>
        <StructuredValue><Attribute name="ContrastType" value="pairwise"/>
        <Attribute name="ReferenceType"/></StructuredValue>
        <StructuredValue><Attribute name="ContrastType" value="Deviation"/>
        <Attribute name="ReferenceType" value="Value"/><Attribute name="EstimateMeans" value="true"/>)"));
    REQUIRE(reading.reads);
    const std::vector<EmmeansSpec>& specs = reading.settings().fvEmmeansSpecs;
    REQUIRE(specs.size() == 3);
    CHECK(specs[0].fFactors.fvVarIndices == std::vector<int32_t>{3});
    CHECK_FALSE(specs[0].fEstimateMeans);
    CHECK(specs[0].fCompareFactor == "g");
    CHECK(specs[0].fContrastType == 3);
    CHECK(specs[0].fReferenceType == 0);
    CHECK(specs[1].fContrastType == 4);
    CHECK(specs[1].fReferenceType == 2);
    CHECK(specs[2].fContrastType == 1);
    CHECK(specs[2].fReferenceType == 1);
    CHECK(specs[2].fEstimateMeans);
  }
  SUBCASE("failures") {
    for (const char* attributes : {"", R"(<Attribute name="Factors"/>)"}) {
      CAPTURE(attributes);
      CHECK_FALSE(Reading(request(attributes)).reads);
    }
  }
}

TEST_CASE("settings that fail the read") {
  check_changes({
      {"no target", "<Parameter name=\"TargetField\" value=\"y\"/>", ""},
      {"an unknown target", "value=\"y\"", "value=\"nobody\""},
      {"an unknown trials field", kEnd,
       "<Parameter name=\"TrialsField\" value=\"z\"/></BuildSettings>"},
      {"a parameter without a name", kEnd, "<Parameter value=\"1\"/></BuildSettings>"},
      {"random effects without a list", kEnd, "<Parameter name=\"RandomSpecs\"/></BuildSettings>"},
      {"a random block without attributes", kEnd,
       "<Parameter name=\"RandomSpecs\"><ListValue><StructuredValue/></ListValue></Parameter>"
       "</BuildSettings>"},
      {"means without a list", kEnd, "<Parameter name=\"EMMEANS\"/></BuildSettings>"},
  });
}
