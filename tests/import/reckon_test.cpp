// What the import works out, against the numbers that other programs published for the same fits.
#include "import/reckon.h"

#include <cmath>
#include <doctest/doctest.h>
#include <fstream>
#include <map>

#include "import/overall_test.h"
#include "import/prepared.h"
#include "import/read_fit.h"
#include "tests/import/fit_documents.h"

namespace {

using namespace hierfit;
using namespace hierfit::test;

/// An example as published, and as reckoned from estimates, standard errors and df alone.
struct Example {
  fit::Fit published;
  fit::Fit reckoned;
};

Example example(const std::string& name) {
  fit::Problems problems;
  const std::string text = example_fit(name);
  Example both = {fit::read_fit(text, problems), fit::read_fit(text, problems)};
  for (fit::Coefficient& row : both.reckoned.coefficients) {
    row.statistic = row.p_value = row.conf_low = row.conf_high = fit::kMissing;
    row.exp = row.exp_low = row.exp_high = fit::kMissing;
  }
  for (fit::Means& means : both.reckoned.means) {
    for (fit::Contrast& row : means.contrasts->rows) {
      row.statistic = row.adjusted_p_value = row.conf_low = row.conf_high = fit::kMissing;
    }
    for (fit::OverallTest& test : means.tests)
      test.p_value = fit::kMissing;
  }
  for (fit::EffectTest& test : both.reckoned.tests.effects)
    test.p_value = fit::kMissing;
  for (fit::CovarianceParameter& row : both.reckoned.residual.parameters)
    row.statistic = row.p_value = row.conf_low = row.conf_high = fit::kMissing;
  fit::reckon(both.reckoned);
  return both;
}

/// Equal up to what two libraries differ by.
bool near(double a, double b) {
  if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
  return std::abs(a - b) <= 1e-9 * std::max(std::abs(a), std::abs(b));
}

void check_rows(const fit::Estimate& own, const fit::Estimate& published) {
  CHECK(near(own.statistic, published.statistic));
  CHECK(near(own.p_value, published.p_value));
  CHECK(near(own.conf_low, published.conf_low));
  CHECK(near(own.conf_high, published.conf_high));
}

}  // namespace

TEST_CASE("t, p, bounds and exponentials are those that the source publishes") {
  for (const char* name : {"sleepstudy", "cbpp", "salamanders"}) {
    CAPTURE(name);
    const Example both = example(name);
    for (size_t at = 0; at < both.published.coefficients.size(); ++at) {
      CAPTURE(at);
      const fit::Coefficient& own = both.reckoned.coefficients[at];
      const fit::Coefficient& published = both.published.coefficients[at];
      check_rows(own, published);
      CHECK(near(own.exp, published.exp));
      CHECK(near(own.exp_low, published.exp_low));
      CHECK(near(own.exp_high, published.exp_high));
    }
    for (size_t at = 0; at < both.published.tests.effects.size(); ++at) {
      CHECK(
          near(both.reckoned.tests.effects[at].p_value, both.published.tests.effects[at].p_value));
    }
  }
}

TEST_CASE("adjusted p and bounds of contrasts are those that the source publishes") {
  size_t contrasts = 0;
  for (const char* name : {"cbpp", "salamanders"}) {
    CAPTURE(name);
    const Example both = example(name);
    for (size_t block = 0; block < both.published.means.size(); ++block) {
      CAPTURE(block);
      const fit::Means& own = both.reckoned.means[block];
      const fit::Means& published = both.published.means[block];
      for (size_t at = 0; at < published.contrasts->rows.size(); ++at) {
        CAPTURE(at);
        ++contrasts;
        const fit::Contrast& row = own.contrasts->rows[at];
        const fit::Contrast& other = published.contrasts->rows[at];
        CHECK(near(row.statistic, other.statistic));
        CHECK(near(row.adjusted_p_value, other.adjusted_p_value));
        CHECK(near(row.conf_low, other.conf_low));
        CHECK(near(row.conf_high, other.conf_high));
      }
      for (size_t at = 0; at < published.tests.size(); ++at)
        CHECK(near(own.tests[at].p_value, published.tests[at].p_value));
    }
  }
  CHECK(contrasts == 53);
}

