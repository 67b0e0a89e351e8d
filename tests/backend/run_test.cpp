// The procedure's contract, and the road through the documents: what fails a read, and what it
// leaves.
#include <doctest/doctest.h>

#include "tests/backend/result_documents.h"

using namespace hierfit;
using namespace hierfit::test;

using Texts = std::vector<std::string>;

TEST_CASE("the procedure takes one text of each kind and no summary") {
  const ResultDocuments documents;
  const StatXMLBlock block{documents.result};
  Reading reading(documents);
  HFITProcCustom procedure;
  CHECK(procedure.IsReady());
  CHECK_FALSE(procedure.GenerateOutput({}, {block}, ""));
  CHECK_FALSE(procedure.GenerateOutput({documents.model, documents.model}, {block}, ""));
  CHECK_FALSE(procedure.GenerateOutput({documents.model}, {}, ""));
  CHECK_FALSE(procedure.GenerateOutput({documents.model}, {block, block}, ""));
  CHECK_FALSE(procedure.GenerateOutput({documents.model}, {block}, "summary"));
}

TEST_CASE("the base documents read, once a reader") {
  Reading reading((ResultDocuments()));
  CHECK(reading.reads);
  CHECK(reading.store.GetWarningList()->size() == 1);
  CHECK(reading.reader.ReadDocuments());
  CHECK(reading.store.GetWarningList()->size() == 1);
  CHECK(reading.messages() == 0);
}

TEST_CASE("a failed read has one message, an empty text or a bad model none") {
  SUBCASE("no XML") {
    ResultDocuments documents;
    documents.result = "no XML";
    Reading reading(documents);
    CHECK_FALSE(reading.reads);
    CHECK(reading.store.GetBuildSettings() != nullptr);
    CHECK(reading.messages() == 1);
  }
  SUBCASE("an empty text") {
    ResultDocuments documents;
    documents.result.clear();
    Reading reading(documents);
    CHECK_FALSE(reading.reads);
    CHECK(reading.store.GetBuildSettings() == nullptr);
    CHECK(reading.messages() == 0);
  }
  SUBCASE("a model that the reader alone is given") {
    Reading reading((ResultDocuments()));
    HFITParseOutXML reader(nullptr, nullptr, &reading.store, "<PMML/>", "");
    CHECK_FALSE(reader.ReadPMML("<PMML/>"));
    CHECK(reading.messages() == 0);
  }
}

TEST_CASE("what the skeleton of a result must have") {
  check_changes({
      {"no summary", "<PredictiveSummary", "<Other"},
      {"another algorithm", "\"GLMM\"", "\"GLM\""},
      {"no algorithm", "algorithmName", "name"},
      {"settings without a parameter", "<BuildSettings>", "<BuildSettings/><BuildSettings>"},
      {"an empty model first", "<PMMLModel>", "<PMMLModel/><PMMLModel>"},
      {"no training summary", "<TrainingSummary>", "", Read::Fails, "</TrainingSummary>"},
      {"structured data without description", "<StructuredData",
       "<StructuredData/><StructuredData"},
      {"structured data of another description", "<StructuredData",
       "<StructuredData description=\"x\"/><StructuredData", Read::Works},
      {"data groups of no description and another", "<DataGroup",
       "<DataGroup description=\"x\"/><DataGroup/><DataGroup", Read::Works},
      {"elements that nobody knows", "<TrainingSummary>",
       "<New><Statistic/></New><TrainingSummary>", Read::Works},
  });
}

TEST_CASE("only the first matrix is looked at") {
  const Reading two(ResultDocuments().insert_before(
      "<DataGroup", R"(<Matrix description="classificationTable" nbRows="1"/>)"));
  CHECK(two.reads);
  CHECK(two.store.GetClassifMatrixData()->fNbRows == 2);
}

TEST_CASE("another matrix ahead leaves no classification") {
  const Reading reading(ResultDocuments().replace("<Matrix desc", "<Matrix/><Matrix desc"));
  CHECK(reading.reads);
  CHECK(reading.store.GetClassifMatrixData() == nullptr);
}

TEST_CASE("parts that a document may lack leave null records") {
  const Reading reading(ResultDocuments().replace_range("<StructuredData", "</ModelDiagnostics>",
                                                        "</ModelDiagnostics>"));
  CHECK(reading.reads);
  CHECK(reading.store.GetStructuredData() == nullptr);
  CHECK(reading.store.GetClassifMatrixData() == nullptr);
  CHECK(reading.store.GetEffectStatData() == nullptr);
  CHECK(reading.store.GetEmmeansEstimList() == nullptr);
  CHECK(reading.store.GetEmmeansList() == nullptr);
}

