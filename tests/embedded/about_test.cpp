// What a report says of its result ahead of the numbers.
#include <algorithm>
#include <doctest/doctest.h>
#include <initializer_list>
#include <utility>

#include "embedded/about/formula.h"
#include "tests/backend/table_run.h"

using namespace hierfit;
using namespace hierfit::test;
using about::Fields;
using about::ResultFacts;

namespace {

using Changes = std::initializer_list<std::pair<std::string, std::string>>;

/// The example with the first of each of these pieces replaced by the other.
DocumentFiles changed(const std::string& example, const Changes& changes) {
  DocumentFiles files = example_files(example);
  for (const auto& [from, to] : changes) {
    std::string& text = files.result.find(from) != std::string::npos ? files.result : files.model;
    REQUIRE_MESSAGE(text.find(from) != std::string::npos, from);
    text.replace(text.find(from), from.size(), to);
  }
  return files;
}

/// The values of a fact, divided by "; "; "(none)" without it.
std::string fact(const output::Document& document, std::string_view key) {
  const auto found = std::ranges::find(document.about.facts, key, &output::Fact::key);
  if (found == document.about.facts.end()) return "(none)";
  std::string values;
  for (const output::Text& value : found->values)
    values += (values.empty() ? "" : "; ") + value.shown;
  return values;
}

/// A line a message: its code, its severity and its text.
std::string messages(const output::Document& document) {
  constexpr const char* kNames[] = {" note: ", " warning: ", " error: "};
  std::string lines;
  for (const output::Message& message : document.about.messages) {
    lines +=
        message.code + kNames[static_cast<size_t>(message.severity)] + message.text.shown + "\n";
  }
  return lines;
}

std::string message(const std::string& key, const std::string& parameter = {}) {
  const std::string value =
      parameter.empty() ? "" : "<PrintableValue storage=\"string\" value=\"" + parameter + "\"/>";
  return "<Message><PrintableList pattern=\"" + key + "\" isKey=\"true\">" + value +
         "</PrintableList></Message>";
}

const std::string kEnd = "</TrainingSummary>";

}  // namespace

TEST_CASE("a report says which model it is about") {
  const TableRun run = test::run(example_files("salamanders"), "en");
  CHECK(run.document.title == "Salamander counts near mined streams");
  CHECK(fact(run.document, "procedure") == "Generalized Linear Mixed Models");
  CHECK(fact(run.document, "target") == "Salamanders counted (count)");
  CHECK(fact(run.document, "distribution") == "Negative binomial");
  CHECK(fact(run.document, "link") == "Log");
  CHECK(fact(run.document, "formula") == "count ~ 1 + spp + mined + spp:mined + (1 | site)");
  CHECK(fact(run.document, "records") == "644");
  CHECK(fact(run.document, "groups") == "Stream site: 23");
  CHECK(fact(run.document, "confidenceLevel") == "95%");
  CHECK(fact(run.document, "adjustment") ==
        "Significance is adjusted by the sequential Bonferroni method.");
  CHECK(fact(run.document, "engine") == "R 4.2.2");
  CHECK(fact(run.document, "reckoned") == "(none)");
  CHECK(messages(run.document).empty());

  SUBCASE("in its language") {
    const TableRun german = test::run(example_files("cbpp"), "de");
    CHECK(german.document.about.title.shown == "Zu diesem Ergebnis");
    CHECK(fact(german.document, "confidenceLevel") == "95\u00A0%");
    CHECK(fact(german.document, "target").ends_with("(size) (Ereignisse / Versuche)"));
  }
  SUBCASE("and what its documents lack, it leaves out") {
    const TableRun bare = test::run(document_files("intercept_only"), "en");
    REQUIRE(bare.reads);
    CHECK(bare.document.title == "Generalized Linear Mixed Models");
    for (const char* key :
         {"procedure", "model", "records", "groups", "confidenceLevel", "engine"}) {
      CAPTURE(key);
      CHECK(fact(bare.document, key) == "(none)");
    }
    CHECK(fact(bare.document, "formula") == "hits/age ~ 1");
  }
  SUBCASE("as the program says that wrote the documents") {
    const std::string extension = R"(<Extension extender="hierfit" name=")";
    const TableRun told = test::run(
        changed("sleepstudy",
                {{"<PredictiveSummary", extension + R"(formula" value="Reaction ~ Days"/>)" +
                                            extension + R"(engine.name" value="nlme"/>)" +
                                            extension + R"(engine.version" value="3.1"/>)" +
                                            extension + R"(df.method" value="satterthwaite"/>)" +
                                            extension + R"(reckoned" value="all t"/>)" + extension +
                                            R"(note" value="REML"/>)" + extension +
                                            R"(condition" value="not converged"/>)" +
                                            R"(<Extension extender="x" name="formula" value="y"/>)"
                                            "<PredictiveSummary"}}),
        "en");
    REQUIRE(told.reads);
    CHECK(fact(told.document, "formula") == "Reaction ~ Days");
    CHECK(fact(told.document, "engine") == "nlme 3.1");
    CHECK(fact(told.document, "dfMethod") == "Satterthwaite approximation");
    CHECK(fact(told.document, "reckoned") == "all t");
    CHECK(messages(told.document) ==
          "notConverged error: The fit did not converge; its numbers are not to be interpreted.\n"
          "engineNote note: REML\n");
  }
}

