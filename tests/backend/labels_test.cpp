// String maps and printable lists, and the texts that are made from them.
#include <doctest/doctest.h>

#include "tests/backend/result_documents.h"

using namespace hierfit;
using namespace hierfit::test;

namespace {

using Texts = std::vector<std::string>;

/// The base documents with a term in the place of P1.
ResultDocuments term(const std::string& below) {
  return ResultDocuments().replace_range(
      "<RegressionParameter isIntercept=\"false\" name=\"P1\">", "</RegressionParameter>",
      "<RegressionParameter isIntercept=\"false\" name=\"P1\">" + below + "</RegressionParameter>");
}

/// The text of the second label of the covariance matrix, which stands for P1.
std::string term_text(const std::string& below) {
  const Reading reading(term(below));
  REQUIRE(reading.reads);
  return reading.structured().fvRandEffCovars.at(0).fvEffectLabels.at(1);
}

PrintableListData list(std::string pattern,
                       std::vector<PrintableListData> sub_lists = {},
                       int32_t map_id = -1) {
  PrintableListData result;
  result.fPattern = std::move(pattern);
  result.fMapId = map_id;
  result.fvSubLists = std::move(sub_lists);
  return result;
}

EffectStruct effect(Texts names, std::vector<int32_t> levels) {
  std::vector<int32_t> indices(names.size(), 0);
  return {std::move(names), std::move(indices), std::move(levels)};
}

}  // namespace

TEST_CASE("texts of terms") {
  const std::string x = R"(<Covariate field="x" power="1"/>)";
  const std::string a = R"(<Factor field="g" value="1"/>)";
  const std::string nested = R"(<Factor field="t" value="2" nest="true"/>)";
  const std::pair<std::string, const char*> cases[] = {
      {R"(<Covariate field="x" power="2"/>)", "x*x"},
      {R"(<Covariate field="x" power=""/><Covariate field="z" power="3"/>)", "x*z*z*z"},
      {a, "g=1"},
      {R"(<Factor field="s" value=""/>)", "s"},
      {R"(<Factor field="s"/>)" + a, "[s=]*[g=1]"},
      {x + a, "x*[g=1]"},
      {a + nested, "[g=1]([t=2])"},
      {x + nested, "x([t=2])"},
      {nested + nested + a, "([t=2]([t=2]*[g=1]))"},
      {"", ""},
  };
  for (const auto& [below, text] : cases) {
    CAPTURE(below);
    CHECK(term_text(below) == text);
  }
}

TEST_CASE("a label has an end, cut between two characters") {
  std::string covariates;
  for (int i = 0; i < 100; ++i) {
    covariates += R"(<Covariate field="größenmaß" power="9999"/>)";
  }
  const std::string text = term_text(covariates);
  CHECK(text.size() <= (1U << 20) + 3);
  CHECK(text.ends_with("…"));
  CHECK_FALSE(Reading(term(R"(<Covariate field="x" power="10000"/>)")).reads);
}

TEST_CASE("texts of effects") {
  const Reading reading((ResultDocuments()));
  const std::pair<EffectStruct, const char*> cases[] = {
      {effect({"a"}, {0}), "a"},
      {effect({"a", "b", "c"}, {0, 0, 1}), "a * b(c)"},
      {effect({"a", "b", "c"}, {0, 1, 2}), "a(b(c))"},
      {effect({"a", "b", "c"}, {0, 1, 1}), "a(b * c)"},
      {effect({"a", "b", "c"}, {0, 1, 0}), "a(b * c)"},
      {effect({"a", "b"}, {}), "a * b"},
  };
  for (const auto& [fields, expected] : cases) {
    CAPTURE(expected);
    RandomSpec spec;
    spec.fvEffectList = {fields};
    std::string text;
    CHECK(reading.store.GetEffectText(spec, 0, text));
    CHECK(text == expected);
    CHECK_FALSE(reading.store.GetEffectText(spec, 1, text));
    spec.fIntercept = true;
    CHECK(reading.store.GetEffectText(spec, 1, text));
    CHECK(text == expected);
    CHECK(reading.store.GetEffectText(spec, 0, text));
    CHECK(text == "Intercept");
  }
}

