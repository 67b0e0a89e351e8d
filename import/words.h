// The words of a fit document that stand for something, and what the result documents write.
#pragma once

#include <span>
#include <string_view>
#include <vector>

namespace hierfit::fit {

struct Word {
  std::string_view name;
  std::string_view written;  ///< in the result documents
};

inline constexpr std::string_view kFormatName = "hierfit-fit-1";

inline constexpr Word kFormats[] = {{kFormatName, ""}};

// clang-format off
inline constexpr Word kLevels[] = {
    {"scale", "continuous"}, {"nominal", "categorical"}, {"ordinal", "ordinal"},
    {"continuous", "continuous"}, {"categorical", "categorical"},
};

inline constexpr Word kTypes[] = {{"number", "double"}, {"integer", "integer"}, {"string", "string"}};

inline constexpr Word kDistributions[] = {
    {"normal", "NORMAL"}, {"gaussian", "NORMAL"}, {"binomial", "BINOMIAL"},
    {"bernoulli", "BINOMIAL"}, {"poisson", "POISSON"}, {"negative binomial", "NEGBIN"},
    {"negbin", "NEGBIN"}, {"nbinom", "NEGBIN"}, {"gamma", "GAMMA"}, {"Gamma", "GAMMA"},
    {"inverse gaussian", "IGAUSS"}, {"inverse.gaussian", "IGAUSS"}, {"nominal", "NOMINAL"},
    {"multinomial", "NOMINAL"}, {"ordinal", "ORDINAL"}, {"cumulative", "ORDINAL"},
    {"other", "OTHER"},
};

inline constexpr Word kLinks[] = {
    {"identity", "IDENTITY"}, {"log", "LOG"}, {"logit", "LOGIT"}, {"probit", "PROBIT"},
    {"cloglog", "CLOGLOG"}, {"loglog", "NLOGLOG"}, {"log complement", "LOGC"},
    {"cauchit", "CAUCHIT"}, {"power", "POWER"}, {"other", "OTHER"},
};

inline constexpr Word kStructures[] = {
    {"variance components", "VC"}, {"ar1", "AR1"}, {"arma11", "ARMA11"},
    {"compound symmetry", "CS"}, {"diagonal", "DIAG"}, {"identity", "ID"}, {"toeplitz", "TP"},
    {"unstructured", "UNSTRUCTURED"}, {"other", "OTHER"},
};

inline constexpr Word kAdjustments[] = {
    {"none", "LSD"}, {"lsd", "LSD"}, {"holm", "SEQBONFERRONI"},
    {"sequential bonferroni", "SEQBONFERRONI"}, {"sequential sidak", "SEQSIDAK"},
    {"other", "NONE"},
};

inline constexpr Word kContrastTypes[] = {
    {"pairwise", "Pairwise"}, {"deviation", "Deviation"}, {"simple", "Simple"},
};

inline constexpr Word kScales[] = {{"response", ""}, {"link", ""}};

inline constexpr Word kDfMethods[] = {
    {"residual", ""}, {"satterthwaite", ""}, {"kenward-roger", ""}, {"containment", ""},
    {"between-within", ""}, {"asymptotic", ""}, {"other", ""},
};

inline constexpr Word kTestTypes[] = {{"I", "I"}, {"II", "II"}, {"III", "III"}, {"IV", "IV"}};

/// Conditions of a fit that reports have a text for.
inline constexpr Word kConditions[] = {
    {"random effects fixed", "kGLMM_C8"}, {"covariance fixed", "kGLMM_C9"},
    {"covariance estimates doubtful", "kGLMM_C10"}, {"not converged", "kGLMM_C11"},
    {"covariance values doubtful", "kGLMM_C18"}, {"means limited", "kGLMM_C24"},
    {"subject unused", "kGLMM_C26"},
};

inline constexpr Word kMeansConditions[] = {
    {"contrasts not computed", "kGLMM_C19_1"}, {"not charted", "kGLMM_C20"},
    {"means not computed", "kGLMM_C25"},
};

/// Covariance parameters that have a translated name.
inline constexpr Word kVariance = {"variance", "Var(^1)"};
inline constexpr Word kResidualParameters[] = {{"variance", "Variance "}, {"dispersion", "Dispersion"}};
inline constexpr Word kRandomParameters[] = {
    kVariance, {"covariance", "Cov(^1,^2)"}, {"correlation", "Corr(^1,^2)"},
};
// clang-format on

/// The word of this name, or null.
const Word* find_word(std::span<const Word> words, std::string_view name);
/// What the result documents write for it; empty for a name that is no word.
std::string_view written(std::span<const Word> words, std::string_view name);
/// The structure as the result documents write it; `otherwise` for one that is not told.
std::string_view structure_or(std::string_view word, std::string_view otherwise);
std::vector<std::string_view> names_of(std::span<const Word> words);

}  // namespace hierfit::fit
