// The Model Summary table.
#include "backend/hierfit/tables/CellText.h"
#include "backend/hierfit/tables/HFITOutput.h"
#include "backend/hierfit/tables/LinkPower.h"
#include "backend/hierfit/tables/TableShape.h"

namespace {

constexpr int32_t kSummaryColumnWidth = 150;

/// The key that names the measurement level of a target with categories; null for any other.
const char* MeasurementLevelKey(int32_t distribution) {
  if (distribution == Distribution::kNominal) return "Nominal";
  if (distribution == Distribution::kOrdinal) return "Ordinal";
  return nullptr;
}

/// The rows of a target that counts events, under one head.
void WriteEventRows(BpDimension& content,
                    const BuildSettingsStruct& settings,
                    const VELT_DataSource& dataSource) {
  BpGroup target = GroupOf(content, Key("Target"));
  target.Category(Key("Events"))
      .Cell(BpVariable(dataSource.GetVariable(settings.fTargetIndex), kVariableInCell));
  BpCategory trials = target.Category(Key("Trials"));
  if (settings.fTrialsIndex < 0) {
    trials.Cell(SigDigitNumber(settings.fTrialsValue));
  } else {
    trials.Cell(BpVariable(dataSource.GetVariable(settings.fTrialsIndex), kVariableInCell));
  }
}

void WriteTargetRows(BpDimension& content,
                     const BuildSettingsStruct& settings,
                     const VELT_DataSource& dataSource) {
  if (settings.fUseTrials) {
    WriteEventRows(content, settings, dataSource);
    return;
  }
  content.Category(Key("Target"))
      .Cell(BpVariable(dataSource.GetVariable(settings.fTargetIndex), kVariableInCell));
}

void WriteLinkRow(BpDimension& content,
                  const BuildSettingsStruct& settings,
                  const HFITOutputStats& outputStats) {
  BpCategory link = content.Category(Key("Link Function"));
  if (settings.fLinkParam != kSystemMissing) {
    link.Cell(KeyWith(LinkPowerPattern(settings.fLink, settings.fDistribution),
                      SigDigitNumber(settings.fLinkParam)));
  } else {
    link.Cell(Key(outputStats.LinkFunctionName(settings.fLink, settings.fDistribution, false)));
  }
}

void WriteModelRows(BpDimension& content,
                    const BuildSettingsStruct& settings,
                    const HFITOutputStats& outputStats) {
  if (const char* level = MeasurementLevelKey(settings.fDistribution)) {
    content.Category(Key("Measurement Level")).Cell(Key(level));
  }
  content.Category(Key("Probability Distribution"))
      .Cell(Key(outputStats.DistributionName(settings.fDistribution, false)));
  WriteLinkRow(content, settings, outputStats);
}

void WriteCriterionRows(BpDimension& content, const ModelDiagnostics& diagnostics) {
  BpGroup criteria = GroupOf(content, Key("Information Criterion"));
  WriteStatistic(criteria, {"Akaike Corrected", BpProcedure::GeneralStat}, diagnostics.fAICC);
  WriteStatistic(criteria, {"Bayesian", BpProcedure::GeneralStat}, diagnostics.fBIC);
}

}  // namespace

void HFITOutput::ModelSummaryOutput() {
  if (fpHFITOutputStats == nullptr || fpBuildSettings == nullptr) return;
  const ModelDiagnostics* diagnostics = fpHFITOutputStats->GetModelDiagnostics();
  if (diagnostics == nullptr) return;

  BpPivotTable table = fpProcedure->PivotTable(Key("Model Summary"), Text("ModelSummary"), false);
  table.MinDataColumnWidth(kSummaryColumnWidth);
  BpDimension content = AddDimension(table, Key("Content"), kRows, 1, Shown::LabelsAlone);
  WriteTargetRows(content, *fpBuildSettings, *fpDataSource);
  WriteModelRows(content, *fpBuildSettings, *fpHFITOutputStats);
  WriteCriterionRows(content, *diagnostics);
  table.Caption(KeyWith("Information Criteria, log likelhood ^1 ...",
                        BpNumber(diagnostics->fMinus2LogLikelihood, BpProcedure::GeneralStat())));
}
