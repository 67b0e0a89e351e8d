// Estimated means, their contrasts and overall tests: `DataGroup`.
#include <algorithm>

#include "import/number_text.h"
#include "import/result_document.h"
#include "import/words.h"

namespace hierfit::fit {
namespace {

/// A column of statistics by the name that the result document has for it.
template <typename Row>
struct StatisticColumn {
  std::string_view name;
  double Row::*number;
};

constexpr StatisticColumn<Mean> kMeanColumns[] = {
    {"mean", &Mean::estimate},
    {"stdErr", &Mean::std_error},
    {"confIntervalLower", &Mean::conf_low},
    {"confIntervalUpper", &Mean::conf_high},
};

constexpr StatisticColumn<Contrast> kContrastColumns[] = {
    {"contrastEstimate", &Contrast::estimate},
    {"stdErr", &Contrast::std_error},
    {"tTest", &Contrast::statistic},
    {"df", &Contrast::df},
    {"adjustedSig", &Contrast::adjusted_p_value},
    {"confIntervalLower", &Contrast::conf_low},
    {"confIntervalUpper", &Contrast::conf_high},
};

/// The kinds of coordinates of contrasts, by the word of their type.
constexpr Word kContrastKinds[] = {
    {"pairwise", "pairwiseContrast"},
    {"deviation", "deviationContrast"},
    {"simple", "simpleContrast"},
};

template <typename Row, size_t N>
void write_columns(const std::vector<Row>& rows,
                   const StatisticColumn<Row> (&columns)[N],
                   XmlWriter& xml) {
  for (const auto& [name, number] : columns) {
    std::vector<double> items;
    items.reserve(rows.size());
    for (const Row& row : rows)
      items.push_back(row.*number);
    const auto coordinates =
        xml.element("Coordinates", {{"feature", "statistic"}, {"statistic", name}});
    xml.numbers(items);
  }
}

std::string_view level_in(const Levels& levels, std::string_view field) {
  const auto found = std::ranges::find(levels, field, &Levels::value_type::first);
  return found == levels.end() ? std::string_view() : std::string_view(found->second.text);
}

void write_coordinates(std::string_view field,
                       const std::vector<std::string_view>& items,
                       XmlWriter& xml) {
  const auto coordinates = xml.element("Coordinates", {{"feature", "fields"}, {"field", field}});
  xml.texts(items);
}

template <typename Row>
void write_fields(const std::vector<Row>& rows,
                  const std::vector<std::string>& fields,
                  XmlWriter& xml) {
  for (const std::string& field : fields) {
    std::vector<std::string_view> items;
    items.reserve(rows.size());
    for (const Row& row : rows)
      items.push_back(level_in(row.levels, field));
    write_coordinates(field, items, xml);
  }
}

void write_estimated_means(const std::vector<Mean>& rows,
                           const std::vector<std::string>& fields,
                           XmlWriter& xml) {
  {
    const auto group = xml.element("CoordinatesGroup", {{"description", "factors"}});
    write_fields(rows, fields, xml);
  }
  write_columns(rows, kMeanColumns, xml);
}

void write_compared(const std::vector<Contrast>& rows, const std::string& field, XmlWriter& xml) {
  std::vector<std::string_view> levels;
  std::vector<std::string_view> others;
  for (const Contrast& row : rows) {
    levels.push_back(row.level->text);
    others.push_back(row.against ? row.against->text : row.level->text);
  }
  write_coordinates(field, levels, xml);
  write_coordinates(field, others, xml);
}

void write_contrasts(const Means& means, const Fit& fit, XmlWriter& xml) {
  const Contrasts& contrasts = *means.contrasts;
  const auto table = xml.element("MultivariateData", {{"description", "contrasts"}});
  const double level = contrasts.significance_level;
  write_statistic("adjustedSigLevel", exists(level) ? level : 1 - fit.conf_level, xml);
  {
    const auto group =
        xml.element("CoordinatesGroup", {{"description", written(kContrastKinds, contrasts.type)}});
    std::vector<std::string> others = means.fields;
    std::erase(others, contrasts.compare);
    write_fields(contrasts.rows, others, xml);
    write_compared(contrasts.rows, contrasts.compare, xml);
  }
  write_columns(contrasts.rows, kContrastColumns, xml);
}

void write_overall_tests(const std::vector<OverallTest>& tests, XmlWriter& xml) {
  for (size_t at = 0; at < tests.size(); ++at) {
    const OverallTest& test = tests[at];
    const auto element = xml.element(
        "ModelTestStats", {{"description", "overallTest"}, {"testID", std::to_string(at)}});
    write_segment(test.levels, xml);
    xml.leaf("FTest", {{"fStatistic", number_text(test.statistic)},
                       {"df1", number_text(test.num_df)},
                       {"df2", number_text(test.den_df)},
                       {"sig", number_text(test.p_value)}});
  }
}

/// The values at which the predictors are held that the means are not of.
void write_held(const Levels& at, XmlWriter& xml) {
  if (at.empty()) return;
  const auto label = xml.element("Label");
  const auto list =
      xml.element("PrintableList", {{"pattern", "Continuous predictors"}, {"isKey", "false"}});
  for (const auto& [field, value] : at) {
    const auto entry = xml.element("PrintableList", {{"pattern", field}});
    xml.leaf("PrintableList", {{"pattern", value.text}});
  }
}

void write_block(const Means& means, size_t position, const Fit& fit, XmlWriter& xml) {
  const auto group = xml.element("DataGroup", {{"description", "customEmmeans"}});
  write_held(means.at, xml);
  write_statistic("EMMEANSIndex", static_cast<double>(position), xml);
  {
    const auto table = xml.element("MultivariateData", {{"description", "estimates"}});
    write_estimated_means(means.rows, means.fields, xml);
  }
  if (means.contrasts) write_contrasts(means, fit, xml);
  write_overall_tests(means.tests, xml);
  for (const std::string& condition : means.conditions)
    write_message(written(kMeansConditions, condition), "", xml);
}

}  // namespace

void write_means(const Prepared& prepared, XmlWriter& xml) {
  const Fit& fit = prepared.fit;
  for (const EffectMeans& effect : fit.effect_means) {
    const auto group = xml.element("DataGroup", {{"description", "Emmeans"}});
    const auto table = xml.element("MultivariateData");
    write_estimated_means(effect.rows, effect.fields, xml);
  }
  for (size_t at = 0; at < fit.means.size(); ++at)
    write_block(fit.means[at], at, fit, xml);
}

}  // namespace hierfit::fit
