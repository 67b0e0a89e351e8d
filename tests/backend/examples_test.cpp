// The examples read, and the store holds the numbers that their facts state.
#include <doctest/doctest.h>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/backend/result_documents.h"

using namespace hierfit;
using namespace hierfit::test;

namespace {

std::string file_text(const std::string& path) {
  std::ifstream file(std::string(HIERFIT_SOURCE_DIR "/examples/") + path);
  REQUIRE(file.good());
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

/// A fact as a number: null is missing. Facts have fifteen digits.
doctest::Approx fact(const nlohmann::json& value) {
  return doctest::Approx(value.is_null() ? kSystemMissing : value.get<double>()).epsilon(1e-12);
}

}  // namespace

TEST_CASE("examples") {
  for (const std::string example : {"sleepstudy", "cbpp", "salamanders"}) {
    CAPTURE(example);
    ResultDocuments documents;
    documents.model = file_text(example + "/model.pmml");
    documents.result = file_text(example + "/result.xml");
    const nlohmann::json facts = nlohmann::json::parse(file_text(example + "/facts.json"));
    Reading reading(documents);
    REQUIRE(reading.reads);

    CHECK(reading.settings().fTargetField == facts["target"]);
    CHECK(reading.settings().fDistributionText == facts["distribution"]);
    CHECK(reading.diagnostics().fAICC == fact(facts["statistics"]["AICC"]));
    CHECK(reading.diagnostics().fGrandMean == fact(facts["statistics"]["grandMean"]));

    const EffectStatData& tests = *reading.store.GetEffectStatData();
    CHECK(tests.fCorrectedModel.fSig == fact(facts["fixedEffects"][0]["sig"]));
    CHECK(tests.fvFixedEffectTests.size() + 1 == facts["fixedEffects"].size());

    const nlohmann::json& rows = facts["fixedCoefficients"][0]["rows"];
    const std::vector<ParamStatData>& coefficients =
        reading.estimates().fvFixedParamEstim.at(0).fvParamStats;
    REQUIRE(coefficients.size() == rows.size());
    for (std::size_t row = 0; row < rows.size(); ++row) {
      CAPTURE(row);
      CHECK(coefficients[row].fEstimate == fact(rows[row]["estimate"]));
      CHECK(coefficients[row].fStdError == fact(rows[row]["stdError"]));
      CHECK(coefficients[row].fExpCIUpper == fact(rows[row]["expUpper"]));
      CHECK(coefficients[row].fIsRedundant == rows[row]["redundant"]);
    }

    const nlohmann::json& covariances = facts["randomEffectCovariances"][0];
    const RandEffCovarsData& block = reading.structured().fvRandEffCovars.at(0);
    CHECK(block.fvEffectLabels == covariances["labels"].get<std::vector<std::string>>());
    CHECK(block.fMatrixValues.at(0).fvRows.back().fvValues.back() ==
          fact(covariances["groups"][0]["matrix"].back().back()));
  }
}
