// The fixed coefficients, of one target or of each category of a nominal one.
#include "backend/hierfit/tables/CellText.h"
#include "backend/hierfit/tables/HFITParamEstimatesOutput.h"
#include "backend/hierfit/tables/TableShape.h"
#include "backend/hierfit/tables/TableText.h"

namespace {

constexpr StatisticColumn kCoefficient = {"Coefficient", BpProcedure::Coefficient};
constexpr StatisticColumn kRedundantCoefficient = {"Coefficient", BpProcedure::Count};

constexpr Column<ParamStatData> kTestColumns[] = {
    {{"Std. Error", BpProcedure::CoefficientSE}, &ParamStatData::fStdError},
    {{"t", BpProcedure::GeneralStat}, &ParamStatData::fTTest},
    {{"Sig.", BpProcedure::Significance}, &ParamStatData::fSig},
};
constexpr Column<ParamStatData> kBounds[] = {
    {{"Lower", BpProcedure::Coefficient}, &ParamStatData::fConfIntervalLower},
    {{"Upper", BpProcedure::Coefficient}, &ParamStatData::fConfIntervalUpper},
};
constexpr Column<ParamStatData> kExpCoefficient[] = {
    {{"Exp(Coefficient)", BpProcedure::Coefficient}, &ParamStatData::fExpEstimate},
};
constexpr Column<ParamStatData> kExpBounds[] = {
    {{"Lower", BpProcedure::Coefficient}, &ParamStatData::fExpCILower},
    {{"Upper", BpProcedure::Coefficient}, &ParamStatData::fExpCIUpper},
};

}  // namespace

void HFITParamEstimatesOutput::FixedCoefficientsOutput() {
  const ParamCollect* pParamCollect = fpHFITOutputStats->GetParamCollect();
  if (pParamCollect == nullptr || pParamCollect->fvFixedParamEstim.empty()) return;
  if (fpBuildSettings->fDistribution == Distribution::kNominal) {
    NominalCoefficients(pParamCollect->fvFixedParamEstim);
    return;
  }
  if (!(pParamCollect->fvFixedParamEstim.size() == 1)) return;
  SingleCoefficients(pParamCollect->fvFixedParamEstim.front());
}

void HFITParamEstimatesOutput::SingleCoefficients(const ParamEstimData& estimates) {
  BpPivotTable table =
      fpProcedure->PivotTable(Key("Fixed Coefficients"), Text("FixedCoefficients"), true);
  table.Note(Footnote(TargetNote(*fpBuildSettings, *fpDataSource)));
  table.Caption(DistributionCaption(*fpHFITOutputStats, false));
  BpDimension terms = AddDimension(table, Key("Model Term"), kRows, 1, Shown::TitleAndLabels);
  BpDimension statistics = AddDimension(table, Key("Statistics"), kColumns, 1, Shown::LabelsAlone);

  const IntervalHeadings headings = CoefficientHeadings();
  const bool isOrdinal = fpBuildSettings->fDistribution == Distribution::kOrdinal;
  for (const ParamStatData& row : estimates.fvParamStats) {
    const bool isThreshold =
        isOrdinal && row.fStatIndex < 0 && !row.fRegressionParam.fvFactors.empty();
    if (isThreshold) {
      ThresholdCategory(terms, row);
    } else {
      TermCategory(terms, row);
    }
    CoefficientRow(statistics, headings, row);
  }
}

void HFITParamEstimatesOutput::NominalCoefficients(const std::vector<ParamEstimData>& categories) {
  BpPivotTable table =
      fpProcedure->PivotTable(Key("Fixed Coefficients"), Text("FixedCoefficients"), true);
  table.Note(Footnote(KeyWith("Target ^1", BpVariable(Target(), kVariableInNote))));
  table.Caption(DistributionCaption(*fpHFITOutputStats, true));
  BpDimension terms = AddDimension(table, Key("Model Term"), kRows, 1, Shown::TitleAndLabels);
  BpDimension target =
      AddDimension(table, BpVariable(Target(), kVariableInCell), kRows, 2, Shown::TitleAndLabels);
  BpDimension statistics = AddDimension(table, Key("Statistics"), kColumns, 1, Shown::LabelsAlone);

  const IntervalHeadings headings = CoefficientHeadings();
  for (const ParamEstimData& category : categories) {
    for (const ParamStatData& row : category.fvParamStats) {
      target.Category(TargetValue(category.fTargetCategory));
      TermCategory(terms, row);
      CoefficientRow(statistics, headings, row);
    }
  }
}

HFITParamEstimatesOutput::IntervalHeadings HFITParamEstimatesOutput::CoefficientHeadings() const {
  return {ConfidenceHeading(kConfidenceInterval, *fpBuildSettings),
          ConfidenceHeading(kExpConfidenceInterval, *fpBuildSettings)};
}

BpCategory HFITParamEstimatesOutput::ThresholdCategory(BpDimension& terms,
                                                       const ParamStatData& row) {
  BpGroup thresholds =
      GroupOf(terms, KeyWith("Threshold for ^1=", BpVariable(Target(), kVariableInNote)));
  const CFStatVariableValue& value = row.fRegressionParam.fvFactors.front().fValue;
  return thresholds.Category(BpDataValue(Target(), value.GetObsValue(), kValueAlone));
}

BpCategory HFITParamEstimatesOutput::TermCategory(BpDimension& terms, const ParamStatData& row) {
  const std::string text = row.fRegressionParam.fIsIntercept
                               ? fpHFITOutputStats->GetTranslatedText("Intercept")
                               : row.fParamLabel;
  return terms.Category(*LongTextCell(text));
}

BpDataValue HFITParamEstimatesOutput::TargetValue(const CFStatVariableValue& value) const {
  return BpDataValue(Target(), value.GetObsValue(), kPreferLabel);
}

void HFITParamEstimatesOutput::CoefficientRow(BpDimension& statistics,
                                              const IntervalHeadings& headings,
                                              const ParamStatData& row) {
  if (row.fIsRedundant) {
    BpCategory coefficient = WriteStatistic(statistics, kRedundantCoefficient, 0);
    coefficient.CellNote(Footnote(Key("Redundant coefficient, zero ...")));
  } else {
    WriteStatistic(statistics, kCoefficient, row.fEstimate);
  }
  // A redundant coefficient has none of the other numbers.
  static const ParamStatData kNoNumbers;
  const ParamStatData& numbers = row.fIsRedundant ? kNoNumbers : row;
  WriteColumns(statistics, kTestColumns, numbers);
  BpGroup interval = GroupOf(statistics, headings.interval);
  WriteColumns(interval, kBounds, numbers);

  if (row.fExpEstimate == fMissingValue) return;
  WriteColumns(statistics, kExpCoefficient, numbers);
  BpGroup expInterval = GroupOf(statistics, headings.expInterval);
  WriteColumns(expInterval, kExpBounds, numbers);
}
