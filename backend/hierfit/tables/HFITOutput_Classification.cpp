// Observed by predicted categories of the target.
#include <algorithm>
#include <iterator>

#include "backend/hierfit/tables/CellText.h"
#include "backend/hierfit/tables/HFITOutput.h"
#include "backend/hierfit/tables/TableShape.h"
#include "backend/hierfit/tables/TableText.h"

namespace {

constexpr const char* kEventLabels[] = {"Non-Event", "Event"};
constexpr StatisticColumn kCountRow = {"E60868", BpProcedure::Count};
constexpr StatisticColumn kPercentRow = {"% within Observed", BpProcedure::Percent};

bool IsConsistent(const ClassifMatrixData& matrix, bool useTrials) {
  const auto count = static_cast<std::size_t>(matrix.fNbRows);
  const bool hasLabels =
      useTrials ? count == std::size(kEventLabels) : matrix.fvRowColLabels.size() >= count;
  return matrix.fNbRows >= 0 && hasLabels && matrix.fvRows.size() == count &&
         std::ranges::all_of(matrix.fvRows, [count](const MatrixRowData& row) {
           return row.fvValues.size() == count;
         });
}

double PercentOf(double value, double total) {
  return (total == 0.0 ? 0.0 : value / total) * 100.0;
}

/// The category of the target at a position of the matrix.
BpCategory TargetCategory(BpDimension& dimension,
                          const ClassifMatrixData& matrix,
                          std::size_t position,
                          const BuildSettingsStruct& settings,
                          const VELT_DataSource& dataSource) {
  if (settings.fUseTrials) return dimension.Category(Key(kEventLabels[position]));
  return dimension.Category(BpDataValue(dataSource.GetVariable(settings.fTargetIndex),
                                        matrix.fvRowColLabels[position].GetObsValue(),
                                        kPreferLabel));
}

}  // namespace

void HFITOutput::ClassificationOutput() {
  if (fpHFITOutputStats == nullptr) return;
  const ModelDiagnostics* diagnostics = fpHFITOutputStats->GetModelDiagnostics();
  const ClassifMatrixData* matrix = fpHFITOutputStats->GetClassifMatrixData();
  if (diagnostics == nullptr || matrix == nullptr) return;
  if (!IsConsistent(*matrix, fpBuildSettings->fUseTrials)) return;

  const BpComposite title =
      KeyWith("Classification, overall ^1 ...",
              BpNumber(diagnostics->fClassificationAccuracy * 100.0, BpProcedure::Percent()));
  BpPivotTable table = fpProcedure->PivotTable(title, Text("Classification"), true);
  table.Note(Footnote(TargetNote(*fpBuildSettings, *fpDataSource)));
  BpDimension observed = AddDimension(table, Key("Observed"), kRows, 2, Shown::TitleAndLabels);
  BpDimension statistics = AddDimension(table, Text("Statistics"), kRows, 1, Shown::LabelsAlone);
  BpDimension predicted = AddDimension(table, Key("Predicted"), kColumns, 1, Shown::TitleAndLabels);

  for (std::size_t i = 0; i < matrix->fvRows.size(); ++i) {
    const MatrixRowData& row = matrix->fvRows[i];
    TargetCategory(observed, *matrix, i, *fpBuildSettings, *fpDataSource);
    for (std::size_t j = 0; j < row.fvValues.size(); ++j) {
      TargetCategory(predicted, *matrix, j, *fpBuildSettings, *fpDataSource);
      WriteStatistic(statistics, kCountRow, row.fvValues[j]);
      WriteStatistic(statistics, kPercentRow, PercentOf(row.fvValues[j], row.fRowTotal));
    }
  }
}
