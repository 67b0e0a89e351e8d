// The estimates of covariance parameters, row by row.
#include <optional>

#include "backend/hierfit/tables/CellText.h"
#include "backend/hierfit/tables/HFITParamEstimatesOutput.h"
#include "backend/hierfit/tables/TableShape.h"
#include "backend/hierfit/tables/TableText.h"

namespace {

constexpr char kResidualVariance[] = "Variance ";

/// A set of distributions, one bit each.
constexpr uint32_t In(std::initializer_list<int32_t> distributions) {
  uint32_t set = 0;
  for (const int32_t distribution : distributions)
    set |= 1u << distribution;
  return set;
}

constexpr uint32_t kWithoutScale = In({Distribution::kBinomial, Distribution::kNominal,
                                       Distribution::kNegativeBinomial, Distribution::kPoisson});
constexpr uint32_t kWithScale =
    In({Distribution::kGamma, Distribution::kInverseGaussian, Distribution::kNormal});

/// How the rows of a table are written when the engine could not estimate them.
struct RowStyle {
  std::optional<double> fixedValue;  ///< in place of the estimate, its error and its bounds
  bool hasErrorAndBounds = true;
  bool hasTest = true;
  bool notesWarning = false;
};

struct StyleRule {
  const char* warning;
  uint32_t distributions;
  bool residual;
  RowStyle style;
};

/// The first rule whose warning is there and that fits decides. When the first warning is there,
/// the rules of the second do not apply.
constexpr StyleRule kStyleRules[] = {
    {"kGLMM_C9", kWithoutScale, true, {1.0, false, false, true}},
    {"kGLMM_C9", kWithoutScale, false, {0.0, true, false, false}},
    {"kGLMM_C8", kWithScale, false, {0.0, true, false, false}},
};

RowStyle StyleOf(const HFITOutputStats& store, int32_t distribution, int32_t block) {
  const std::string_view warning = store.HasWarning("kGLMM_C9")   ? "kGLMM_C9"
                                   : store.HasWarning("kGLMM_C8") ? "kGLMM_C8"
                                                                  : "";
  for (const StyleRule& rule : kStyleRules) {
    const bool fits = rule.warning == warning && rule.residual == (block < 0) &&
                      (rule.distributions & (1u << distribution)) != 0;
    if (fits) return rule.style;
  }
  return {};
}

constexpr StatisticColumn kEstimate = {"Estimate", BpProcedure::Coefficient};
constexpr StatisticColumn kStdError = {"Std. Error", BpProcedure::Coefficient};
constexpr StatisticColumn kSig = {"Sig.", BpProcedure::Significance};
constexpr StatisticColumn kLower = {"Lower", BpProcedure::Coefficient};
constexpr StatisticColumn kUpper = {"Upper", BpProcedure::Coefficient};

}  // namespace

void HFITParamEstimatesOutput::CovarianceRows(BpDimension& rows,
                                              BpDimension& columns,
                                              const ParamEstimData& paramEstimData,
                                              int32_t block) {
  const RowStyle style = StyleOf(*fpHFITOutputStats, fpBuildSettings->fDistribution, block);
  const bool hasEstimateWarning = fpHFITOutputStats->HasWarning("kGLMM_C10");

  const BpComposite intervalTitle = ConfidenceHeading(kConfidenceInterval, *fpBuildSettings);

  for (const ParamStatData& row : paramEstimData.fvParamStats) {
    const auto unlessRedundant = [&](double value) {
      return row.fIsRedundant ? fMissingValue : value;
    };
    const auto fixedOr = [&](double value) {
      return style.fixedValue.value_or(unlessRedundant(value));
    };
    std::string key;
    std::vector<std::string> parameters;
    std::string label;
    fpHFITOutputStats->GetPrintableListText(row.fPrintableList, block, key, parameters, label);

    BpCategory category = rows.Category(Text(label));
    if (block == kResidualBlock && key == kResidualVariance) {
      category.CellNote(Footnote(Key("This is the scale parameter.")));
    }
    BpCategory estimate =
        WriteStatistic(columns, kEstimate, style.fixedValue.value_or(row.fEstimate));
    if (row.fIsRedundant) estimate.CellNote(Footnote(Key("Parameter redundant")));
    if (style.notesWarning) {
      estimate.CellNote(Footnote(Key("kGLMM_C9")));
    } else if (hasEstimateWarning) {
      estimate.CellNote(Footnote(Key("kGLMM_C10")));
    }
    if (style.hasErrorAndBounds) WriteStatistic(columns, kStdError, fixedOr(row.fStdError));
    if (style.hasTest) {
      columns.Category(Text("Z")).Cell(
          BpNumber(unlessRedundant(row.fZTest), BpProcedure::Coefficient()));
      WriteStatistic(columns, kSig, unlessRedundant(row.fSig));
    }
    BpGroup interval = GroupOf(columns, intervalTitle);
    if (style.hasErrorAndBounds) {
      WriteStatistic(interval, kLower, fixedOr(row.fConfIntervalLower));
      WriteStatistic(interval, kUpper, fixedOr(row.fConfIntervalUpper));
    }
  }
}
