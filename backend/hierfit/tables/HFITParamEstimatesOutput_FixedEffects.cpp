// The F tests of the model and its fixed effects.
#include "backend/hierfit/tables/CellText.h"
#include "backend/hierfit/tables/HFITParamEstimatesOutput.h"
#include "backend/hierfit/tables/TableShape.h"
#include "backend/hierfit/tables/TableText.h"

namespace {

constexpr Column<EffectTestData> kTestColumns[] = {
    {{"F", BpProcedure::GeneralStat}, &EffectTestData::fFStatistic},
    {{"df1", BpProcedure::Count}, &EffectTestData::fDf1},
    {{"df2", BpProcedure::Count}, &EffectTestData::fDf2},
    {{"Sig.", BpProcedure::Significance}, &EffectTestData::fSig},
};

}  // namespace

void HFITParamEstimatesOutput::FixedEffectsOutput() {
  const EffectStatData* pEffectStatData = fpHFITOutputStats->GetEffectStatData();
  if (pEffectStatData == nullptr) return;
  const std::size_t nEffects = pEffectStatData->fvFixedEffectTests.size();
  if (!(nEffects == fpBuildSettings->fvFixedEffectList.size())) return;
  if (nEffects == 0 && !fpBuildSettings->fIntercept) return;

  BpPivotTable table = fpProcedure->PivotTable(Key("Fixed Effects"), Text("FixedEffects"), true);
  table.Note(Footnote(TargetNote(*fpBuildSettings, *fpDataSource)));
  table.Caption(DistributionCaption(*fpHFITOutputStats, false));
  BpDimension source = AddDimension(table, Key("Source"), kRows, 1, Shown::TitleAndLabels);
  BpDimension statistics = AddDimension(table, Key("Statistics"), kColumns, 1, Shown::LabelsAlone);
  EffectNames(fpBuildSettings->fvFixedEffectList, fvEffectNames);

  BpCategory model = source.Category(Key("Corrected Model"));
  if (nEffects == 0) model.Note(Footnote(Key("Fixed effects intercept only ...")));
  WriteColumns(statistics, kTestColumns, pEffectStatData->fCorrectedModel);
  for (std::size_t i = 0; i < nEffects; ++i) {
    source.Category(Text(fvEffectNames[i]));
    WriteColumns(statistics, kTestColumns, pEffectStatData->fvFixedEffectTests[i]);
  }
}
