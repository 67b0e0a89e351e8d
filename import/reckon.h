// Works out the statistics that an estimate and its standard error tell.
#pragma once

#include <string>
#include <vector>

#include "import/fit.h"

namespace hierfit::fit {

/// The confidence level of a fit that does not say.
inline constexpr double kUsualLevel = 0.95;

/// Twice the tail beyond a t statistic, or beyond a z statistic when `df` does not exist.
double two_sided_p(double statistic, double df);
/// How many standard errors an interval of this level reaches to either side.
double reach_of(double level, double df);
/// The tail beyond an F statistic; that of a chi-square over its degrees of freedom when `den_df`
/// does not exist.
double upper_p(double statistic, double num_df, double den_df);

/// Adjusts the p values of one family: "holm" or "sequential sidak", else they stay.
std::vector<double> adjusted(const std::vector<double>& p_values, std::string_view method);

/// Fills in what a fit does not give: t or z, p, bounds and exponentials of the coefficients, of
/// covariance parameters, of means and of contrasts, adjusted p, overall tests. Gives a sentence
/// for each kind of number that was reckoned.
std::vector<std::string> reckon(Fit& fit);

}  // namespace hierfit::fit
