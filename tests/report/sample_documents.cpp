// Documents like those that a run leaves, made by hand.
#include "tests/report/sample_documents.h"

#include <string>
#include <utility>

#include "tests/report/table_builder.h"

namespace hierfit::test {

using output::Document;
using output::Section;

namespace {

constexpr const char* kTarget = "Target: Average reaction time (ms)";
constexpr const char* kInterval = "95% Confidence Interval";
constexpr const char* kExpInterval = "95% Confidence Interval for Exp(Coefficient)";

void add(Section& section, TableBuilder&& builder) { section.items.emplace_back(builder.take()); }

Section& add_section(Section& section, std::string title) {
  auto made = std::make_unique<Section>();
  made->title.shown = std::move(title);
  section.items.emplace_back(std::move(made));
  return *std::get<std::unique_ptr<Section>>(section.items.back());
}

void add_message(Section& section, output::Severity severity, std::string text) {
  auto message = std::make_unique<output::Message>();
  message->severity = severity;
  message->text.shown = std::move(text);
  section.items.emplace_back(std::move(message));
}

TableBuilder model_summary() {
  TableBuilder table("Model Summary", "ModelSummary");
  table.rows("Content").hide_title().column_width(150);
  table.cell({{"Target"}}, "Average reaction time (ms)")
      .cell({{"Probability Distribution"}}, "Normal")
      .cell({{"Link Function"}}, "Identity")
      .cell({{"Information Criterion", "Akaike Corrected"}}, statistic(1755.628))
      .cell({{"Information Criterion", "Bayesian"}}, statistic(1774.786));
  table.caption(text_with(
      "Information criteria are based on the -2 log likelihood (^1) and are used to compare "
      "models. Models with smaller information criterion values fit better.",
      statistic(1743.6283)));
  return table;
}

TableBuilder data_structure() {
  TableBuilder table("Data Structure", "DataStructure");
  table.rows("Record").hide_title().hide_labels();
  table.rows("Data", 2).hide_title().columns("Variables").hide_title().table_note(kTarget);
  const double reaction[] = {249.56, 258.7047, 250.8006, 321.4398};
  for (int record = 0; record < 4; ++record) {
    const Path row = {std::to_string(record)};
    const Path data = {"Data for First Subject"};
    table.cell({row, data, {"Subjects", "Subject"}}, "308")
        .cell({row, data, {"Repeated Measures", "Day"}}, std::to_string(record))
        .cell({row, data, {"Target", "Reaction"}},
              output::Number{reaction[record], output::Format::Fixed, 2});
  }
  const Path data = {"Total Number of Levels"};
  table.cell({{"Levels"}, data, {"Subjects", "Subject"}}, count(18))
      .cell({{"Levels"}, data, {"Repeated Measures", "Day"}}, count(10));
  table.caption({"Only the first 10 records are displayed.", {}});
  return table;
}

TableBuilder classification() {
  TableBuilder table("Classification, overall 87.5% correct", "Classification");
  table.rows("Observed", 2).rows("Statistics").hide_title().columns("Predicted");
  table.table_note("Target: Satisfaction");
  const char* levels[] = {"Low", "Medium", "High"};
  const double counts[3][3] = {{52, 7, 1}, {9, 110, 4}, {0, 3, 14}};
  for (int i = 0; i < 3; ++i) {
    const double total = counts[i][0] + counts[i][1] + counts[i][2];
    for (int j = 0; j < 3; ++j) {
      table.cell({{levels[i]}, {"Count"}, {levels[j]}}, count(counts[i][j]))
          .cell({{levels[i]}, {"% within Observed"}, {levels[j]}},
                percent(100 * counts[i][j] / total));
    }
  }
  return table;
}

TableBuilder fixed_effects() {
  TableBuilder table("Fixed Effects", "FixedEffects");
  table.rows("Source").columns("Statistics").hide_title().table_note(kTarget);
  const auto effect = [&table](const char* name, double f, double df1, double df2, double sig) {
    table.cell({{name}, {"F"}}, statistic(f))
        .cell({{name}, {"df1"}}, count(df1))
        .cell({{name}, {"df2"}}, count(df2))
        .cell({{name}, {"Sig."}}, significance(sig));
  };
  effect("Corrected Model", 45.853, 3, 176, 1.3e-21);
  effect("days", 45.853, 1, 176, 1.3e-21);
  effect("group * days", 0.0214, 2, 176, 0.978835);
  table.caption({"Probability distribution: Normal\nLink function: Identity", {}});
  return table;
}

struct Term {
  Path label;
  double estimate;
  double error;
  bool redundant = false;
};

void add_term(TableBuilder& table, const Term& term, bool exponentiated) {
  const auto write = [&](Path column, double value, output::Format format) {
    table.cell({term.label, std::move(column)},
               term.redundant ? output::Number{.format = format} : output::Number{value, format});
  };
  table.cell({term.label, {"Coefficient"}}, term.redundant ? count(0) : coefficient(term.estimate));
  if (term.redundant) {
    table.cell_note("This coefficient is set to zero because it is redundant.");
  }
  const double low = term.estimate - 1.96 * term.error;
  const double high = term.estimate + 1.96 * term.error;
  write({"Std. Error"}, term.error, output::Format::CoefficientSE);
  write({"t"}, term.estimate / term.error, output::Format::GeneralStat);
  write({"Sig."}, term.error / 40, output::Format::Significance);
  write({kInterval, "Lower"}, low, output::Format::Coefficient);
  write({kInterval, "Upper"}, high, output::Format::Coefficient);
  if (!exponentiated) return;
  write({"Exp(Coefficient)"}, term.estimate / 2 + 2, output::Format::Coefficient);
  write({kExpInterval, "Lower"}, low / 2 + 2, output::Format::Coefficient);
  write({kExpInterval, "Upper"}, high / 2 + 2, output::Format::Coefficient);
}

TableBuilder fixed_coefficients() {
  TableBuilder table("Fixed Coefficients", "FixedCoefficients");
  table.rows("Model Term").columns("Statistics").hide_title().table_note(kTarget);
  add_term(table, {{"Intercept"}, 251.405, 6.825}, false);
  add_term(table, {{"days"}, 10.467, 1.546}, false);
  add_term(table, {{"group=1"}, -0.0000234, 0.018}, false);
  add_term(table, {{"group=2"}, 0, 0, true}, false);
  table.caption({"Probability distribution: Normal\nLink function: Identity", {}});
  return table;
}

TableBuilder ordinal_coefficients() {
  TableBuilder table("Fixed Coefficients", "FixedCoefficients");
  table.rows("Model Term").columns("Statistics").hide_title();
  table.table_note("Target: Satisfaction");
  add_term(table, {{"Threshold for Satisfaction=", "Low"}, -1.204, 0.311}, true);
  add_term(table, {{"Threshold for Satisfaction=", "Medium"}, 1.873, 0.335}, true);
  add_term(table, {{"Age"}, 0.031, 0.011}, true);
  add_term(table, {{"Sex=Female"}, -0.402, 0.198}, true);
  add_term(table, {{"Sex=Male"}, 0, 0, true}, true);
  return table;
}

TableBuilder covariances() {
  TableBuilder table("Random Effect Block 1", "RandomEffects");
  table.rows("Random Effect Block").rows("Grouping", 2);
  table.columns("Random Effect Block Column").hide_title();
  for (const char* group : {"School=North", "School=South"}) {
    table.cell({{"Intercept"}, {group}, {"Intercept"}}, statistic(612.09))
        .cell({{"Intercept"}, {group}, {"days"}}, statistic(9.604))
        .cell({{"days"}, {group}, {"Intercept"}}, statistic(9.604))
        .cell({{"days"}, {group}, {"days"}}, statistic(35.072));
  }
  table.caption({"Covariance structure: Unstructured\nSubject specification: Subject", {}});
  return table;
}

TableBuilder covariance_summary() {
  TableBuilder table("Covariance Parameters Summary", "CovarianceParametersSummary");
  table.rows("Content").hide_title();
  table.cell({{"Covariance Parameters", "Residual Effect"}}, count(1))
      .cell({{"Covariance Parameters", "Random Effects"}}, count(3))
      .cell({{"Design Matrix Columns", "Fixed Effects"}}, count(2))
      .cell({{"Design Matrix Columns", "Random Effects"}}, count(2))
      .cell_note("This is the number of columns per common subject.")
      .cell({{"Common Subjects"}}, count(18));
  return table;
}

TableBuilder contrasts() {
  TableBuilder table("Pairwise Contrasts", "Contrasts");
  table.rows("Sex", 2).rows("Group Pairwise Contrasts").columns("Statistics").hide_title();
  double shift = 0.25;
  for (const char* sex : {"Female", "Male"}) {
    for (const char* pair : {"Control - Treated", "Control - Waiting list", "Treated - Control"}) {
      const auto at = [&](const Path& column) { return std::vector<Path>{{sex}, {pair}, column}; };
      table.cell(at({"Contrast Estimate"}), coefficient(shift))
          .cell(at({"Std. Error"}), coefficient(0.118))
          .cell(at({"t"}), coefficient(shift / 0.118))
          .cell(at({"df"}), count(174))
          .cell(at({"Adj. Sig."}), shift > 1 ? missing() : coefficient(0.036))
          .cell(at({kInterval, "Lower"}), coefficient(shift - 0.231))
          .cell(at({kInterval, "Upper"}), coefficient(shift + 0.231));
      shift = -shift * 1.7;
    }
  }
  table.caption(
      {"The sequential Bonferroni adjusted significance level is .05.\n"
       "Confidence interval bounds are approximate.",
       {}});
  return table;
}

TableBuilder grand_mean() {
  TableBuilder table("Estimated Means: Grand Mean", "GrandMeans");
  table.columns("Statistics").hide_title().table_note(kTarget);
  table.cell({{"Mean"}}, coefficient(298.508))
      .cell({{"Std. Error"}}, coefficient(8.795))
      .cell({{kInterval, "Lower"}}, coefficient(281.15))
      .cell({{kInterval, "Upper"}}, coefficient(315.865));
  return table;
}

TableBuilder forty_columns() {
  TableBuilder table("A Matrix of Forty Columns");
  table.rows("Effect").columns("Column").hide_title();
  for (int row = 1; row <= 6; ++row) {
    for (int column = 1; column <= 40; ++column) {
      table.cell({{"site=" + std::to_string(row)}, {"site=" + std::to_string(column)}},
                 statistic(row == column ? 612.09 : -1.5 * row + 0.001 * column));
    }
  }
  return table;
}

TableBuilder number_forms() {
  TableBuilder table("Numbers of Every Form");
  table.rows("Case").columns("Value");
  const std::pair<const char*, output::Number> rows[] = {
      {"three decimals", coefficient(-12.5)},
      {"no decimals", count(1234567)},
      {"very small", coefficient(2.3451e-5)},
      {"very small and negative", coefficient(-7.1e-300)},
      {"very large", coefficient(3.2e15)},
      {"significance", significance(1e-9)},
      {"percentage", percent(87.5)},
      {"as many digits as needed", {0.333333333333, output::Format::SigDigit}},
      {"infinite", coefficient(-std::numeric_limits<double>::infinity())},
      {"missing", missing()}};
  for (const auto& [label, number] : rows)
    table.cell({{label}, {"Value"}}, number);
  return table;
}

TableBuilder hostile_labels() {
  TableBuilder table("</title><script>alert(1)</script> & \"quotes\"");
  table.rows("<b>Term</b>").columns("Statistics\nin two lines");
  const std::string longest(300, 'x');
  table.cell({{"' onclick='alert(1)"}, {"</td></table>"}}, statistic(1))
      .cell_note("<img src=x onerror=alert(1)>")
      .cell({{"\x1b[31mred\x07"}, {"</td></table>"}}, statistic(-2))
      .cell({{longest}, {"</td></table>"}}, statistic(3))
      .cell({{"A label of many words that goes on and on, as labels of model terms with several "
              "factors and long value labels do, until no page is wide enough for one line of it"},
             {"</td></table>"}},
            statistic(4))
      .cell({{"\u202Ereversed"}, {"</td></table>"}}, "]]> <!-- &amp;");
  return table;
}

TableBuilder scripts_of_the_world() {
  TableBuilder table("المعاملات الثابتة");
  table.rows("مصطلح النموذج").columns("Statistics").hide_title();
  table.cell({{"التقاطع"}, {"المعامل"}}, coefficient(-251.405))
      .cell({{"日数の固定効果（ケナガマンモス）"}, {"المعامل"}}, coefficient(10.467))
      .cell({{"e\u0301tude de cafe\u0301"}, {"المعامل"}}, coefficient(0.5));
  return table;
}

output::Text plain(std::string text) { return {std::move(text), {}}; }

output::About about_result() {
  output::About about{plain("About this result"), {}, {}};
  about.facts = {{"target", plain("Target"), {plain("Score <1> & \u00AB2\u00BB")}},
                 {"formula", plain("Formula"), {plain("score ~ 1 + x_1 + (1 + x_1 | s:t)")}},
                 {"records", plain("Records"), {text_with("^1", count(1234))}},
                 {"files", plain("Files"), {plain("a.pmml"), plain("a.xml")}}};
  about.messages = {{plain("The fit did not converge."), output::Severity::Error, "notConverged"},
                    {plain("A variance is 0."), output::Severity::Warning, "boundary"},
                    {plain("All is said."), output::Severity::Note, "engineNote"}};
  return about;
}

}  // namespace

Document procedure_document() {
  Document document;
  document.title = "Generalized Linear Mixed Models";
  document.about = about_result();
  Section& top = document.content;
  add(top, model_summary());
  add(top, data_structure());
  add(top, classification());
  add(top, fixed_effects());
  add(top, fixed_coefficients());
  add(top, ordinal_coefficients());
  Section& random = add_section(top, "Random Effect Covariances");
  add(random, covariances());
  Section& parameters = add_section(top, "Covariance Parameters");
  add(parameters, covariance_summary());
  add(top, grand_mean());
  Section& means = add_section(top, "Estimated Means: Group");
  add(means, contrasts());
  add_message(means, output::Severity::Warning,
              "Estimated Means 2: the contrasts could not be computed for every level.");
  return document;
}

Document awkward_document() {
  Document document;
  document.title = "Awkward <Tables>";
  Section& top = document.content;
  add(top, TableBuilder("A Table without Anything"));
  TableBuilder no_categories("A Table without Categories");
  add(top, std::move(no_categories.rows("Observed", 2).rows("Statistics").columns("Predicted")));
  TableBuilder no_rows("Heads without a Row");
  no_rows.rows("Model Term").columns("Statistics").hide_title();
  add(top, std::move(no_rows.category(1, {"F"}).category(1, {"Sig."})));
  add(top, forty_columns());
  add(top, number_forms());
  add(top, hostile_labels());
  add(top, scripts_of_the_world());
  add_message(top, output::Severity::Error, "Line one\nline two <script>");
  return document;
}

Document large_document(int rows) {
  Document document;
  document.title = "Large";
  TableBuilder table("Pairwise Contrasts", "Contrasts");
  table.rows("Contrast").columns("Statistics").hide_title();
  const Path columns[] = {{"Contrast Estimate"}, {"Std. Error"},      {"t"}, {"df"}, {"Adj. Sig."},
                          {kInterval, "Lower"},  {kInterval, "Upper"}};
  for (int row = 0; row < rows; ++row) {
    const Path label = {"level " + std::to_string(row / 350) + " - level " + std::to_string(row)};
    double value = 0.1 * (row % 1000) - 37.123456789;
    for (const Path& column : columns)
      table.cell({label, column}, coefficient(value /= 1.37));
  }
  add(document.content, std::move(table));
  return document;
}

}  // namespace hierfit::test
