// The tables of the covariance structure: matrices of the random effects, a summary, the residual
// effect and the blocks of random effects.
#include <algorithm>
#include <optional>

#include "backend/hierfit/store/EngineMessages.h"
#include "backend/hierfit/tables/CellText.h"
#include "backend/hierfit/tables/HFITParamEstimatesOutput.h"
#include "backend/hierfit/tables/TableShape.h"
#include "backend/hierfit/tables/TableText.h"

namespace {

constexpr char kSubjectCaption[] = "Covariance Structure ^1 Subject Specification ^2 ...";
constexpr char kNoSubjectCaption[] = "Covariance Structure ^1 ...";

/// A warning that the caption repeats, and the one distribution for which it does not.
struct CaptionWarning {
  const char* key;
  int32_t notFor;
};
constexpr int32_t kForAll = -1;
constexpr CaptionWarning kCaptionWarnings[] = {
    {kGLMM_C18, kForAll},
    {kGLMM_C23, Distribution::kOrdinal},
    {kGLMM_C28, kForAll},
};

struct SummaryRow {
  const char* key;
  int32_t ModelDiagnostics::*count;
};

BpCategory WriteCount(BpGroup& group, const SummaryRow& row, const ModelDiagnostics& diagnostics) {
  BpCategory category = group.Category(Key(row.key));
  category.Cell(BpNumber(diagnostics.*row.count, BpProcedure::Count()));
  return category;
}

/// Whether the matrix has a row and a column for each label. It may have more; a table shows as
/// many as there are labels.
bool HasPlaceFor(const MatrixData& matrix, std::size_t labelCount) {
  return matrix.fvRows.size() >= labelCount &&
         std::ranges::all_of(matrix.fvRows, [labelCount](const MatrixRowData& row) {
           return row.fvValues.size() >= labelCount;
         });
}

bool IsParallel(const SegmentInfoData& segment) {
  return segment.fvVarIndices.size() == segment.fSubjectValues.size();
}

bool HasOneValue(const SegmentInfoData& segment) { return segment.fSubjectValues.size() == 1; }

void FillMatrix(BpDimension& rows,
                BpDimension& columns,
                const std::vector<std::string>& labels,
                const MatrixData& matrix) {
  for (std::size_t i = 0; i < labels.size(); ++i) {
    rows.Category(Text(labels[i]));
    for (std::size_t j = 0; j < labels.size(); ++j) {
      columns.Category(Text(labels[j]))
          .Cell(BpNumber(matrix.fvRows[i].fvValues[j], BpProcedure::GeneralStat()));
    }
  }
}

BpComposite BlockTitle(double block) {
  return KeyWith("Random Effect Block ^1", BpNumber(block + 1, BpProcedure::Count()));
}

}  // namespace

bool HFITParamEstimatesOutput::HasNoSubjects() const { return !fRowWarning.empty(); }

std::string HFITParamEstimatesOutput::SubjectText(const EffectStruct& subjectSpec) {
  if (subjectSpec.fvFieldNames.empty()) return "(None)";
  std::vector<std::string> names;
  EffectNames({subjectSpec}, names);
  return names.front();
}

BpComposite HFITParamEstimatesOutput::GroupLabel(const SegmentInfoData& segment) const {
  BpComposite label(segment.fvVarIndices.size() == 1 ? "EffectVar1" : "EffectVar2", true);
  label.Sublist();
  for (std::size_t i = 0; i < segment.fvVarIndices.size(); ++i) {
    const VELT_Variable* variable = fpDataSource->GetVariable(segment.fvVarIndices[i]);
    label.Add(BpVariable(variable, kVariableInCell));
    label.Add(BpDataValue(variable, segment.fSubjectValues[i].GetObsValue(), kPreferLabel));
  }
  label.EndSublist();
  label.Finish();
  return label;
}

/// The warnings of the engine that the caption repeats, as its last argument.
void HFITParamEstimatesOutput::AddWarningList(BpComposite& caption) const {
  std::vector<const char*> keys;
  for (const CaptionWarning& warning : kCaptionWarnings) {
    const bool applies = fpBuildSettings->fDistribution != warning.notFor;
    if (fpHFITOutputStats->HasWarning(warning.key) && applies) keys.push_back(warning.key);
  }
  if (keys.empty()) return;
  caption.Sublist();
  for (const char* key : keys)
    caption.Add(Key(key));
  caption.EndSublist();
}

const RandomSpec* HFITParamEstimatesOutput::SpecOf(int64_t block) const {
  const auto count = static_cast<int64_t>(fpBuildSettings->fvRandomSpecs.size());
  return block >= 0 && block < count
             ? &fpBuildSettings->fvRandomSpecs[static_cast<std::size_t>(block)]
             : nullptr;
}

