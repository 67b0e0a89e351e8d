// What a table does when its data are not as it needs them, and the limits at which it changes.
#include <doctest/doctest.h>
#include <string>

#include "tests/backend/table_run.h"

using namespace hierfit;
using namespace hierfit::test;

namespace {

void replace(std::string& text, const std::string& from, const std::string& to) {
  const std::size_t position = text.find(from);
  REQUIRE_MESSAGE(position != std::string::npos, "the text lacks ", from);
  text.replace(position, from.size(), to);
}

DocumentFiles changed(const std::string& name, const std::string& from, const std::string& to) {
  DocumentFiles files = document_files(name);
  replace(files.result, from, to);
  return files;
}

std::string caption(const TableRun& run, const std::string& subtype) {
  const output::Table* table = run.table(subtype);
  REQUIRE(table != nullptr);
  return table->caption ? table->caption->shown : "";
}

constexpr char kFirstMatrix[] = R"(<Matrix nbRows="2" kind="symmetric"><Array>4 1 2</Array>)";

}  // namespace

TEST_CASE("a table that cannot rely on its data stays away, alone") {
  struct Case {
    std::string what;
    const char* document;
    const char* from;
    const char* to;
    const char* part;  ///< of the outline
    const char* left;  ///< of that part
  };
  const Case cases[] = {
      {"a repeated measure with fewer records than the target", "grouped",
       R"(field="visit"><Array>1 2)", R"(field="visit"><Array>1)", "DataStructure ", ""},
      {"fewer labels than categories", "nominal", R"(<Label label="3"/>)", "", "Classification ",
       ""},
      {"three categories of events", "events", R"(nbRows="2"><Array>7 1 0 8)",
       R"(nbRows="3"><Array>7 1 0 8 0 0 0 0 0)", "Classification ", ""},
      {"fewer tests than effects", "nominal", R"(description="fixedEffect")",
       R"(description="other")", "FixedEffects ", ""},
      {"no effects and no intercept", "intercept_only", R"(name="Intercept" value="true")",
       R"(name="Intercept" value="false")", "FixedEffects ", ""},
      {"two sets of coefficients of one target", "events", R"(parameterType="repeated")",
       R"(parameterType="fixed")",
       "FixedCoefficients [RandomEffects] [CovarianceParametersSummary "
       "ResidualEffect",
       "[RandomEffects] [CovarianceParametersSummary"},
      {"a matrix of fewer rows than labels", "grouped", kFirstMatrix,
       R"(<Matrix nbRows="1"><Array>4</Array>)", "[RandomEffects]", "[]"},
      {"a matrix of no category of a nominal target", "nominal",
       R"(<SegmentInfo><FieldInfo fieldName="choice" fieldValue="1"/></SegmentInfo><Matrix)",
       "<SegmentInfo/><Matrix", "[RandomEffects]", "[]"},
      {"no residual estimates", "intercept_only", R"(parameterType="repeated")",
       R"(parameterType="other")", " ResidualEffect", ""},
      {"estimates of a block that the model lacks", "ordinal", R"(block="1")", R"(block="7")",
       "CovarianceParameters CovarianceParameters", "CovarianceParameters"},
      {"two sets of a block without groups", "events", R"(parameterType="repeated")",
       R"(parameterType="random")", " ResidualEffect CovarianceParameters", ""},
      {"a column of means that is too short", "grouped", "<Array>10 11 __MISSING__</Array>",
       "<Array>10 11</Array>", "[Estimates Contrasts", "[Contrasts"},
      {"a column of contrasts that is too short", "grouped", "<Array>-0.5 __MISSING__</Array>",
       "<Array>-0.5</Array>", "Contrasts ", ""},
      {"a kind of contrast that nobody knows", "events", "deviationContrast", "otherContrast",
       "Contrasts ", ""},
      {"a compare factor that nobody knows", "events", R"(name="CompareFactor" value="site")",
       R"(name="CompareFactor" value="nobody")", "Contrasts ", ""},
      {"a test with a field too many", "events", "<ModelTestStats testID=\"0\"><SegmentInfo>",
       R"(<ModelTestStats testID="0"><SegmentInfo><FieldInfo fieldName="sex" fieldValue="f"/>)",
       " OverallTestResults", ""},
      {"a test with fewer fields than the first", "grouped",
       R"(<ModelTestStats testID="1"><SegmentInfo><FieldInfo fieldName="sex" fieldValue="m"/>)",
       R"(<ModelTestStats testID="1"><SegmentInfo>)", "Contrasts OverallTestResults", "Contrasts"},
      {"a test of the compare factor", "grouped",
       R"(<ModelTestStats testID="0"><SegmentInfo><FieldInfo fieldName="sex" fieldValue="f"/>)",
       R"(<ModelTestStats testID="0"><SegmentInfo><FieldInfo fieldName="site" fieldValue="1"/>)",
       "Contrasts OverallTestResults", "Contrasts"},
      {"means of a request that was not made", "grouped", R"(name="EMMEANSIndex" value="2")",
       R"(name="EMMEANSIndex" value="2147483647")", " [Estimates]", ""},
      {"estimates that do not read, with a message that says why", "grouped",
       R"(isRedundant="false")", "",
       "FixedCoefficients [RandomEffects] [CovarianceParametersSummary ResidualEffect "
       "CovarianceParameters]",
       "[RandomEffects] [CovarianceParametersSummary]"},
  };
  for (const Case& item : cases) {
    CAPTURE(item.what);
    std::string expected = run(document_files(item.document), "C").outline();
    replace(expected, item.part, item.left);
    CHECK(run(changed(item.document, item.from, item.to), "C").outline() == expected);
  }
}

