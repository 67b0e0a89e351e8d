#include "import/pair_facts.h"

namespace hierfit::fit {
namespace {

using enum FactKind;
using Words = std::string_view;

constexpr Words kDistributionWords[] = {"BINOMIAL", "GAMMA",  "IGAUSS", "NOMINAL",
                                        "ORDINAL",  "NEGBIN", "NORMAL", "POISSON"};
constexpr Words kLinkWords[] = {"CLOGLOG", "IDENTITY", "LOG",    "LOGC",   "LOGIT",
                                "NLOGLOG", "POWER",    "PROBIT", "CAUCHIT"};
constexpr Words kStructureWords[] = {"VC",   "AR1", "ARMA11", "CS",
                                     "DIAG", "ID",  "TP",     "UNSTRUCTURED"};
constexpr Words kAdjustmentWords[] = {"LSD", "SEQBONFERRONI", "SEQSIDAK", "NONE"};
constexpr Words kContrastWords[] = {"Pairwise", "Deviation", "Simple", "None"};
constexpr Words kReferenceWords[] = {"Last", "Value"};
constexpr Words kParameterWords[] = {"fixed", "repeated", "random"};
constexpr Words kFeatureWords[] = {"observed", "frequency", "statistic", "fields"};
constexpr Words kGroupWords[] = {"factors",          "repeatedMeasures",  "target",
                                 "pairwiseContrast", "deviationContrast", "simpleContrast"};
constexpr Words kTestWords[] = {"I", "II", "III", "IV"};
constexpr Words kOptypeWords[] = {"categorical", "ordinal", "continuous"};

constexpr const char* kUnknown = "reports show it as unknown";
constexpr const char* kDropped = "what is below it is left out";

// clang-format off
constexpr Fact kResult[] = {
    {"Parameter", "TargetField", "value", Field},
    {"Parameter", "TrialsField", "value", Field},
    {"Parameter", "TrialsValue", "value", Number},
    {"Parameter", "UseTrials", "value", Truth},
    {"Parameter", "Intercept", "value", Truth},
    {"Parameter", "DistributionOfTarget", "value", Word, kDistributionWords, kUnknown},
    {"Parameter", "LinkFunctionType", "value", Word, kLinkWords, kUnknown},
    {"Parameter", "LinkFunctionParam", "value", Number},
    {"Parameter", "ResidualCovarianceType", "value", Word, kStructureWords, kUnknown},
    {"Parameter", "ResidualCovarianceTBand", "value", Number},
    {"Parameter", "CIn", "value", Level},
    {"Parameter", "pAdjustment", "value", Word, kAdjustmentWords, "no note tells of it"},
    {"Attribute", "Intercept", "value", Truth},
    {"Attribute", "CovarianceType", "value", Word, kStructureWords, kUnknown},
    {"Attribute", "CovarianceTBand", "value", Number},
    {"Attribute", "EstimateMeans", "value", Truth},
    {"Attribute", "CompareFactor", "value", Field},
    {"Attribute", "ContrastType", "value", Word, kContrastWords, "contrasts may be left out"},
    {"Attribute", "ReferenceType", "value", Word, kReferenceWords, "the reference is not told"},
    {"Value of Fields", "", "value", Field},
    {"Value of GroupSpec", "", "value", Field},
    {"Value of ResidualGroupSpec", "", "value", Field},
    {"Value of NestingLevels", "", "value", Count},
    {"Statistic", "AICC", "value", Number},
    {"Statistic", "BIC", "value", Number},
    {"Statistic", "minus2LogLikelihood", "value", Number},
    {"Statistic", "classificationAccuracy", "value", Number},
    {"Statistic", "numOfCovParamOfRepeated", "value", Count},
    {"Statistic", "numOfCovParamOfRandom", "value", Count},
    {"Statistic", "numOfColsOfFixed", "value", Count},
    {"Statistic", "numOfColsOfRandom", "value", Count},
    {"Statistic", "numOfCommonSubjects", "value", Count},
    {"Statistic", "grandMean", "value", Number},
    {"Statistic", "grandMeanStdErr", "value", Number},
    {"Statistic", "grandMeanCILower", "value", Number},
    {"Statistic", "grandMeanCIUpper", "value", Number},
    {"Statistic", "mean", "value", Number},
    {"Statistic", "stdDeviation", "value", Number},
    {"Statistic", "block", "value", Count},
    {"Statistic", "fixedEffectIndex", "value", Count},
    {"Statistic", "EMMEANSIndex", "value", Count},
    {"Statistic", "adjustedSigLevel", "value", Level},
    {"ParameterEstimates", "", "parameterType", Word, kParameterWords, kDropped},
    {"ParameterEstimates", "", "block", Count},
    {"ParameterStats", "", "estimate", Number},
    {"ParameterStats", "", "stdError", Number},
    {"ParameterStats", "", "df", Number},
    {"ParameterStats", "", "confIntervalLower", Number},
    {"ParameterStats", "", "confIntervalUpper", Number},
    {"ParameterStats", "", "tTest", Number},
    {"ParameterStats", "", "zTest", Number},
    {"ParameterStats", "", "sig", Number},
    {"ParameterStats", "", "chiSquare", Number},
    {"ParameterStats", "", "expEstimate", Number},
    {"ParameterStats", "", "expCILower", Number},
    {"ParameterStats", "", "expCIUpper", Number},
    {"ParameterStats", "", "isRedundant", Truth},
    {"RegressionParameter", "", "isIntercept", Truth},
    {"Covariate", "", "field", Field},
    {"Covariate", "", "power", Count},
    {"Factor", "", "field", Field},
    {"Factor", "", "nest", Truth},
    {"FieldInfo", "", "fieldName", Field},
    {"FTest", "", "fStatistic", Number},
    {"FTest", "", "df1", Number},
    {"FTest", "", "df2", Number},
    {"FTest", "", "sig", Number},
    {"ModelTestStats", "", "testType", Word, kTestWords, "the type is not told"},
    {"Coordinates", "", "field", Field},
    {"Coordinates", "", "feature", Word, kFeatureWords, kDropped},
    {"CoordinatesGroup", "", "description", Word, kGroupWords, kDropped},
    {"Counts", "", "totalFreq", Number},
    {"Matrix", "", "nbRows", Count},
    {"Matrix", "", "nbCols", Count},
};

constexpr Fact kModel[] = {
    {"DataField", "", "optype", Word, kOptypeWords, "the variable has no level of measurement"},
    {"MiningField", "", "name", Field},
};
// clang-format on

}  // namespace

std::span<const Fact> result_facts() { return kResult; }
std::span<const Fact> model_facts() { return kModel; }

}  // namespace hierfit::fit
