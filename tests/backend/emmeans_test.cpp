// Estimated means, contrasts, tests and blocks as they stand in the store.
#include <doctest/doctest.h>

#include "tests/backend/result_documents.h"

using namespace hierfit;
using namespace hierfit::test;

namespace {

using Texts = std::vector<std::string>;

const EmmeansData& block(const Reading& reading) { return reading.store.GetEmmeansList()->at(0); }

}  // namespace

TEST_CASE("means of a top effect stay texts") {
  const Reading reading(
      ResultDocuments().replace("<Coordinates feature=\"statistic\" statistic=\"mean\">",
                                R"(<Coordinates statistic="median"><Array>4</Array></Coordinates>
      <Coordinates feature="frequency" statistic="stdErr"><Array>1 2</Array></Coordinates>
      <Coordinates feature="Statistic" statistic="stdErr"><Array>3 4</Array></Coordinates>
      <Coordinates feature="statistic" statistic="mean">)"));
  REQUIRE(reading.reads);
  const EmmeansEstimData& means = reading.store.GetEmmeansEstimList()->at(0);
  CHECK(means.fvCoordinates.at(0).fFeature == 3);
  CHECK(means.fvCoordinates.at(0).fField == "g");
  CHECK(means.fvCoordinates.at(0).fvValues == Texts{"1", "2"});
  CHECK(means.fMean.fFeature == 2);
  CHECK(means.fMean.fvValues == Texts{"5", "__MISSING__"});
  CHECK(means.fStdErr.fFeature == 4);
  CHECK(means.fStdErr.fvValues == Texts{"3", "4"});
  CHECK(means.fConfIntervalLower.fvValues.empty());
}

TEST_CASE("a group of coordinates ends at the first that fails, which is kept") {
  const Reading reading(ResultDocuments().replace(
      "<Coordinates feature=\"fields\" field=\"g\">",
      R"(<Coordinates field="first"/><Coordinates feature="fields" field="g">)"));
  REQUIRE(reading.reads);
  const EmmeansEstimData& means = reading.store.GetEmmeansEstimList()->at(0);
  REQUIRE(means.fvCoordinates.size() == 1);
  CHECK(means.fvCoordinates[0].fField == "first");
}

TEST_CASE("a block of requested means") {
  const Reading reading((ResultDocuments()));
  REQUIRE(reading.reads);
  const EmmeansData& data = block(reading);
  CHECK(data.fEmmeansIndex == 0);
  CHECK(data.fvLabels.at(0).fFieldName == "x");
  CHECK(number(data.fvLabels.at(0).fValue) == 4.5);
  CHECK(data.fEstimates.fMean.fvValues == Texts{"7"});
  CHECK(data.fContrasts.fAdjustedSigLevel == 0.05);
  CHECK(data.fContrasts.fContrastKind == 2);
  CHECK(data.fContrasts.fvCoordinates.size() == 2);
  CHECK(data.fContrasts.fContrastEstimate.fvValues == Texts{"8"});
  const EmmeansOverallTest& test = data.fvOverallTests.at(0);
  CHECK(test.fTestID == 3);
  CHECK(test.fFields.fvFieldNames == Texts{"s"});
  CHECK(test.fFStatistic == 1);
  CHECK(test.fSig == 2);
  CHECK(test.fDf1 == 3);
  CHECK(test.fDf2 == 4);
  CHECK(data.fvWarningList.at(0).fPattern == "kGLMM_C20");
}

TEST_CASE("what a block of requested means may lack") {
  struct Case {
    const char* from;
    const char* to;
    int32_t index;
    int32_t kind;
    double level;
    int32_t test;
  };
  constexpr char kIndex[] = "name=\"EMMEANSIndex\" value=\"0\"";
  const Case cases[] = {
      {kIndex, "name=\"EMMEANSIndex\" value=\"\"", -1, 2, 0.05, 3},
      {kIndex, "name=\"other\" value=\"5\"", -1, 2, 0.05, 3},
      {"simpleContrast", "SimpleContrast", 0, 3, 0.05, 3},
      {" description=\"simpleContrast\"", "", 0, 3, 0.05, 3},
      {"adjustedSigLevel", "sigLevel", 0, 2, kSystemMissing, 3},
      {"value=\"0.05\"", "value=\"\"", 0, 2, kSystemMissing, 3},
      {" testID=\"3\"", "", 0, 2, 0.05, -1},
  };
  for (const Case& item : cases) {
    CAPTURE(item.to);
    const Reading reading(ResultDocuments().replace(item.from, item.to));
    REQUIRE(reading.reads);
    CHECK(block(reading).fEmmeansIndex == item.index);
    CHECK(block(reading).fContrasts.fContrastKind == item.kind);
    CHECK(block(reading).fContrasts.fAdjustedSigLevel == item.level);
    CHECK(block(reading).fvOverallTests.at(0).fTestID == item.test);
  }
}

TEST_CASE("labels that fail are made up for by a statistic that reads") {
  const std::pair<const char*, const char*> failures[] = {
      {"<PrintableList pattern=\"x\">", "<PrintableList>"},
      {"<PrintableList pattern=\"x\">", "<PrintableList pattern=\"nobody\">"},
      {"<PrintableList pattern=\"4.5\"/>", ""},
      {"<PrintableList pattern=\"4.5\"/>", "<PrintableList/>"},
      {"<PrintableList pattern=\"4.5\"/>", "<PrintableList pattern=\"much\"/>"},
  };
  for (const auto& [from, to] : failures) {
    CAPTURE(from);
    CAPTURE(to);
    ResultDocuments documents;
    documents.replace(from, to);
    {
      const Reading reading(documents);
      REQUIRE(reading.reads);
      CHECK(block(reading).fvLabels.size() == 1);
    }
    documents.replace("<Statistic name=\"EMMEANSIndex\" value=\"0\"/>", "");
    CHECK_FALSE(Reading(documents).reads);
  }
}

TEST_CASE("blocks of means that fail the read") {
  check_changes({
      {"a top effect without data", "<DataGroup description=\"Emmeans\">",
       "<DataGroup description=\"Emmeans\"><x/>", Read::Works},
      {"a top effect of nothing", "<DataGroup", "<DataGroup description=\"Emmeans\"/><DataGroup"},
      {"a table without columns", "<Coordinates statistic=\"mean\"><Array>7</Array></Coordinates>",
       ""},
      {"a column without an array", "<Array>7</Array>", ""},
      {"a statistic without a name", "<Statistic name=\"EMMEANSIndex\" value", "<Statistic value"},
      {"a statistic without a value", "name=\"EMMEANSIndex\" value=\"0\"", "name=\"EMMEANSIndex\""},
      {"a table without a description", "<MultivariateData description=\"estimates\">",
       "<MultivariateData>"},
      {"a table of another description", "\"estimates\"", "\"others\"", Read::Works},
      {"a test without an F test", "<FTest", "<F"},
      {"a test without a number", " df2=\"4\"", ""},
      {"a test of a continuous field", "fieldName=\"s\" fieldValue=\"b\"",
       "fieldName=\"x\" fieldValue=\"1\""},
      {"a message without a list", "<PrintableList pattern=\"kGLMM_C20\"/>", ""},
  });
}