HFITParamEstimatesOutput::Layout HFITParamEstimatesOutput::LayoutOf(
    const std::vector<std::string>& groupSpec) const {
  if (!groupSpec.empty()) return Layout::ByGroup;
  return fpBuildSettings->fDistribution == Distribution::kNominal ? Layout::ByTarget
                                                                  : Layout::Plain;
}

bool HFITParamEstimatesOutput::Fits(Layout layout, const SegmentInfoData& segment) {
  return layout == Layout::ByGroup ? IsParallel(segment)
                                   : layout == Layout::Plain || HasOneValue(segment);
}

bool HFITParamEstimatesOutput::AllFit(Layout layout, const std::vector<ParamEstimData>& estimates) {
  return std::ranges::all_of(
      estimates, [layout](const ParamEstimData& data) { return Fits(layout, data.fFiledData); });
}

/// The outer row dimension: the groups, or the categories of the target.
BpDimension HFITParamEstimatesOutput::AddOuterDimension(BpPivotTable& table, Layout layout) const {
  if (layout == Layout::ByGroup) {
    return AddDimension(table, Key("Grouping"), kRows, 2, Shown::TitleAndLabels);
  }
  return AddDimension(table, BpVariable(Target(), kVariableInCell), kRows, 2,
                      Shown::TitleAndLabels);
}

/// The caption names the structure and, unless there are no subjects, their specification.
HFITParamEstimatesOutput::CovarianceTable HFITParamEstimatesOutput::LayOut(
    BpPivotTable table, const CovarianceLayout& layout) {
  const bool hasSubjects = layout.subjects != nullptr;
  BpComposite caption(hasSubjects ? kSubjectCaption : kNoSubjectCaption, true);
  caption.Add(Text(fpHFITOutputStats->CovarianceTypeName(layout.covarianceType, true)));
  if (hasSubjects) caption.Add(Text(SubjectText(*layout.subjects)));
  if (layout.repeatsWarnings) AddWarningList(caption);
  caption.Finish();
  table.Caption(caption);
  BpDimension rows = AddDimension(table, Key(layout.rows), kRows, 1, Shown::TitleAndLabels);
  std::optional<BpDimension> outer;
  if (layout.layout != Layout::Plain) outer = AddOuterDimension(table, layout.layout);
  BpDimension columns = AddDimension(table, Key(layout.columns), kColumns, 1, Shown::LabelsAlone);
  return {layout.layout, rows, outer, columns};
}

/// Asks for the row of the outer dimension, if there is one.
void HFITParamEstimatesOutput::OuterCategory(CovarianceTable& table,
                                             const SegmentInfoData& segment) const {
  if (table.layout == Layout::ByGroup) {
    table.outer->Category(GroupLabel(segment));
  } else if (table.layout == Layout::ByTarget) {
    table.outer->Category(TargetValue(segment.fSubjectValues.front()));
  }
}

void HFITParamEstimatesOutput::RandomEffectCovariancesOutput() {
  const StructuredData* structuredData = fpHFITOutputStats->GetStructuredData();
  if (structuredData == nullptr || structuredData->fvRandEffCovars.empty()) return;
  BpHeading heading = fpProcedure->Heading(Key("Random Effect Covariances"));
  for (std::size_t i = 0; i < structuredData->fvRandEffCovars.size(); ++i) {
    RandomEffectBlockOutput(heading, structuredData->fvRandEffCovars[i], i);
  }
}

void HFITParamEstimatesOutput::RandomEffectBlockOutput(BpHeading& heading,
                                                       const RandEffCovarsData& randEffCovars,
                                                       std::size_t block) {
  const RandomSpec* spec = SpecOf(static_cast<int64_t>(block));
  if (spec == nullptr) return;
  const Layout layout = LayoutOf(spec->fvGroupSpec);
  const std::vector<MatrixData>& matrices = randEffCovars.fMatrixValues;
  const std::vector<SegmentInfoData>& segments = randEffCovars.fSimpleSubjects;
  const std::vector<std::string>& labels = randEffCovars.fvEffectLabels;
  const std::size_t nCat = matrices.size();
  const auto hasPlace = [&](const MatrixData& matrix) {
    return HasPlaceFor(matrix, labels.size());
  };
  const auto fits = [&](const SegmentInfoData& subjectData) { return Fits(layout, subjectData); };
  if (!(segments.size() == nCat) || (layout == Layout::Plain && !(nCat == 1))) return;
  if (!std::ranges::all_of(matrices, hasPlace) || !std::ranges::all_of(segments, fits)) return;

  CovarianceTable table = LayOut(
      heading.PivotTable(BlockTitle(static_cast<double>(block)), Text("RandomEffects"), true),
      {.layout = layout,
       .covarianceType = spec->fCovType,
       .subjects = &spec->fSubjectSpec,
       .repeatsWarnings = false,
       .rows = "Random Effect Block",
       .columns = "Random Effect Block Column"});
  for (std::size_t g = 0; g < nCat; ++g) {
    OuterCategory(table, segments[g]);
    FillMatrix(table.rows, table.columns, labels, matrices[g]);
  }
}

