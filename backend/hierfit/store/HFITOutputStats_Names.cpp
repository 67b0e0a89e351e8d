// The names of distributions, link functions and covariance types.
#include <span>

#include "backend/hierfit/store/HFITOutputStats.h"

namespace {

constexpr std::string_view kUnknownName = "Unknown";

constexpr std::string_view kDistributionNames[] = {
    "Binomial",          "Gamma",  "Inverse Gaussian", "Multinomial", "Multinomial",
    "Negative binomial", "Normal", "Poisson",
};
static_assert(std::size(kDistributionNames) == Distribution::kUnknown);

constexpr std::string_view kCovarianceTypeNames[] = {
    "Variance components",
    "First-order autoregressive",
    "Autoregressive moving average (1,1)",
    "Compound symmetry",
    "Diagonal",
    "Scaled Identity",
    "Toeplitz",
    "Unstructured",
};
static_assert(std::size(kCovarianceTypeNames) == CovarianceType::kUnknown);

/// The names of one link function by the kind of target.
struct LinkNames {
  std::string_view nominal;
  std::string_view ordinal;
  std::string_view other;
};

constexpr LinkNames kLinkNames[] = {
    {kUnknownName, "Cumulative complementary log-log", "Complementary log-log"},
    {kUnknownName, kUnknownName, "Identity"},
    {kUnknownName, kUnknownName, "Log"},
    {kUnknownName, kUnknownName, "Log complement"},
    {"Generalized logit", "Cumulative logit", "Logit"},
    {kUnknownName, "Cumulative negative log-log", "Negative log-log"},
    {kUnknownName, kUnknownName, "Power"},
    {kUnknownName, "Cumulative probit", "Probit"},
    {kUnknownName, "Cumulative Cauchit", kUnknownName},
};
static_assert(std::size(kLinkNames) == Link::kUnknown);

std::string_view NameAt(std::span<const std::string_view> names, int32_t code) {
  const auto position = static_cast<std::size_t>(code);
  return code >= 0 && position < names.size() ? names[position] : kUnknownName;
}

std::string_view LinkName(int32_t link, int32_t distribution) {
  if (link < 0 || link >= Link::kUnknown) return kUnknownName;
  const LinkNames& names = kLinkNames[link];
  if (distribution == Distribution::kNominal) return names.nominal;
  if (distribution == Distribution::kOrdinal) return names.ordinal;
  return names.other;
}

}  // namespace

std::string HFITOutputStats::NameText(std::string_view key, bool translate) const {
  return translate ? GetTranslatedText(std::string(key)) : std::string(key);
}

std::string HFITOutputStats::DistributionName(int32_t distribution, bool translate) const {
  return NameText(NameAt(kDistributionNames, distribution), translate);
}

std::string HFITOutputStats::LinkFunctionName(int32_t link,
                                              int32_t distribution,
                                              bool translate) const {
  return NameText(LinkName(link, distribution), translate);
}

std::string HFITOutputStats::CovarianceTypeName(int32_t covarianceType, bool translate) const {
  return NameText(NameAt(kCovarianceTypeNames, covarianceType), translate);
}
