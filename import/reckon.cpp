#include "import/reckon.h"

#include <algorithm>
#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/distributions/fisher_f.hpp>
#include <boost/math/distributions/normal.hpp>
#include <boost/math/distributions/students_t.hpp>
#include <cmath>
#include <map>

#include "import/overall_test.h"
#include "import/words.h"

namespace hierfit::fit {
namespace {

/// Infinite results are results here, not exceptions.
using Policy = boost::math::policies::policy<
    boost::math::policies::overflow_error<boost::math::policies::ignore_error>,
    boost::math::policies::domain_error<boost::math::policies::ignore_error>,
    boost::math::policies::evaluation_error<boost::math::policies::ignore_error>>;
using Normal = boost::math::normal_distribution<double, Policy>;
using StudentT = boost::math::students_t_distribution<double, Policy>;
using FisherF = boost::math::fisher_f_distribution<double, Policy>;
using ChiSquared = boost::math::chi_squared_distribution<double, Policy>;

/// The number, unless it is none that a document could carry.
double finite(double number) { return std::isfinite(number) ? number : kMissing; }

/// How many of each kind of number were reckoned, by their sentence.
class Tally {
 public:
  /// Puts the number where none is, and counts it.
  void fill(double& place, double number, const char* what, const char* of) {
    if (exists(place) || !exists(finite(number))) return;
    place = number;
    ++counts_[{of, what}];
  }

  std::vector<std::string> sentences() const {
    std::vector<std::string> list;
    for (const auto& [kind, count] : counts_) {
      list.push_back(std::string(kind.second) + " of " + std::to_string(count) + " " + kind.first +
                     " reckoned from the estimate");
    }
    return list;
  }

 private:
  std::map<std::pair<std::string, std::string>, size_t> counts_;
};

class Reckoner {
 public:
  explicit Reckoner(Fit& fit) : fit_(fit), level_(fit.conf_level) {}

  std::vector<std::string> run() {
    for (Coefficient& row : fit_.coefficients)
      reckon_coefficient(row);
    for (Random& block : fit_.random)
      for (CovarianceParameter& parameter : block.parameters)
        reckon_parameter(parameter);
    for (CovarianceParameter& parameter : fit_.residual.parameters)
      reckon_parameter(parameter);
    for (EffectMeans& means : fit_.effect_means)
      reckon_means(means.rows, "response");
    for (Means& means : fit_.means) {
      reckon_means(means.rows, means.scale);
      if (means.contrasts) reckon_contrasts(means);
    }
    if (fit_.grand_mean) reckon_bounds(*fit_.grand_mean, level_, "grand mean");
    reckon_tests();
    return tally_.sentences();
  }

 private:
  void reckon_test(Estimate& row, const char* of) {
    if (row.std_error > 0)
      tally_.fill(row.statistic, row.estimate / row.std_error, "statistic", of);
    if (exists(row.statistic) && !exists(row.p_value)) {
      tally_.fill(row.p_value, two_sided_p(row.statistic, row.df), "p.value", of);
    }
  }

  /// Rows often share their degrees of freedom, and a quantile is dear.
  double remembered_reach(double level, double df) {
    const bool has_same_df = df == reach_df_ || (!exists(df) && !exists(reach_df_));
    const bool is_same = level == reach_level_ && has_same_df;
    if (!is_same) {
      reach_ = reach_of(level, df);
      reach_level_ = level;
      reach_df_ = df;
    }
    return reach_;
  }

  void reckon_bounds(Estimate& row, double level, const char* of) {
    if (exists(row.conf_low) && exists(row.conf_high)) return;
    if (!exists(row.std_error)) return;
    const double reach = remembered_reach(level, row.df) * row.std_error;
    tally_.fill(row.conf_low, row.estimate - reach, "conf.low", of);
    tally_.fill(row.conf_high, row.estimate + reach, "conf.high", of);
  }

  void reckon_coefficient(Coefficient& row) {
    const char* of = "coefficients";
    reckon_test(row, of);
    reckon_bounds(row, level_, of);
    const std::string_view link = written(kLinks, fit_.link);
    if (link != "LOG" && link != "LOGIT") return;
    tally_.fill(row.exp, std::exp(row.estimate), "exp", of);
    tally_.fill(row.exp_low, std::exp(row.conf_low), "exp.low", of);
    tally_.fill(row.exp_high, std::exp(row.conf_high), "exp.high", of);
  }

  /// The interval of a number that is above 0 is that of its logarithm.
  void reckon_parameter(CovarianceParameter& row) {
    const char* of = "covariance parameters";
    reckon_test(row, of);
    const bool is_positive = row.parameter == "variance" || row.parameter == "dispersion";
    if (!is_positive || !(row.estimate > 0)) return;
    const double reach = reach_of(level_, kMissing) * row.std_error / row.estimate;
    tally_.fill(row.conf_low, row.estimate * std::exp(-reach), "conf.low", of);
    tally_.fill(row.conf_high, row.estimate * std::exp(reach), "conf.high", of);
  }