TEST_CASE("groups are counted where the documents tell their number") {
  // The residual effect has other subjects: the number of common ones is not that of the sites.
  const Changes other_subjects = {{R"(<Parameter name="CIn")",
                                   R"(<Parameter name="ResidualSubjectSpec"><StructuredValue>
          <Attribute name="Fields"><ListValue><Value value="spp"/></ListValue></Attribute>
          </StructuredValue></Parameter><Parameter name="CIn")"}};
  const TableRun run = test::run(changed("salamanders", other_subjects), "en");
  REQUIRE(run.reads);
  CHECK(fact(run.document, "groups") == "Stream site: 23; Species: 7");
}

TEST_CASE("a model is written as a formula") {
  ResultFacts facts;
  CHECK(about::formula_of(facts).empty());
  facts.target = "y";
  CHECK(about::formula_of(facts) == "y ~ 0");
  facts.uses_trials = true;
  facts.trials = "n";
  facts.intercept = true;
  facts.effects = {
      {{"a"}, {}}, {{"a", "b"}, {0, 0}}, {{"x", "x"}, {}}, {{"a", "b", "c"}, {0, 1, 2}}};
  facts.random = {{false, {{{"x"}, {}}}, {{"school", "class"}, {}}, {"sex"}}, {true, {}, {}, {}}};
  CHECK(about::formula_of(facts) ==
        "y/n ~ 1 + a + a:b + x^2 + a(b(c)) + (0 + x | school:class, by sex) + (1 | 1)");
}

TEST_CASE("what the engine says of a fit is said, the gravest first") {
  SUBCASE("in words where they are known, else with what it gave") {
    const TableRun run = test::run(
        changed("cbpp", {{kEnd, message("kGLMM_C18") + message("kGLMM_C12") + message("kGLMM_C12") +
                                    message("kGLMM_C30", "halved") +
                                    message("kGLMM_C11", "Hessian is not positive definite") +
                                    message("kGLMM_C24", "20") + kEnd}}),
        "en");
    REQUIRE(run.reads);
    CHECK(messages(run.document) ==
          "kGLMM_C11 error: The engine gave the warning kGLMM_C11: Hessian is not positive "
          "definite\n"
          "kGLMM_C18 warning: The engine gave the warning kGLMM_C18 on the covariance parameters; "
          "interpret their estimates with caution.\n"
          "kGLMM_C12 warning: The engine gave the warning kGLMM_C12, whose meaning only the engine "
          "knows; interpret the results with caution.\n"
          "kGLMM_C30 warning: The engine gave the warning kGLMM_C30: halved\n"
          "kGLMM_C24 warning: More estimated marginal means were requested than are computed; "
          "those beyond the limit are left out. (20)\n");
  }
  SUBCASE("of a block of means with its number and its effect") {
    const TableRun run = test::run(
        changed("cbpp",
                {{R"(<Statistic name="EMMEANSIndex" value="0"/>)",
                  R"(<Statistic name="EMMEANSIndex" value="0"/>)" + message("kGLMM_C19_1")}}),
        "en");
    REQUIRE(run.reads);
    CHECK(messages(run.document) ==
          "kGLMM_C19_1 warning: Estimated marginal means 1: Period: The contrasts could not be "
          "computed; their table and chart are left out.\n");
  }
  SUBCASE("and so is a fit without estimates") {
    DocumentFiles files = example_files("sleepstudy");
    const size_t begin = files.result.find("<TrainingSummary>");
    files.result.replace(begin, files.result.find(kEnd) - begin,
                         "<TrainingSummary>" + message("kGLMM_C11", "iteration limit reached"));
    const TableRun run = test::run(files, "en");
    REQUIRE(run.reads);
    CHECK(messages(run.document) ==
          "noEstimates error: There are no estimates: the fit did not come to a result.\n"
          "kGLMM_C11 error: The engine gave the warning kGLMM_C11: iteration limit reached\n");
  }
}

TEST_CASE("means of events out of trials are said to be proportions") {
  const auto notes = [](const DocumentFiles& files, const char* subtype) {
    const TableRun run = test::run(files, "en");
    REQUIRE(run.table(subtype) != nullptr);
    const output::Table& table = *run.table(subtype);
    std::string text;
    for (const uint32_t note : table.table_notes)
      text += table.notes[note].shown + "\n";
    return text;
  };
  const std::string sentence = "The means are proportions: events out of trials.\n";
  CHECK(notes(example_files("cbpp"), "GrandMeans").ends_with(sentence));
  CHECK(notes(example_files("cbpp"), "Estimates").ends_with(sentence));
  CHECK(notes(example_files("cbpp"), "Contrasts").find("proportions") == std::string::npos);
  CHECK(notes(example_files("salamanders"), "Estimates").find("proportions") == std::string::npos);
  const DocumentFiles on_link =
      changed("cbpp", {{"<PredictiveSummary",
                        R"(<Extension extender="hierfit" name="means[0].scale" value="link"/>)"
                        "<PredictiveSummary"}});
  CHECK(notes(on_link, "Estimates").find("proportions") == std::string::npos);
}

TEST_CASE("two variances of one name are both shown, with a word about it") {
  const std::string name = R"x(<PrintableList pattern="Var(^1)" isKey="true">
            <PrintableList pattern=)x";
  const TableRun run = test::run(changed("sleepstudy", {{name + "\"e1\"", name + "\"e0\""}}), "en");
  REQUIRE(run.reads);
  CHECK(run.cell("CovarianceParameters", {"Var(Intercept)", "Estimate"}) == "612.100");
  CHECK(run.cell("CovarianceParameters", {"Var(Intercept) (2)", "Estimate"}) == "35.072");
  CHECK(run.cell("CovarianceParameters", {"Var(Intercept) (2)", "Upper"}) == "76.622");
  CHECK(messages(run.document) ==
        "sameLabels warning: Random effect: several rows have the label Var(Intercept); a number "
        "behind it tells them apart.\n");
}

TEST_CASE("a variance on its boundary is said to be there, a covariance of 0 is not") {
  const auto run = [](const std::string& parameter, const std::string& estimate) {
    const std::string label = "paramLabel=\"" + parameter + "\" estimate=\"";
    DocumentFiles files = example_files("sleepstudy");
    const size_t at = files.result.find(label);
    REQUIRE(at != std::string::npos);
    const size_t value = at + label.size();
    files.result.replace(value, files.result.find('"', value) - value, estimate);
    return test::run(files, "en");
  };
  CHECK(messages(run("Var(Days)", "0").document) ==
        "boundary warning: Random effect, Var(Days of sleep deprivation): the variance is "
        "estimated as exactly 0, on the "
        "boundary of what a variance can be; its standard error, test and interval do not hold.\n");
  CHECK(messages(run("Var(Days)", "0.001").document).empty());
  CHECK(messages(run("Cov(Days,Intercept)", "0").document).empty());
}
