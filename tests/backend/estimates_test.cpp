// Parameter estimates as they stand in the store.
#include <algorithm>
#include <doctest/doctest.h>

#include "tests/backend/result_documents.h"

using namespace hierfit;
using namespace hierfit::test;

namespace {

/// One estimate with the attributes that it must have.
constexpr char kStats[] = R"(<ParameterStats paramName="" paramLabel="" estimate="" stdError=""
  df="" confIntervalLower="" confIntervalUpper="" tTest="" zTest="" sig="" chiSquare=""
  expEstimate="" expCILower="" expCIUpper="" isRedundant=""/>)";

/// An element of estimates.
std::string estimates(const std::string& attributes, const std::string& below = kStats) {
  return "<ParameterEstimates " + attributes + ">" + below + "</ParameterEstimates>";
}

/// The base documents with further estimates behind those that they have.
ResultDocuments with(const std::string& elements) {
  return ResultDocuments().replace("</ParameterEstimates>", "</ParameterEstimates>" + elements);
}

}  // namespace

TEST_CASE("an estimate, number by number") {
  const Reading reading((ResultDocuments()));
  const ParamEstimData& fixed = reading.estimates().fvFixedParamEstim.at(0);
  CHECK(fixed.fTargetCategory.GetStringValue().empty());
  const ParamStatData& stat = fixed.fvParamStats.at(0);
  CHECK(stat.fParamName == "P1");
  CHECK(stat.fParamLabel == "x");
  CHECK(stat.fStatName == "fixedEffectIndex");
  CHECK(stat.fStatIndex == 0);
  CHECK(stat.fRegressionParam.fvCovariates.at(0).fVarIndex == 2);
  const std::vector<double> numbers = {
      stat.fEstimate,          stat.fStdError,    stat.fDf,         stat.fConfIntervalLower,
      stat.fConfIntervalUpper, stat.fTTest,       stat.fZTest,      stat.fSig,
      stat.fChiSquare,         stat.fExpEstimate, stat.fExpCILower, stat.fExpCIUpper};
  CHECK(numbers == std::vector<double>{1, 2, 3, 4, 5, 6, kSystemMissing, 8, 9, 10, 11, 12});
  CHECK(stat.fIsRedundant);
}

TEST_CASE("estimates are filed by type and block") {
  const Reading reading(with(
      estimates(
          "parameterType=\"fixed\" block=\"x\"",
          R"(<SegmentInfo><FieldInfo fieldValue="2.5"/></SegmentInfo>)" + std::string(kStats)) +
      estimates("parameterType=\"repeated\" block=\"-1\"") + estimates("parameterType=\"other\"") +
      estimates("parameterType=\"random\" block=\"2\"",
                R"(<SegmentInfo><FieldInfo fieldName="g" fieldValue="3"/></SegmentInfo>)" +
                    std::string(kStats)) +
      estimates("parameterType=\"random\" block=\"\"")));
  REQUIRE(reading.store.GetParamCollect() != nullptr);
  const ParamCollect& collect = reading.estimates();
  REQUIRE(collect.fvFixedParamEstim.size() == 2);
  CHECK(number(collect.fvFixedParamEstim[1].fTargetCategory) == 2.5);
  CHECK(collect.fvRepeatedParamEstim.size() == 1);
  CHECK(collect.fvRepeatedParamEstim[0].fvParamStats.at(0).fStatIndex == -1);
  REQUIRE(collect.fvRandomParamEstim.size() == 3);
  CHECK(collect.fvRandomParamEstim[0].fBlock == 2);
  CHECK(collect.fvRandomParamEstim[0].fvParamEstim.size() == 1);
  CHECK(collect.fvRandomParamEstim[1].fvParamEstim.empty());
  const ParamEstimData& random = collect.fvRandomParamEstim[2].fvParamEstim.at(0);
  CHECK(random.fFiledData.fvVarIndices == std::vector<int32_t>{3});
  CHECK(random.fFiledData.fvLevelCounts == std::vector<int32_t>{3});
}

TEST_CASE("estimates that fail leave none, and the messages decide") {
  const std::string stats = kStats;
  const auto segment = [&](const char* field_info) {
    return "<SegmentInfo>" + std::string(field_info) + "</SegmentInfo>" + stats;
  };
  const std::string cases[] = {
      estimates(""),
      estimates("parameterType=\"fixed\"", ""),
      estimates("parameterType=\"fixed\"", segment("<FieldInfo/>")),
      estimates("parameterType=\"fixed\"", segment("<FieldInfo fieldValue=\"high\"/>")),
      estimates("parameterType=\"other\"",
                segment("<FieldInfo fieldName=\"x\" fieldValue=\"1\"/>")),
      estimates("parameterType=\"random\" block=\"-1\""),
      estimates("parameterType=\"random\" block=\"10000\""),
      estimates("parameterType=\"fixed\"", "<ParameterStats/>"),
  };
  for (const std::string& elements : cases) {
    CAPTURE(elements);
    const Reading reading(with(elements));
    CHECK(reading.reads);
    CHECK(reading.store.GetParamCollect() == nullptr);
  }
}

TEST_CASE("every attribute of an estimate must be there") {
  for (const char* attribute :
       {" paramName=\"P1\"", " paramLabel=\"x\"", " estimate=\"1\"", " stdError=\"2\"", " df=\"3\"",
        " confIntervalLower=\"4\"", " confIntervalUpper=\"5\"", " tTest=\"6\"", " zTest=\"\"",
        " sig=\"8\"", " chiSquare=\"9\"", " expEstimate=\"10\"", " expCILower=\"11\"",
        " expCIUpper=\"12\"", " isRedundant=\"true\"", " name=\"fixedEffectIndex\""}) {
    CAPTURE(attribute);
    // The line breaks of the base document count as blanks.
    ResultDocuments documents;
    std::ranges::replace(documents.result, '\n', ' ');
    const std::size_t element = documents.result.find("<ParameterStats");
    const std::size_t position = documents.result.find(attribute, element);
    REQUIRE(position != std::string::npos);
    documents.result.erase(position, std::string_view(attribute).size());
    CHECK(Reading(documents).store.GetParamCollect() == nullptr);
  }
}

TEST_CASE("an intercept carries no statistic") {
  ResultDocuments documents;
  documents.replace_range(
      "<RegressionParameter isIntercept=\"false\" name=\"P1\"><Covariate field=\"x\" "
      "power=\"1\"/>\n   ",
      "</RegressionParameter>", "<RegressionParameter isIntercept=\"true\" name=\"P1\"/>");
  CHECK(Reading(documents).store.GetParamCollect() == nullptr);
  documents.replace("<Statistic name=\"fixedEffectIndex\" value=\"0\"/>", "");
  CHECK(Reading(documents).store.GetParamCollect() != nullptr);
}
