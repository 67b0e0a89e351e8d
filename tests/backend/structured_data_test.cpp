// Records of the first subject, matrices and covariances as they stand in the store.
#include <doctest/doctest.h>

#include "tests/backend/result_documents.h"

using namespace hierfit;
using namespace hierfit::test;

namespace {

using Numbers = std::vector<double>;
using Texts = std::vector<std::string>;

/// The base documents with another classification matrix.
ResultDocuments matrix(const std::string& attributes, const std::string& items) {
  return ResultDocuments().replace_range("<Matrix description", "</Matrix>",
                                         "<Matrix description=\"classificationTable\" " +
                                             attributes + "><Array>" + items + "</Array></Matrix>");
}

}  // namespace

TEST_CASE("the records of the first subject") {
  const Reading reading((ResultDocuments()));
  REQUIRE(reading.reads);
  const StructuredData& data = reading.structured();
  CHECK(data.fTotalFreq == 25);
  CHECK(data.fSubjects.fvFieldNames == Texts{"s"});
  CHECK(data.fSubjects.fvVarIndices == std::vector<int32_t>{4});
  CHECK(data.fSubjects.fvLevelCounts == std::vector<int32_t>{2});
  CHECK(texts(data.fSubjects.fSubjectValues) == Texts{"a"});
  REQUIRE(data.fvRepeatMeasVars.size() == 1);
  CHECK(data.fvRepeatMeasVars[0].fRepMeasInd == 5);
  CHECK(data.fvRepeatMeasVars[0].fLevelCount == 2);
  CHECK(number(data.fvRepeatMeasVars[0].fvValues.at(1)) == 2);
  CHECK(number(data.fvTargetValues.at(0)) == 1.5);
  CHECK(data.fvTrialsValues.empty());
}