TEST_CASE("estimates or messages, one of them must be there") {
  constexpr char kEstimates[] = "<ParameterEstimates";
  constexpr char kEndEstimates[] = "</ParameterEstimates>";
  SUBCASE("messages alone") {
    const Reading reading(ResultDocuments().replace_range(kEstimates, kEndEstimates, ""));
    CHECK(reading.reads);
    CHECK(reading.store.GetParamCollect() == nullptr);
    CHECK(reading.store.HasWarning("kGLMM_C8"));
  }
  SUBCASE("estimates that fail, with messages") {
    const Reading reading(ResultDocuments().replace(" isRedundant=\"true\"", ""));
    CHECK(reading.reads);
    CHECK(reading.store.GetParamCollect() == nullptr);
  }
  SUBCASE("estimates alone") {
    const Reading reading(ResultDocuments().replace_range(
        "<Message><PrintableList pattern=\"kGLMM_C8", "</Message>", ""));
    CHECK(reading.reads);
    CHECK(reading.store.GetWarningList()->empty());
    CHECK_FALSE(reading.store.HasWarning("kGLMM_C8"));
  }
  SUBCASE("estimates that fail, without messages") {
    const Reading reading(
        ResultDocuments()
            .replace(" isRedundant=\"true\"", "")
            .replace_range("<Message><PrintableList pattern=\"kGLMM_C8", "</Message>", ""));
    CHECK_FALSE(reading.reads);
  }
}

TEST_CASE("messages: what is appended, and when the walk ends") {
  struct Case {
    const char* what;
    const char* messages;
    bool reads;
    Texts patterns;
    Texts parameters;  ///< of the last message
  };
  const Case cases[] = {
      {"empty values are left out",
       R"(<Message><PrintableList pattern="a"><PrintableValue value="1"/><PrintableValue value=""/>
          <PrintableValue value="2"/></PrintableList></Message>)",
       true,
       {"a"},
       {"1", "2"}},
      {"a key that is empty drops its message",
       R"(<Message><PrintableList pattern=""/></Message><Message><PrintableList pattern="b"/></Message>)",
       true,
       {"b"},
       {}},
      {"a value that is absent in the middle is passed over",
       R"(<Message><PrintableList pattern="a"><PrintableValue/><PrintableValue value="2"/>
          </PrintableList></Message>)",
       true,
       {"a"},
       {"2"}},
      {"a value that is absent at the end fails behind its message",
       R"(<Message><PrintableList pattern="a"><PrintableValue value="1"/><PrintableValue/>
          </PrintableList></Message><Message><PrintableList pattern="b"/></Message>)",
       false,
       {"a"},
       {"1"}},
      {"no list", R"(<Message><PrintableList pattern="a"/></Message><Message/>)", false, {"a"}, {}},
      {"no key", R"(<Message><PrintableList/></Message>)", false, {}, {}},
  };
  for (const Case& item : cases) {
    CAPTURE(item.what);
    const Reading reading(ResultDocuments().replace_range(
        "<Message><PrintableList pattern=\"kGLMM_C8", "</Message>", item.messages));
    CHECK(reading.reads == item.reads);
    Texts patterns;
    for (const WarningData& warning : *reading.store.GetWarningList()) {
      patterns.push_back(warning.fPattern);
    }
    CHECK(patterns == item.patterns);
    if (patterns.empty()) continue;
    CHECK(reading.store.GetWarningList()->back().fWarningParameters == item.parameters);
  }
}

TEST_CASE("the map of the variables") {
  const Reading reading((ResultDocuments()));
  // Fields y n x g s t extra; variables y x g n s t.
  const VarMapInfo& map = *reading.store.GetVarMapInfo();
  CHECK(map.fvFieldToVar == std::vector<int32_t>{0, 3, 1, 2, 4, 5, -1});
  CHECK(map.fvVarToField == std::vector<int32_t>{0, 2, 3, 1, 4, 5});
  CHECK(map.fvIsCategorical == std::vector<bool>{false, false, true, false, true, true});
  CHECK(map.fvLevelCounts == std::vector<int32_t>{0, 0, 3, 0, 2, 2});
}

TEST_CASE("the store before and between reads") {
  Reading reading((ResultDocuments()));
  HFITOutputStats store;
  CHECK(store.GetVarMapInfo() != nullptr);
  CHECK(store.GetWarningList() != nullptr);
  CHECK(store.GetBuildSettings() == nullptr);
  store.NewBuildSettings()->fTargetField = "first";
  CHECK(store.NewBuildSettings()->fTargetField.empty());

  // A further run keeps the messages and the means, and replaces the rest.
  ResultDocuments documents;
  HFITParseOutXML further(nullptr, reading.data_source(), &reading.store, documents.model,
                          documents.result);
  CHECK(further.ReadDocuments());
  CHECK(reading.store.GetWarningList()->size() == 2);
  CHECK(reading.store.GetEmmeansList()->size() == 2);
  CHECK(reading.store.GetEmmeansEstimList()->size() == 2);
  CHECK(reading.store.GetParamCollect()->fvFixedParamEstim.size() == 1);
}

TEST_CASE("a text of deep or hostile form fails the read and no more") {
  std::string deep;
  for (int i = 0; i < 2000; ++i) {
    deep += "<PrintableList>";
  }
  ResultDocuments documents;
  documents.replace_range("<PrintableList pattern=\"P0\"", "/>", deep);
  Reading reading(documents);
  CHECK_FALSE(reading.reads);
  CHECK(reading.messages() == 1);
}