TEST_CASE("the first map of an id and the first entry of a name count") {
  const auto entry = [](const char* name, const char* field) {
    return std::string("<MapEntry name=\"") + name +
           "\"><Label><RegressionParameter isIntercept=\"false\" name=\"\"><Covariate field=\"" +
           field + "\" power=\"1\"/></RegressionParameter></Label></MapEntry>";
  };
  const Reading reading(ResultDocuments().insert_before(
      "<StringMap", "<StringMap>" + entry("lost", "l") + "</StringMap><StringMap mapId=\"7\">" +
                        entry("P", "first") + entry("P", "second") +
                        "<MapEntry name=\"dropped\"/></StringMap>" + "<StringMap mapId=\"7\">" +
                        entry("Q", "third") + "</StringMap>"));
  REQUIRE(reading.reads);
  RegressionParamData found;
  CHECK(reading.store.FindMapEntry(7, "P", found) == 0);
  CHECK(found.fvCovariates.at(0).fField == "first");
  CHECK(reading.store.FindMapEntry(7, "Q", found) == 3);
  CHECK(reading.store.FindMapEntry(7, "p", found) == 3);
  CHECK(reading.store.FindMapEntry(7, "dropped", found) == 3);
  CHECK(reading.store.FindMapEntry(8, "P", found) == 2);
  CHECK(found.fvCovariates.at(0).fField == "first");
  CHECK(HFITOutputStats().FindMapEntry(7, "P", found) == 1);

  std::string text = "as it was";
  CHECK_FALSE(reading.store.GetPrintableText(list("Q", {}, 7), text));
  CHECK(text == "as it was");
  CHECK(reading.store.GetPrintableText(list("lost"), text));
  CHECK(text == "lost");
}

TEST_CASE("the status of the maps is that of the last entry of the last map") {
  constexpr char kEnd[] = "</StringMap>";
  check_changes({
      {"an entry without a term in the middle", "<MapEntry", "<MapEntry/><MapEntry", Read::Works},
      {"an entry without a term at the end", kEnd, "<MapEntry/></StringMap>"},
      {"a last map without entries", kEnd, "</StringMap><StringMap/>"},
      {"no map", "<StringMap", "", Read::Fails, "</StringMap>"},
      {"a term without a name in the middle", "isIntercept=\"true\" name=\"P0\"",
       "isIntercept=\"true\"", Read::Works},
      {"a covariate without a power at the end", "<Covariate field=\"x\" power=\"1\"/>",
       "<Covariate field=\"x\"/>"},
      {"a factor of an unknown field at the end", "<Covariate field=\"x\" power=\"1\"/>",
       "<Factor field=\"z\" value=\"1\"/>"},
      {"a factor of another kind of value", "<Covariate field=\"x\" power=\"1\"/>",
       "<Factor field=\"g\" value=\"one\"/>"},
      {"what stands below an intercept", "name=\"P0\"/></Label>",
       "name=\"P0\"><Covariate/></RegressionParameter></Label>", Read::Works},
  });
}