  /// Off the scale of the link, an interval is not as far to one side as to the other.
  void reckon_means(std::vector<Mean>& rows, std::string_view scale) {
    if (scale != "link" && written(kLinks, fit_.link) != "IDENTITY") return;
    for (Mean& row : rows)
      reckon_bounds(row, level_, "means");
  }

  void reckon_contrasts(Means& means) {
    Contrasts& contrasts = *means.contrasts;
    std::map<Levels, std::vector<Contrast*>> families;
    for (Contrast& row : contrasts.rows) {
      reckon_test(row, "contrasts");
      families[in_order(row.levels)].push_back(&row);
    }
    for (auto& [key, family] : families)
      reckon_family(family);
    if (!contrasts.covariance.empty() && means.tests.empty()) add_overall_tests(means);
  }

  /// Stepwise adjustments have no intervals of their own; those of their single-step kin serve.
  void reckon_family(const std::vector<Contrast*>& family) {
    std::vector<double> p_values;
    p_values.reserve(family.size());
    for (const Contrast* row : family)
      p_values.push_back(row->p_value);
    const std::string_view method = written(kAdjustments, fit_.adjust);
    const std::vector<double> p_adjusted = adjusted(p_values, method);
    const auto count = static_cast<double>(family.size());
    double level = level_;
    if (method == "SEQBONFERRONI") level = 1 - (1 - level_) / count;
    if (method == "SEQSIDAK") level = std::pow(level_, 1 / count);
    if (method == "NONE") return;
    for (size_t at = 0; at < family.size(); ++at) {
      tally_.fill(family[at]->adjusted_p_value, p_adjusted[at], "adj.p.value", "contrasts");
      reckon_bounds(*family[at], level, "contrasts");
    }
  }

  void add_overall_tests(Means& means) {
    means.tests = overall_tests(*means.contrasts);
    for (OverallTest& test : means.tests) {
      double p = kMissing;
      tally_.fill(p, upper_p(test.statistic, test.num_df, test.den_df), "overall tests",
                  "contrasts");
      test.p_value = p;
    }
  }

  void reckon_tests() {
    if (fit_.tests.model) reckon_f(*fit_.tests.model);
    for (EffectTest& test : fit_.tests.effects)
      reckon_f(test);
    for (Means& means : fit_.means)
      for (OverallTest& test : means.tests)
        reckon_f(test);
  }

  void reckon_f(FTest& test) {
    if (exists(test.p_value)) return;
    tally_.fill(test.p_value, upper_p(test.statistic, test.num_df, test.den_df), "p.value",
                "F tests");
  }

  Fit& fit_;
  double level_;
  double reach_ = kMissing;
  double reach_level_ = kMissing;
  double reach_df_ = kMissing;
  Tally tally_;
};

}  // namespace

double two_sided_p(double statistic, double df) {
  if (!exists(statistic) || df <= 0) return kMissing;
  const double size = std::abs(statistic);
  if (!exists(df)) return 2 * boost::math::cdf(boost::math::complement(Normal(), size));
  return 2 * boost::math::cdf(boost::math::complement(StudentT(df), size));
}

double reach_of(double level, double df) {
  if (!(level > 0 && level < 1) || df <= 0) return kMissing;
  const double tail = (1 - level) / 2;
  if (!exists(df)) return boost::math::quantile(boost::math::complement(Normal(), tail));
  return boost::math::quantile(boost::math::complement(StudentT(df), tail));
}

double upper_p(double statistic, double num_df, double den_df) {
  if (!(statistic >= 0) || !(num_df > 0) || den_df <= 0) return kMissing;
  if (!exists(den_df)) {
    return boost::math::cdf(boost::math::complement(ChiSquared(num_df), statistic * num_df));
  }
  return boost::math::cdf(boost::math::complement(FisherF(num_df, den_df), statistic));
}

std::vector<double> adjusted(const std::vector<double>& p_values, std::string_view method) {
  const bool holm = method == "SEQBONFERRONI";
  if (!holm && method != "SEQSIDAK") return p_values;
  std::vector<size_t> order;
  for (size_t at = 0; at < p_values.size(); ++at)
    if (exists(p_values[at])) order.push_back(at);
  std::ranges::sort(order, {}, [&](size_t at) { return p_values[at]; });
  std::vector<double> all(p_values.size(), kMissing);
  double highest = 0;
  for (size_t rank = 0; rank < order.size(); ++rank) {
    const auto left = static_cast<double>(order.size() - rank);
    const double p = p_values[order[rank]];
    const double step = holm ? left * p : -std::expm1(left * std::log1p(-p));
    highest = std::max(highest, std::min(1.0, step));
    all[order[rank]] = highest;
  }
  return all;
}

std::vector<std::string> reckon(Fit& fit) { return Reckoner(fit).run(); }

}  // namespace hierfit::fit