TEST_CASE("the interval of a variance is that of its logarithm") {
  const Example both = example("salamanders");
  const fit::CovarianceParameter& dispersion = both.reckoned.residual.parameters[1];
  check_rows(dispersion, both.published.residual.parameters[1]);
}

TEST_CASE("without degrees of freedom a test is one of the normal distribution") {
  CHECK(near(fit::two_sided_p(-1.959963984540054, fit::kMissing), 0.05));
  CHECK(near(fit::reach_of(0.99, fit::kMissing), 2.5758293035489004));
  CHECK(near(fit::upper_p(3.0, 1, fit::kMissing), 0.08326451666355039));
  // The t distribution with one degree of freedom is that of Cauchy.
  CHECK(near(fit::reach_of(0.95, 1), 12.706204736174698));
  CHECK_FALSE(fit::exists(fit::two_sided_p(2, 0)));
}

TEST_CASE("stepwise adjustments keep the order of p") {
  const std::vector<double> p = {0.01, 0.04, 0.03, 0.005, fit::kMissing};
  // p.adjust(c(0.01, 0.04, 0.03, 0.005), "holm")
  const std::vector<double> holm = fit::adjusted(p, "SEQBONFERRONI");
  CHECK(near(holm[0], 0.03));
  CHECK(near(holm[1], 0.06));
  CHECK(near(holm[2], 0.06));
  CHECK(near(holm[3], 0.02));
  CHECK(std::isnan(holm[4]));
  const std::vector<double> sidak = fit::adjusted(p, "SEQSIDAK");
  CHECK(near(sidak[3], 1 - std::pow(0.995, 4)));
  CHECK(near(sidak[1], 1 - std::pow(0.97, 2)));
}

// The one-way analysis of PlantGrowth (Dobson 1983): means 5.032, 4.661, 5.526 of ten plants each,
// residual variance 0.38859 on 27 degrees of freedom, F = 4.846 on 2 and 27, p = 0.0159.
TEST_CASE("an overall test of contrasts is the F test of the factor") {
  constexpr double kMeans[] = {5.032, 4.661, 5.526};
  constexpr double kVariance = 0.388595926 / 10;
  constexpr size_t kPairs[][2] = {{0, 1}, {0, 2}, {1, 2}};
  fit::Contrasts contrasts;
  for (const auto& [a, b] : kPairs) {
    fit::Contrast row;
    row.estimate = kMeans[a] - kMeans[b];
    row.df = 27;
    contrasts.rows.push_back(row);
    std::vector<double>& line = contrasts.covariance.emplace_back();
    for (const auto& [c, d] : kPairs) {
      line.push_back(kVariance * ((a == c) - (a == d) - (b == c) + (b == d)));
    }
  }
  const std::vector<fit::OverallTest> tests = fit::overall_tests(contrasts);
  REQUIRE(tests.size() == 1);
  CHECK(tests[0].num_df == 2);
  CHECK(tests[0].den_df == 27);
  CHECK(std::abs(tests[0].statistic - 4.846088) < 1e-5);
  CHECK(std::abs(fit::upper_p(tests[0].statistic, 2, 27) - 0.01590996) < 1e-7);
}

TEST_CASE("overall tests are made for each of the other levels, and not beside given ones") {
  nlohmann::ordered_json fit = small_fit();
  CHECK(import_json(fit).documents->result.find("description=\"overallTest\"") !=
        std::string::npos);
  nlohmann::ordered_json& means = fit["means"][0];
  means["tests"] = {{{"statistic", 99.5}, {"num.df", 2}, {"den.df", 20}}};
  const std::string result = import_json(fit).documents->result;
  CHECK(result.find("fStatistic=\"99.5\"") != std::string::npos);
  CHECK(result.find("testID=\"1\" testType") != std::string::npos);
}
