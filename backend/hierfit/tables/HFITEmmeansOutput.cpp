#include "backend/hierfit/tables/HFITEmmeansOutput.h"

#include "backend/hierfit/charts/HFITChartOutput.h"
#include "backend/hierfit/frame/Messages.h"
#include "backend/hierfit/store/EffectText.h"
#include "backend/hierfit/store/EngineMessages.h"
#include "backend/hierfit/tables/CellText.h"
#include "backend/hierfit/tables/TableShape.h"
#include "backend/hierfit/tables/TableText.h"

namespace {

constexpr std::size_t kManyBlocks = 20;

constexpr Column<ModelDiagnostics> kMeanColumns[] = {
    {{"Mean", BpProcedure::Coefficient}, &ModelDiagnostics::fGrandMean},
    {{"Std. Error", BpProcedure::Coefficient}, &ModelDiagnostics::fGrandMeanStdErr},
};
constexpr Column<ModelDiagnostics> kMeanBounds[] = {
    {{"Lower", BpProcedure::Coefficient}, &ModelDiagnostics::fGrandMeanCILower},
    {{"Upper", BpProcedure::Coefficient}, &ModelDiagnostics::fGrandMeanCIUpper},
};

}  // namespace

HFITEmmeansOutput::HFITEmmeansOutput(BpProcedure* procedure,
                                     ProcedureDataSource* dataSource,
                                     HFITOutputStats* outputStats)
    : fpProcedure(procedure),
      fpDataSource(dataSource),
      fpHFITOutputStats(outputStats),
      fpBuildSettings(outputStats == nullptr ? nullptr : outputStats->GetBuildSettings()),
      fpEmmeansList(outputStats == nullptr ? nullptr : outputStats->GetEmmeansList()) {}

void HFITEmmeansOutput::EmmeansOutput() {
  if (fpBuildSettings == nullptr || fpEmmeansList == nullptr || fpEmmeansList->empty()) return;
  GrandMeansOutput();
  for (const EmmeansData& emmeansData : *fpEmmeansList)
    BlockOutput(emmeansData);
}

void HFITEmmeansOutput::GrandMeansOutput() {
  const ModelDiagnostics* diagnostics = fpHFITOutputStats->GetModelDiagnostics();
  if (diagnostics == nullptr) return;
  BpPivotTable table = fpProcedure->PivotTable(BlockTitle(-1), Text("GrandMeans"), true);
  table.Note(Footnote(TargetNote(*fpBuildSettings, *fpDataSource)));
  if (fpEmmeansList->size() >= kManyBlocks && fpHFITOutputStats->HasWarning(kGLMM_C24)) {
    table.Caption(Key(kGLMM_C24));
  }
  BpDimension statistics = AddDimension(table, Key("Statistics"), kColumns, 1, Shown::LabelsAlone);
  WriteColumns(statistics, kMeanColumns, *diagnostics);
  BpGroup interval = GroupOf(statistics, ConfidenceHeading(kConfidenceInterval, *fpBuildSettings));
  WriteColumns(interval, kMeanBounds, *diagnostics);
}

void HFITEmmeansOutput::BlockOutput(const EmmeansData& emmeansData) {
  const auto nEMMEANS = static_cast<int64_t>(fpBuildSettings->fvEmmeansSpecs.size());
  if (emmeansData.fEmmeansIndex < 0 || !(emmeansData.fEmmeansIndex < nEMMEANS)) return;
  BpHeading heading = fpProcedure->Heading(BlockTitle(emmeansData.fEmmeansIndex));
  if (HasWarning(emmeansData.fvWarningList, kGLMM_C25)) {
    ReportBlock(Text("EMMEANS"), emmeansData, kGLMM_C25);
    return;
  }
  EstimatesOutput(heading, emmeansData);
  HFITChartOutput chart(fpProcedure, fpDataSource, fpHFITOutputStats);
  chart.CustomEffectsOutput(emmeansData);
  ContrastsOutput(heading, emmeansData);
  OverallTestsOutput(heading, emmeansData);
}

/// The title of a request's block; -1 is that of the grand means.
BpComposite HFITEmmeansOutput::BlockTitle(int32_t index) const {
  if (index < 0) return KeyWith("EMMEANS Grand Mean ...");
  const std::vector<EmmeansSpec>& specs = fpBuildSettings->fvEmmeansSpecs;
  const BpString effect = Text(EmmeansEffectText(specs[static_cast<std::size_t>(index)].fFactors));
  if (specs.size() == 1) return KeyWith("EMMEANS Effect ^1 ...", effect);
  return KeyWith("EMMEANS Effect ^1 block ^2 ...", effect,
                 BpNumber(static_cast<double>(index) + 1, BpProcedure::Count()));
}

std::string HFITEmmeansOutput::EmmeansEffectText(const EffectStruct& effect) const {
  return JoinEffectFields(effect, [&](std::size_t field) -> std::string_view {
    const VELT_Variable* variable = fpDataSource->GetVariable(effect.fvVarIndices[field]);
    if (variable == nullptr) return {};
    const char* label = variable->GetLabel();
    return label != nullptr ? label : std::string_view(variable->GetName());
  });
}

const EmmeansSpec& HFITEmmeansOutput::SpecOf(const EmmeansData& emmeansData) const {
  return fpBuildSettings->fvEmmeansSpecs[static_cast<std::size_t>(emmeansData.fEmmeansIndex)];
}

VELT_Variable* HFITEmmeansOutput::FindVariable(const std::string& name) const {
  const int32_t index = fpDataSource->FindVarIndex(name, 0);
  return index < 0 ? nullptr : fpDataSource->GetVariable(index);
}

BpDimension HFITEmmeansOutput::AddFactor(BpPivotTable& table,
                                         const VELT_Variable* factor,
                                         int32_t level) const {
  return AddDimension(table, BpVariable(factor, kVariableInNote), kRows, level,
                      Shown::TitleAndLabels);
}

BpDataValue HFITEmmeansOutput::CoordinateValue(const std::string& text,
                                               const VELT_Variable* variable) {
  fTempValue.SetCompleteValue(text, variable, 0);
  return BpDataValue(variable, fTempValue.GetObsValue(), kPreferLabel);
}

/// Tells, in place of a table, what the engine reported of a block.
void HFITEmmeansOutput::ReportBlock(const BpString& subject,
                                    const EmmeansData& emmeansData,
                                    const char* key) const {
  BpComposite text("^1 ^2: ^3", false);
  text.Add(subject);
  text.Add(BpNumber(static_cast<double>(emmeansData.fEmmeansIndex) + 1, BpProcedure::Count()));
  text.Add(Key(key));
  text.Finish();
  BpError(text, kShowInOutput, kWarningLevel);
}