void HFITParamEstimatesOutput::CovarianceParametersOutput() {
  const ModelDiagnostics* pModelDiagnotics = fpHFITOutputStats->GetModelDiagnostics();
  if (pModelDiagnotics == nullptr) return;
  BpHeading heading = fpProcedure->Heading(Key("Covariance Parameters"));
  BpPivotTable table = heading.PivotTable(Key("Covariance Parameters Summary"),
                                          Text("CovarianceParametersSummary"), true);
  CovarianceSummary(table, *pModelDiagnotics);

  const ParamCollect* pParamCollect = fpHFITOutputStats->GetParamCollect();
  if (pParamCollect == nullptr) return;
  ResidualEffectOutput(heading, pParamCollect->fvRepeatedParamEstim);
  const std::vector<RandomParamBlock>& blocks = pParamCollect->fvRandomParamEstim;
  for (const RandomParamBlock& block : blocks) {
    RandomEffectOutput(heading, block.fvParamEstim, block.fBlock, blocks.size());
  }
}

void HFITParamEstimatesOutput::CovarianceSummary(BpPivotTable& table,
                                                 const ModelDiagnostics& diagnostics) {
  const bool noSubjects = HasNoSubjects();
  if (!noSubjects) table.Caption(Key("Common Subjects are based on ..."));
  BpDimension content = AddDimension(table, Key("Content"), kRows, 1, Shown::LabelsAlone);
  BpGroup parameters = GroupOf(content, Key("Covariance Parameters"));
  WriteCount(parameters, {"Residual Effect", &ModelDiagnostics::fNumOfCovParamOfRepeated},
             diagnostics);
  WriteCount(parameters, {"Random Effects", &ModelDiagnostics::fNumOfCovParamOfRandom},
             diagnostics);
  BpGroup matrix = GroupOf(content, Key("Design Matrix Columns"));
  WriteCount(matrix, {"Fixed Effects", &ModelDiagnostics::fNumOfColsOfFixed}, diagnostics);
  BpCategory randomColumns =
      WriteCount(matrix, {"Random Effects", &ModelDiagnostics::fNumOfColsOfRandom}, diagnostics);
  if (noSubjects) return;
  randomColumns.CellNote(Footnote(Key("Number of common subject ...")));
  WriteCount(content, {"Common Subjects", &ModelDiagnostics::fNumOfCommonSubjects}, diagnostics);
}

void HFITParamEstimatesOutput::ResidualEffectOutput(
    BpHeading& heading, const std::vector<ParamEstimData>& paramEstimVect) {
  const bool isGrouped = !fpBuildSettings->fvResidualGroupSpec.empty();
  if (isGrouped ? paramEstimVect.empty() : paramEstimVect.size() != 1) return;
  const Layout layout = isGrouped ? Layout::ByGroup : Layout::Plain;
  if (!AllFit(layout, paramEstimVect)) return;

  CovarianceTable table =
      LayOut(heading.PivotTable(Key("Residual Effect"), Text("ResidualEffect"), true),
             {.layout = layout,
              .covarianceType = fpBuildSettings->fResidualCovType,
              .subjects = HasNoSubjects() ? nullptr : &fpBuildSettings->fResidualSubjectSpec,
              .repeatsWarnings = true,
              .rows = "Residual Effect",
              .columns = "Residual Effect Covariance Column"});
  AllCovarianceRows(table, paramEstimVect, kResidualBlock);
}

void HFITParamEstimatesOutput::RandomEffectOutput(BpHeading& heading,
                                                  const std::vector<ParamEstimData>& paramEstimVect,
                                                  int32_t block,
                                                  std::size_t blockCount) {
  const RandomSpec* spec = SpecOf(block);
  if (spec == nullptr) return;
  const Layout layout = LayoutOf(spec->fvGroupSpec);
  if (layout == Layout::Plain && !(paramEstimVect.size() == 1)) return;
  if (!AllFit(layout, paramEstimVect)) return;

  const bool isOnly = blockCount < 2;
  BpPivotTable opened =
      isOnly ? heading.PivotTable(Key("Random Effect"), Text("CovarianceParameters"), true)
             : heading.PivotTable(BlockTitle(block), Text("CovarianceParameters"), true);
  CovarianceTable table = LayOut(
      std::move(opened), {.layout = layout,
                          .covarianceType = spec->fCovType,
                          .subjects = &spec->fSubjectSpec,
                          .repeatsWarnings = true,
                          .rows = layout == Layout::Plain || isOnly ? "Random Effect Covariance"
                                                                    : "Random Effect Block",
                          .columns = "Random Effect Covariance Column"});
  AllCovarianceRows(table, paramEstimVect, block);
}
