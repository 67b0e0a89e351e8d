#include "report/chart/distribution.h"

#include <cmath>
#include <iterator>
#include <numbers>

namespace hierfit::report::chart {
namespace {

double normal(double x, double mean, double deviation) {
  const double z = (x - mean) / deviation;
  return std::exp(-z * z / 2) / (deviation * std::sqrt(2 * std::numbers::pi));
}

double gamma(double x, double shape, double rate) {
  if (x <= 0) return 0;
  return std::exp(shape * std::log(rate) + (shape - 1) * std::log(x) - rate * x -
                  std::lgamma(shape));
}

double inverse_gaussian(double x, double mean, double shape) {
  if (x <= 0) return 0;
  const double z = (x - mean) / mean;
  return std::sqrt(shape / (2 * std::numbers::pi * x * x * x)) * std::exp(-shape * z * z / (2 * x));
}

/// Failures ahead of the r-th success, each success of probability `p`.
double negative_binomial(double x, double r, double p) {
  if (x < 0) return 0;
  return std::exp(std::lgamma(x + r) - std::lgamma(x + 1) - std::lgamma(r) + r * std::log(p) +
                  x * std::log1p(-p));
}

double poisson(double x, double mean, double) {
  if (x < 0) return 0;
  return std::exp(x * std::log(mean) - mean - std::lgamma(x + 1));
}

bool positive(double value) { return std::isfinite(value) && value > 0; }
bool both_positive(double first, double second) { return positive(first) && positive(second); }
bool first_positive(double first, double) { return positive(first); }
bool trials(double r, double p) { return positive(r) && p > 0 && p < 1; }

struct Method {
  std::string_view name;
  bool (*valid)(double, double);
  double (*density)(double, double, double);
};
constexpr Method kMethods[] = {
    {"normal", both_positive, normal},
    {"gamma", both_positive, gamma},
    {"gaussianinverse", both_positive, inverse_gaussian},
    {"binomialnegative", trials, negative_binomial},
    {"poisson", first_positive, poisson},
};

}  // namespace

std::function<double(double)> density_of(const Distribution& distribution,
                                         double mean,
                                         double deviation) {
  for (const auto& [name, valid, density] : kMethods) {
    if (name != distribution.method) continue;
    const bool of_data = name == "normal";
    const double first = of_data ? mean : distribution.parameter;
    const double second = of_data ? deviation : distribution.secondary;
    if (of_data ? !positive(deviation) : !valid(first, second)) return {};
    return [=, density = density](double x) { return density(x, first, second); };
  }
  return {};
}

}  // namespace hierfit::report::chart