TEST_CASE("rows of covariances by warning and distribution") {
  struct Case {
    std::string distribution;
    std::string warning;
    const char* residual;
    const char* random;
    const char* random_test;
  };
  const Case cases[] = {
      {"BINOMIAL", "C9", "1.000", "0.000", "(none)"}, {"POISSON", "C9", "1.000", "0.000", "(none)"},
      {"NEGBIN", "C9", "1.000", "0.000", "(none)"},   {"ORDINAL", "C9", "5.000", "0.500", "2.000"},
      {"NORMAL", "C9", "5.000", "0.500", "2.000"},    {"NORMAL", "C8", "5.000", "0.000", "(none)"},
      {"IGAUSS", "C8", "5.000", "0.000", "(none)"},   {"BINOMIAL", "C8", "5.000", "0.500", "2.000"},
      {"OTHER", "C8", "5.000", "0.500", "2.000"},
  };
  for (const Case& item : cases) {
    CAPTURE(item.distribution);
    CAPTURE(item.warning);
    DocumentFiles files = changed("events", "\"BINOMIAL\"", '"' + item.distribution + '"');
    replace(files.result, "\"kGLMM_C9\"", "\"kGLMM_" + item.warning + '"');
    replace(files.result, "\"kGLMM_C8\"", "\"none\"");
    if (item.warning == "C8") replace(files.result, "\"none\"", "\"kGLMM_C8\"");
    const TableRun left = run(files, "C");
    CHECK(left.cell("ResidualEffect", {"Variance ", "Estimate"}) == item.residual);
    CHECK(left.cell("CovarianceParameters", {"VarOfEffect", "Estimate"}) == item.random);
    CHECK(left.cell("CovarianceParameters", {"VarOfEffect", "Z"}) == item.random_test);
  }
}

TEST_CASE("captions that depend on a number") {
  SUBCASE("from the eleventh record on") {
    CHECK(caption(run(document_files("events"), "en"), "DataStructure") != "");
    CHECK(caption(run(changed("events", R"(totalFreq="11")", R"(totalFreq="10")"), "en"),
                  "DataStructure") == "");
  }
  SUBCASE("from the twentieth block on") {
    CHECK(caption(run(document_files("events"), "C"), "GrandMeans") == "kGLMM_C24");
    CHECK(caption(run(changed("events", R"(<DataGroup description="customEmmeans">)",
                              R"(<DataGroup description="other">)"),
                      "C"),
                  "GrandMeans") == "");
    CHECK(caption(run(changed("events", "kGLMM_C24", "kGLMM_C23"), "C"), "GrandMeans") == "");
  }
}

TEST_CASE("a label of more than 255 characters is joined from pieces") {
  struct Case {
    std::string label;
    const char* line;  ///< what the journal has of it
  };
  const std::string wide = "\u00e9";
  std::string many;
  for (int i = 0; i < 255; ++i)
    many += wide;
  const Case cases[] = {
      {std::string(255, 'a'), "a\",\"key\":false}],\"result\""},
      {std::string(256, 'a'), "a\",\"key\":false},{\"string\":\"a\",\"key\":false}]}]}"},
      {many, "\u00e9\",\"key\":false}],\"result\""},
      {many + wide, "\u00e9\",\"key\":false},{\"string\":\"\u00e9\",\"key\":false}]}]}"},
  };
  for (const Case& item : cases) {
    CAPTURE(item.label.size());
    const TableRun left =
        run(changed("events", R"(paramLabel="site=1")", "paramLabel=\"" + item.label + '"'), "C");
    CHECK(left.journal.find(item.line) != std::string::npos);
    CHECK(left.cell("FixedCoefficients", {item.label, "Coefficient"}) == "-0.250");
  }
}

TEST_CASE("a nominal target is noted without its trials, and its link is a key") {
  DocumentFiles files = changed("nominal", R"(<Parameter name="UseTrials" value="false"/>)",
                                R"(<Parameter name="UseTrials" value="true"/>)");
  const TableRun left = run(files, "C");
  const output::Table* table = left.table("FixedCoefficients");
  REQUIRE(table != nullptr);
  CHECK(table->notes.at(table->table_notes.at(0)).shown == "Target Chosen product");
  CHECK(left.journal.find(R"({"string":"Generalized logit","key":true})") != std::string::npos);
}