TEST_CASE("texts of labels, with their keys and parameters") {
  const Reading reading((ResultDocuments()));
  const auto check = [&](const PrintableListData& label, int32_t block, bool result,
                         const Texts& parameters, const char* text) {
    CAPTURE(text);
    std::string key;
    std::string made = "as it was";
    Texts made_parameters;
    CHECK(reading.store.GetPrintableListText(label, block, key, made_parameters, made) == result);
    CHECK(key == (label.fMapId == -1 ? label.fPattern : ""));
    CHECK(made_parameters == parameters);
    CHECK(made == text);
  };
  const PrintableListData found = list("P1", {}, 0);
  const PrintableListData lost = list("P9", {}, 0);
  const PrintableListData plain = list("^1");
  check(list("K"), 0, true, {}, "K");
  check(list("K(^1)", {found}), 0, true, {"x"}, "K(x)");
  check(list("K(^1,^2)", {lost, plain}), 0, true, {"", "^1"}, "K(,^1)");
  check(list("K", {plain, plain, plain}), 0, true, {"^1", "^1", "^1"}, "as it was");
  check(list("K", {}, 0), 0, true, {}, "as it was");

  check(list("VarOfEffect", {list("1")}), 0, true, {"x"}, "VarOfEffect");
  check(list("VarOfEffect", {list("0")}), 0, true, {"Intercept"}, "VarOfEffect");
  check(list("VarOfEffect", {list("")}), 0, false, {}, "VarOfEffect");
  check(list("VarOfEffect", {list("2")}), 0, false, {}, "VarOfEffect");
  check(list("VarOfEffect", {list("0")}), -1, false, {}, "VarOfEffect");
  check(list("VarOfEffect", {list("0")}), 1, false, {}, "VarOfEffect");
  check(list("VarOfEffect"), -1, true, {}, "VarOfEffect");
}

TEST_CASE("printable lists of estimates") {
  const auto with = [](const std::string& below) {
    return ResultDocuments().replace("<Statistic name=\"fixedEffectIndex\" value=\"0\"/>", below);
  };
  const Reading reading(with(R"(<PrintableList><PrintableList isKey="true" pattern="a" mapId="4"/>
      <PrintableValue storage="date" value="1" isNull="true" label="one"/>
      <PrintableValue storage="Date" value=""/></PrintableList>)"));
  REQUIRE(reading.store.GetParamCollect() != nullptr);
  const PrintableListData& top =
      reading.estimates().fvFixedParamEstim.at(0).fvParamStats.at(0).fPrintableList;
  CHECK(top.fMapId == -1);
  CHECK(top.fPattern.empty());
  CHECK(top.fvSubLists.at(0).fIsKey);
  CHECK(top.fvSubLists.at(0).fMapId == 4);
  CHECK(top.fvValues.at(0).fStorage == 4);
  CHECK(top.fvValues.at(0).fIsNull);
  CHECK(top.fvValues.at(0).fLabel == "one");
  CHECK(top.fvValues.at(1).fStorage == 0);
}

TEST_CASE("a value without storage or value fails all lists around it") {
  for (const char* value :
       {R"(<PrintableValue value="1"/>)", R"(<PrintableValue storage="real"/>)"}) {
    CAPTURE(value);
    const Reading reading(
        ResultDocuments().replace("<Statistic name=\"fixedEffectIndex\" value=\"0\"/>",
                                  "<PrintableList><PrintableList>" + std::string(value) +
                                      "</PrintableList></PrintableList>"));
    CHECK(reading.store.GetParamCollect() == nullptr);
  }
}

TEST_CASE("names of links by the kind of target, and of codes without a name") {
  const Reading reading((ResultDocuments()));
  const HFITOutputStats& store = reading.store;
  CHECK(store.LinkFunctionName(4, 3, false) == "Generalized logit");
  CHECK(store.LinkFunctionName(4, 4, false) == "Cumulative logit");
  CHECK(store.LinkFunctionName(4, 0, true) == "Logit");
  CHECK(store.LinkFunctionName(8, 4, false) == "Cumulative Cauchit");
  CHECK(store.LinkFunctionName(8, 6, false) == "Unknown");
  CHECK(store.LinkFunctionName(-1, 6, false) == "Unknown");
  CHECK(store.DistributionName(4, false) == "Multinomial");
  CHECK(store.DistributionName(8, false) == "Unknown");
  CHECK(store.CovarianceTypeName(7, false) == "Unstructured");
  CHECK(store.CovarianceTypeName(8, false) == "Unknown");
}
