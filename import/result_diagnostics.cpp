// Fit statistics, the target, tests, the first subject, matrices: `ModelDiagnostics`.
#include "import/counts.h"
#include "import/number_text.h"
#include "import/result_document.h"

namespace hierfit::fit {
namespace {

void write_count(std::string_view name, std::optional<int64_t> count, XmlWriter& xml) {
  if (count) xml.leaf("Statistic", {{"name", name}, {"value", std::to_string(*count)}});
}

void write_statistics(const Prepared& prepared, XmlWriter& xml) {
  const Fit& fit = prepared.fit;
  const Statistics& statistics = fit.statistics;
  write_statistic("AICC", statistics.aicc, xml);
  write_statistic("BIC", statistics.bic, xml);
  write_statistic("minus2LogLikelihood", -2 * statistics.log_likelihood, xml);
  const Counts counts = counts_of(prepared);
  write_count("numOfCovParamOfRepeated", counts.residual_parameters, xml);
  write_count("numOfCovParamOfRandom", counts.random_parameters, xml);
  write_count("numOfColsOfFixed", counts.fixed_columns, xml);
  write_count("numOfColsOfRandom", counts.random_columns, xml);
  write_count("numOfCommonSubjects", counts.common_subjects, xml);
  if (exists(statistics.accuracy)) {
    write_statistic("classificationAccuracy", statistics.accuracy, xml);
  }
  if (!fit.grand_mean) return;
  write_statistic("grandMean", fit.grand_mean->estimate, xml);
  write_statistic("grandMeanStdErr", fit.grand_mean->std_error, xml);
  write_statistic("grandMeanCILower", fit.grand_mean->conf_low, xml);
  write_statistic("grandMeanCIUpper", fit.grand_mean->conf_high, xml);
}

void write_feature(std::string_view feature, const std::vector<double>& items, XmlWriter& xml) {
  const auto coordinates = xml.element("Coordinates", {{"feature", feature}});
  xml.numbers(items);
}

void write_records(const std::optional<int64_t>& records, XmlWriter& xml) {
  if (records) xml.leaf("Counts", {{"totalFreq", std::to_string(*records)}});
}

void write_distribution(const Fit& fit, XmlWriter& xml) {
  if (!fit.summaries.target) return;
  const Distribution& target = *fit.summaries.target;
  const auto data = xml.element(
      "UnivariateData", {{"field", fit.target.variable}, {"description", "TargetDistribution"}});
  write_records(fit.summaries.records, xml);
  const std::pair<std::string_view, double> statistics[] = {
      {"mean", target.mean},   {"stdDeviation", target.deviation},
      {"shape", target.shape}, {"rate", target.rate},
      {"r", target.r},         {"p", target.p}};
  write_statistic("mean", target.mean, xml);
  for (const auto& [name, value] : statistics)
    if (name != "mean" && exists(value)) write_statistic(name, value, xml);
  write_feature("observed", target.bins, xml);
  write_feature("frequency", target.counts, xml);
}

void write_pairs(const Fit& fit, XmlWriter& xml) {
  if (!fit.summaries.predicted) return;
  const Pairs& pairs = *fit.summaries.predicted;
  const auto data = xml.element("BivariateData", {{"description", "observedByPredicted"}});
  write_records(fit.summaries.records, xml);
  {
    const auto observed =
        xml.element("Coordinates", {{"feature", "observed"}, {"field", fit.target.variable}});
    xml.numbers(pairs.observed);
  }
  {
    const auto predicted =
        xml.element("Coordinates", {{"feature", "statistic"}, {"statistic", "predicted"}});
    xml.numbers(pairs.predicted);
  }
  const std::vector<double> ones(pairs.observed.size(), 1.0);
  write_feature("frequency", pairs.counts.empty() ? ones : pairs.counts, xml);
}

void write_f_test(const FTest& test, XmlWriter& xml) {
  if (!exists(test.statistic) && !exists(test.num_df)) return;
  xml.leaf("FTest", {{"fStatistic", number_text(test.statistic)},
                     {"df1", number_text(test.num_df)},
                     {"df2", number_text(test.den_df)},
                     {"sig", number_text(test.p_value)}});
}

void write_tests(const Fit& fit, XmlWriter& xml) {
  const Tests& tests = fit.tests;
  const std::string_view type = tests.type.empty() ? "III" : std::string_view(tests.type);
  if (tests.model) {
    const auto test =
        xml.element("ModelTestStats", {{"description", "correctedModel"}, {"testType", type}});
    write_f_test(*tests.model, xml);
  }
  for (const EffectTest& effect : tests.effects) {
    const auto test = xml.element("ModelTestStats", {{"description", "fixedEffect"},
                                                     {"testID", std::to_string(*effect.effect)},
                                                     {"testType", type}});
    write_f_test(effect, xml);
  }
}

void write_values(std::string_view field, const std::vector<Value>& values, XmlWriter& xml) {
  const auto coordinates = xml.element("Coordinates", {{"field", field}});
  std::vector<std::string_view> items;
  items.reserve(values.size());
  for (const Value& value : values)
    items.push_back(value.text);
  xml.texts(items);
}

void write_first_subject(const Fit& fit, XmlWriter& xml) {
  if (!fit.summaries.first_subject) return;
  const FirstSubject& first = *fit.summaries.first_subject;
  const auto data =
      xml.element("StructuredData", {{"description", "firstSubjectRecordsForDataStructure"}});
  const auto target_size = static_cast<int64_t>(first.target.size());
  write_records(first.records.value_or(target_size), xml);
  const auto segment = xml.element("SegmentData");
  write_segment(first.subject, xml);
  const auto records = xml.element("MultivariateData");
  if (!first.repeated.empty()) {
    const auto group = xml.element("CoordinatesGroup", {{"description", "repeatedMeasures"}});
    for (const auto& [field, values] : first.repeated)
      write_values(field, values, xml);
  }
  const auto group = xml.element("CoordinatesGroup", {{"description", "target"}});
  write_values(fit.target.variable, first.target, xml);
  if (!first.trials.empty()) write_values(fit.target.trials, first.trials, xml);
}

/// The lower triangle, row by row.
std::vector<double> triangle_of(const Matrix& matrix) {
  std::vector<double> items;
  for (size_t row = 0; row < matrix.size(); ++row) {
    items.insert(items.end(), matrix[row].begin(),
                 matrix[row].begin() + static_cast<ptrdiff_t>(row) + 1);
  }
  return items;
}

void write_symmetric(const Matrix& matrix, XmlWriter& xml) {
  const std::string size = std::to_string(matrix.size());
  const auto element =
      xml.element("Matrix", {{"nbRows", size}, {"nbCols", size}, {"kind", "symmetric"}});
  xml.numbers(triangle_of(matrix));
}

void write_matrix_labels(size_t block, size_t terms, XmlWriter& xml) {
  const auto matrix_labels = xml.element("MatrixLabels");
  const auto labels = xml.element("RowColLabels");
  for (size_t term = 0; term < terms; ++term) {
    const auto label = xml.element("Label");
    xml.leaf(
        "PrintableList",
        {{"pattern", random_name(term)}, {"isKey", "false"}, {"mapId", std::to_string(block + 1)}});
  }
}

void write_covariances(const Prepared& prepared, XmlWriter& xml) {
  for (size_t block = 0; block < prepared.fit.random.size(); ++block) {
    const Random& random = prepared.fit.random[block];
    if (random.covariances.empty()) continue;
    const auto data = xml.element("StructuredData", {{"description", "randomEffectCovariances"}});
    write_statistic("block", static_cast<double>(block), xml);
    write_matrix_labels(block, prepared.random[block].size(), xml);
    for (const GroupMatrix& group : random.covariances) {
      const auto segment = xml.element("SegmentData");
      write_segment(group.levels, xml);
      write_symmetric(group.matrix, xml);
    }
  }
}

void write_classification(const Prepared& prepared, XmlWriter& xml) {
  const Fit& fit = prepared.fit;
  const Matrix& classes = fit.summaries.classification;
  if (classes.empty()) return;
  const std::string size = std::to_string(classes.size());
  const auto matrix = xml.element(
      "Matrix", {{"description", "classificationTable"}, {"nbRows", size}, {"nbCols", size}});
  const std::vector<Value>& categories = categories_of(prepared);
  if (fit.target.trials.empty() && !fit.target.trials_constant && !categories.empty()) {
    const auto matrix_labels = xml.element("MatrixLabels");
    const auto labels = xml.element("RowColLabels");
    for (const Value& category : categories)
      xml.leaf("Label", {{"label", category.text}});
  }
  std::vector<double> items;
  for (const std::vector<double>& row : classes)
    items.insert(items.end(), row.begin(), row.end());
  xml.numbers(items);
}

}  // namespace

void write_diagnostics(const Prepared& prepared, XmlWriter& xml) {
  write_statistics(prepared, xml);
  write_distribution(prepared.fit, xml);
  write_pairs(prepared.fit, xml);
  write_tests(prepared.fit, xml);
  write_first_subject(prepared.fit, xml);
  write_covariances(prepared, xml);
  write_classification(prepared, xml);
}

}  // namespace hierfit::fit
