// The estimates of covariance parameters, row by row.
#include <string_view>

#include "backend/hierfit/store/EngineMessages.h"
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

constexpr StatisticColumn kEstimate = {"Estimate", BpProcedure::Coefficient};
constexpr StatisticColumn kStdError = {"Std. Error", BpProcedure::Coefficient};
constexpr StatisticColumn kSig = {"Sig.", BpProcedure::Significance};
constexpr StatisticColumn kLower = {"Lower", BpProcedure::Coefficient};
constexpr StatisticColumn kUpper = {"Upper", BpProcedure::Coefficient};

}  // namespace

struct HFITParamEstimatesOutput::StyleRule {
  std::string_view warning;
  uint32_t distributions;
  bool isResidual;
  RowStyle style;
};

/// The first rule that fits decides.
HFITParamEstimatesOutput::RowStyle HFITParamEstimatesOutput::StyleOf(int32_t block) const {
  static constexpr StyleRule kRules[] = {
      {kGLMM_C9, kWithoutScale, true, {1.0, false, false, kGLMM_C9}},
      {kGLMM_C9, kWithoutScale, false, {0.0, true, false, nullptr}},
      {kGLMM_C8, kWithScale, false, {0.0, true, false, nullptr}},
  };
  RowStyle style;
  for (const StyleRule& rule : kRules) {
    const bool fits = rule.warning == fRowWarning && rule.isResidual == (block < 0) &&
                      (rule.distributions & (1u << fpBuildSettings->fDistribution)) != 0;
    if (!fits) continue;
    style = rule.style;
    break;
  }
  if (style.note == nullptr && fHasEstimateNote) style.note = kGLMM_C10;
  return style;
}

void HFITParamEstimatesOutput::AllCovarianceRows(CovarianceTable& table,
                                                 const std::vector<ParamEstimData>& estimates,
                                                 int32_t block) {
  for (const ParamEstimData& data : estimates) {
    OuterCategory(table, data.fFiledData);
    CovarianceRows(table.rows, table.columns, data, block);
  }
}

void HFITParamEstimatesOutput::CovarianceRows(BpDimension& rows,
                                              BpDimension& columns,
                                              const ParamEstimData& paramEstimData,
                                              int32_t block) {
  const RowStyle style = StyleOf(block);
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
    if (style.note != nullptr) estimate.CellNote(Footnote(Key(style.note)));
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
