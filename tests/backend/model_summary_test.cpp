// The Model Summary table, as the host calls that make it.
#include <algorithm>
#include <doctest/doctest.h>
#include <nlohmann/json.hpp>
#include <sstream>

#include "backend/hierfit/tables/HFITOutput.h"
#include "tests/backend/result_documents.h"

using namespace hierfit;
using namespace hierfit::test;

namespace {

using Texts = std::vector<std::string>;

/// A text of the journal in short: a key or text, a variable, a pattern with its arguments, or a
/// number with its format.
std::string short_text(const nlohmann::json& text) {
  if (!text.is_object()) return text.dump();
  if (text.contains("string")) return text["string"];
  if (text.contains("variable")) return "<" + text["variable"].get<std::string>() + ">";
  if (text.contains("number")) {
    return text["format"].get<std::string>() + " " + text["number"].dump();
  }
  return text["composite"].get<std::string>() + " " + short_text(text["args"].at(0));
}

/// The calls of the summary in short, for the base documents with further parameters.
Texts summary_calls(const std::string& parameters) {
  Reading reading(ResultDocuments().insert_before("</BuildSettings>", parameters));
  REQUIRE(reading.reads);
  HFITOutput(reading.procedure(), reading.data_source(), &reading.store).ModelSummaryOutput();
  Texts calls;
  std::istringstream lines(reading.journal());
  for (std::string line; std::getline(lines, line);) {
    const nlohmann::json call = nlohmann::json::parse(line);
    std::string words = call["call"].get<std::string>();
    if (const std::size_t colons = words.find("::"); colons != std::string::npos) {
      words.erase(0, colons + 2);
    }
    for (const nlohmann::json& argument : call.value("args", nlohmann::json::array())) {
      words += " | " + short_text(argument);
    }
    calls.push_back(words);
  }
  return calls;
}

/// The cells of the summary by their row.
Texts summary_rows(const std::string& parameters) {
  Texts rows;
  for (const std::string& call : summary_calls(parameters)) {
    if (call.starts_with("Category | ") || call.starts_with("Group | ")) {
      rows.push_back(call.substr(call.find('|') + 2));
    }
    if (call.starts_with("Cell | ")) rows.back() += call.substr(4);
  }
  return rows;
}

}  // namespace

TEST_CASE("the summary of a normal target, call by call") {
  const Texts calls = summary_calls(R"(<Parameter name="DistributionOfTarget" value="NORMAL"/>
      <Parameter name="LinkFunctionType" value="IDENTITY"/>)");
  const Texts expected = {"PivotTable | Model Summary | ModelSummary | false",
                          "MinDataColumnWidth | 150",
                          "Dimension | Content | 2",
                          "Position | 0 | 1 | true | false",
                          "Category | Target",
                          "Cell | <y>",
                          "Category | Probability Distribution",
                          "Cell | Normal",
                          "Category | Link Function",
                          "Cell | Identity",
                          "Group | Information Criterion | true | 2",
                          "Category | Akaike Corrected",
                          "Cell | GeneralStat 12.5",
                          "Category | Bayesian",
                          "Cell | GeneralStat -1.7976931348623157e+308",
                          "Caption | Information Criteria, log likelhood ^1 ... "
                          "GeneralStat -1.7976931348623157e+308",
                          "release"};
  REQUIRE(calls.size() == expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    CHECK(calls[i] == expected[i]);
  }
}

TEST_CASE("rows of the summary that depend on the model") {
  const auto has_row = [](const std::string& parameters, const std::string& row) {
    const Texts rows = summary_rows(parameters);
    return std::ranges::find(rows, row) != rows.end();
  };
  const std::string trials = R"(<Parameter name="UseTrials" value="true"/>)";
  CHECK(summary_rows(trials + R"(<Parameter name="TrialsField" value="n"/>)").at(2) ==
        "Trials | <n>");
  const Texts fixed = summary_rows(trials + R"(<Parameter name="TrialsValue" value="12"/>)");
  CHECK(fixed.at(0) == "Target | true | 2");
  CHECK(fixed.at(1) == "Events | <y>");
  CHECK(fixed.at(2).starts_with("Trials | SigDigit 12"));

  const std::string ordinal = R"(<Parameter name="DistributionOfTarget" value="ORDINAL"/>)";
  CHECK(has_row(ordinal, "Measurement Level | Ordinal"));
  CHECK(has_row(ordinal, "Probability Distribution | Multinomial"));
  CHECK(has_row(ordinal + R"(<Parameter name="LinkFunctionType" value="LOGIT"/>)",
                "Link Function | Cumulative logit"));
  const std::string power = R"(<Parameter name="LinkFunctionType" value="POWER"/>)";
  CHECK(has_row(power, "Link Function | Power"));
  CHECK(has_row(power + R"(<Parameter name="LinkFunctionParam" value="0.5"/>)",
                "Link Function | Power(^1) SigDigit 0.5"));
}

TEST_CASE("without diagnostics there is no summary") {
  Reading reading((ResultDocuments()));
  reading.store.ClearModelDiagnostics();
  HFITOutput(reading.procedure(), reading.data_source(), &reading.store).ModelSummaryOutput();
  CHECK(reading.journal().empty());
}