TEST_CASE("trials are kept beside the target, other fields are dropped") {
  const Reading reading(
      ResultDocuments()
          .insert_before("</BuildSettings>", R"(<Parameter name="TrialsField" value="n"/>)")
          .insert_before("<Coordinates field=\"y\">",
                         R"(<Coordinates field="n"><Array>7 8</Array></Coordinates>
                         <Coordinates field="nobody"><Array>9</Array></Coordinates>)"));
  REQUIRE(reading.reads);
  CHECK(texts(reading.structured().fvTrialsValues) == Texts{"7", "8"});
  CHECK(texts(reading.structured().fvTargetValues) == Texts{"1.5", "2.5"});
}

TEST_CASE("a second element of records appends, and counts anew") {
  const Reading reading(ResultDocuments().insert_before(
      "<StructuredData description=\"r",
      R"(<StructuredData description="firstSubjectRecordsForDataStructure">
      <Counts totalFreq="2"/><SegmentData><SegmentInfo/><MultivariateData>
      <CoordinatesGroup description="target"><Coordinates field="y"><Array>9</Array></Coordinates>
      </CoordinatesGroup></MultivariateData></SegmentData></StructuredData>)"));
  REQUIRE(reading.reads);
  CHECK(reading.structured().fTotalFreq == 2);
  CHECK(texts(reading.structured().fvTargetValues) == Texts{"1.5", "2.5", "9"});
  CHECK(reading.structured().fSubjects.fvFieldNames == Texts{"s"});
}

TEST_CASE("a continuous repeated measures field has no levels") {
  const Reading reading(ResultDocuments().replace("field=\"t\"", "field=\"x\""));
  REQUIRE(reading.reads);
  CHECK(reading.structured().fvRepeatMeasVars.at(0).fLevelCount == 0);
}

TEST_CASE("records that fail the read") {
  check_changes({
      {"counts without a frequency", " totalFreq=\"25\"", ""},
      {"no segment", "<SegmentInfo><FieldInfo fieldName=\"s\" fieldValue=\"a\"/></SegmentInfo>",
       ""},
      {"no records", "<MultivariateData>", "", Read::Fails, "</MultivariateData>"},
      {"records without groups", "<MultivariateData>", "<MultivariateData/>", Read::Works,
       "</MultivariateData>"},
      {"a group of another kind", "\"repeatedMeasures\"", "\"repeated\""},
      {"a group without coordinates", "<Coordinates field=\"y\">", "", Read::Fails,
       "</Coordinates>"},
      {"coordinates without a field", "<Coordinates field=\"y\">", "<Coordinates>"},
      {"coordinates without an array", "<Array>1 2</Array>", ""},
      {"a value that is none of its field", "<Array>1 2</Array>", "<Array>1 two</Array>"},
      {"a target value that is none", "<Array>1.5 2.5</Array>", "<Array>1.5 x</Array>"},
      {"a repeated field of no model", "field=\"t\"", "field=\"extra\""},
      {"an unknown repeated field", "field=\"t\"", "field=\"nobody\""},
      {"a continuous subject", "fieldName=\"s\" fieldValue=\"a\"",
       "fieldName=\"x\" fieldValue=\"1\""},
      {"a subject of no model", "fieldName=\"s\" fieldValue=\"a\"",
       "fieldName=\"extra\" fieldValue=\"1\""},
      {"an unknown subject", "fieldName=\"s\"", "fieldName=\"nobody\""},
      {"a subject without a value", " fieldValue=\"a\"", ""},
  });
}

TEST_CASE("matrices are unpacked into full rows with their totals") {
  struct Case {
    const char* attributes;
    const char* items;
    std::vector<Numbers> rows;
    Numbers totals;
  };
  const Case cases[] = {
      {R"(nbRows="3" kind="diagonal")", "1 2 3", {{1, 0, 0}, {0, 2, 0}, {0, 0, 3}}, {1, 2, 3}},
      {R"(nbRows="2" kind="symmetric")", "1 2 3", {{1, 2}, {2, 3}}, {3, 5}},
      {R"(nbRows="3" kind="symmetric")",
       "1 2 3 4 5 6",
       {{1, 2, 4}, {2, 3, 5}, {4, 5, 6}},
       {7, 10, 15}},
      {R"(nbRows="2" nbCols="2")", "1 2 3 4", {{1, 2}, {3, 4}}, {3, 7}},
      {R"(nbRows="2" kind="Diagonal" nbCols="")", "1 2 3 4", {{1, 2}, {3, 4}}, {3, 7}},
      {R"(nbRows="2" nbCols="1")", "1 2", {{1, 0}, {2, 0}}, {1, 2}},
      {R"(nbRows="1")", "__MISSING__", {{kSystemMissing}}, {kSystemMissing}},
      {R"(nbRows="0")", "", {}, {}},
      {R"(nbRows="0" nbCols="4")", "", {}, {}},
  };
  for (const Case& item : cases) {
    CAPTURE(item.attributes);
    const Reading reading(matrix(item.attributes, item.items));
    REQUIRE(reading.reads);
    const ClassifMatrixData& data = *reading.store.GetClassifMatrixData();
    std::vector<Numbers> rows;
    Numbers totals;
    for (const MatrixRowData& row : data.fvRows) {
      rows.push_back(row.fvValues);
      totals.push_back(row.fRowTotal);
    }
    CHECK(data.fNbRows == static_cast<int32_t>(rows.size()));
    CHECK(rows == item.rows);
    CHECK(totals == item.totals);
  }
}

TEST_CASE("matrices that do not fit their shape, or are too large to unpack") {
  std::string many;
  for (int i = 0; i < 5000; ++i) {
    many += "1 ";
  }
  const std::pair<std::string, std::string> cases[] = {
      {R"(nbCols="2")", "1 2 3 4"},
      {R"(nbRows="2" kind="symmetric")", "1 2 3 4"},
      {R"(nbRows="2" kind="diagonal")", "1 2 3"},
      {R"(nbRows="2")", "1 2 3"},
      {R"(nbRows="1" nbCols="2")", "1 2"},
      {R"(nbRows="-1")", "1"},
      {R"(nbRows="-2" nbCols="-2")", "1 2 3 4"},
      {R"(nbRows="0")", "1"},
      {R"(nbRows="2147483647")", "1"},
      {R"(nbRows="65536" nbCols="65536")", ""},
      {R"(nbRows="5000" kind="diagonal")", many},
  };
  for (const auto& [attributes, items] : cases) {
    CAPTURE(attributes);
    CHECK_FALSE(Reading(matrix(attributes, items)).reads);
  }
}

TEST_CASE("labels of the classification are values of the target, but for trials") {
  constexpr char kLabels[] = "<Label label=\"1\"/>";
  SUBCASE("a text that is no value is kept as a text") {
    const Reading reading(ResultDocuments().replace(kLabels, "<Label label=\"one\"/>"));
    REQUIRE(reading.reads);
    const std::vector<CFStatVariableValue>& labels =
        reading.store.GetClassifMatrixData()->fvRowColLabels;
    CHECK(texts(labels) == Texts{"one", "2"});
    CHECK(labels[0].GetObsValue() == nullptr);
    CHECK(number(labels[1]) == 2);
  }
  SUBCASE("with trials they are not looked at") {
    const Reading reading(
        ResultDocuments()
            .replace(kLabels, "<Label/>")
            .insert_before("</BuildSettings>", R"(<Parameter name="UseTrials" value="true"/>)"));
    REQUIRE(reading.reads);
    CHECK(reading.store.GetClassifMatrixData()->fvRowColLabels.empty());
  }
  SUBCASE("failures") {
    check_changes({
        {"a label without a text", kLabels, "<Label/>"},
        {"no label", "<MatrixLabels><RowColLabels>\n   <Label",
         "<MatrixLabels><RowColLabels/></MatrixLabels>", Read::Fails, "</MatrixLabels>"},
        {"no array", "<Array>1 2 3 4</Array>", ""},
    });
  }
}

TEST_CASE("covariances of a random block") {
  const Reading reading(
      ResultDocuments()
          .replace("name=\"block\" value=\"0\"", "name=\"block\"")
          .insert_before("<Label><PrintableList pattern=\"P1\"",
                         R"(<Label/><Label><PrintableList pattern="lost" mapId="0"/></Label>)")
          .replace("<Array>1 2 3</Array></Matrix></SegmentData>",
                   R"(<Array>1 2 3</Array></Matrix></SegmentData><SegmentData><SegmentInfo>
                   <FieldInfo fieldName="g" fieldValue="2"/></SegmentInfo>
                   <Matrix nbRows="1"><Array>9</Array></Matrix></SegmentData>)"));
  REQUIRE(reading.reads);
  const RandEffCovarsData& block = reading.structured().fvRandEffCovars.at(0);
  CHECK(block.fStatName == "block");
  CHECK(block.fStatValue == kSystemMissing);
  CHECK(block.fvEffectLabels == Texts{"Intercept", "", "x"});
  REQUIRE(block.fSimpleSubjects.size() == 2);
  CHECK(block.fSimpleSubjects[0].fvFieldNames.empty());
  CHECK(block.fSimpleSubjects[1].fvFieldNames == Texts{"g"});
  CHECK(block.fMatrixValues.at(0).fvRows.at(0).fvValues == Numbers{1, 2});
  CHECK(block.fMatrixValues.at(1).fvRows.at(0).fvValues == Numbers{9});
}

TEST_CASE("covariances that fail the read") {
  check_changes({
      {"no statistic", "<Statistic name=\"block\" value=\"0\"/>", ""},
      {"a statistic without a name", "<Statistic name=\"block\"", "<Statistic"},
      {"no label", "<RowColLabels>\n   <Label><Pr", "<RowColLabels/>", Read::Fails,
       "</RowColLabels>"},
      {"a last label without a list", "<PrintableList pattern=\"P1\" mapId=\"0\"/>", ""},
      {"a last label whose list does not read", "<PrintableList pattern=\"P1\" mapId=\"0\"/>",
       "<PrintableList><PrintableValue/></PrintableList>"},
      {"no segment", "<SegmentData><SegmentInfo/>", "", Read::Fails, "</SegmentData>"},
      {"a segment without info", "<SegmentData><SegmentInfo/>", "<SegmentData>"},
      {"a segment without a matrix", "<Matrix nbRows=\"2\" kind=\"symmetric\">", "", Read::Fails,
       "</Matrix>"},
      {"a matrix that fails", "<Array>1 2 3</Array>", "<Array>1 2</Array>"},
  });
}

TEST_CASE("what a document unpacks to stays in proportion to its text") {
  // A diagonal of 4,000 numbers is nearly as many slots as one matrix may have.
  constexpr int kRows = 4000;
  const auto diagonals = [](int count) {
    std::string matrix =
        "<SegmentData><SegmentInfo/><Matrix nbRows=\"4000\" kind=\"diagonal\"><Array>";
    for (int i = 0; i < kRows; ++i) {
      matrix += "1 ";
    }
    matrix += "</Array></Matrix></SegmentData>";
    std::string matrices;
    for (int i = 0; i < count; ++i) {
      matrices += matrix;
    }
    return ResultDocuments().insert_before("<SegmentData><SegmentInfo/>", matrices);
  };
  SUBCASE("small matrices of many rows") {
    CHECK(Reading(diagonals(1)).reads);
    CHECK_FALSE(Reading(diagonals(2)).reads);
  }
  SUBCASE("long labels on top of them") {
    ResultDocuments documents = diagonals(1);
    std::string labels;
    for (int i = 0; i < 8; ++i) {
      labels += R"(<Label><PrintableList pattern="P1" mapId="0"/></Label>)";
    }
    documents.insert_before("<Label><PrintableList pattern=\"P1\"", labels);
    CHECK(Reading(documents).reads);
    documents.replace("<Covariate field=\"x\" power=\"1\"/>",
                      "<Covariate field=\"" + std::string(2'000, 'x') + "\" power=\"9999\"/>");
    CHECK_FALSE(Reading(documents).reads);
  }
  SUBCASE("long labels of estimates") {
    ResultDocuments documents;
    documents.replace("<Covariate field=\"x\" power=\"1\"/>",
                      "<Covariate field=\"" + std::string(200, 'x') + "\" power=\"9999\"/>");
    std::string labels;
    for (int i = 0; i < 100; ++i) {
      labels += R"(<PrintableList pattern="P1" mapId="0"/>)";
    }
    documents.insert_before("<Statistic name=\"fixedEffectIndex\"",
                            "<PrintableList>" + labels + "</PrintableList>");
    CHECK(Reading(documents).store.GetParamCollect() != nullptr);
    documents.insert_before("<PrintableList pattern=\"P1\" mapId=\"0\"/><PrintableList", labels);
    CHECK(Reading(documents).store.GetParamCollect() == nullptr);
  }
  SUBCASE("a longer text may hold more") {
    ResultDocuments documents = diagonals(2);
    documents.insert_before("<BuildSettings>", "<!--" + std::string(8'000'000, ' ') + "-->");
    CHECK(Reading(documents).reads);
  }
}
