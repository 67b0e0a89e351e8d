// Reads the records of the first subject, and matrices.
#include <algorithm>
#include <iterator>
#include <numeric>
#include <utility>

#include "backend/hierfit/reader/Attributes.h"
#include "backend/hierfit/reader/Elements.h"
#include "backend/hierfit/reader/HFITParseOutXML.h"

namespace {

/// The most slots of one matrix with all its rows full.
constexpr int64_t kMaxMatrixSlots = int64_t{1} << 24;

/// The size and kind of a matrix as its element states them.
struct MatrixShape {
  int32_t rows = 0;
  int32_t columns = 0;  ///< 0: as many as rows
  std::string kind;
};

// clang-format off
constexpr AttributeBinding<MatrixShape> kMatrixAttributes[] = {
    {"nbRows", &MatrixShape::rows, 0},
    {.name = "nbCols", .field = &MatrixShape::columns, .ifEmpty = 0, .need = Need::Optional},
    {.name = "kind", .field = &MatrixShape::kind, .need = Need::Optional},
};

constexpr AttributeBinding<StructuredData> kSubjectCounts[] = {
    {"totalFreq", &StructuredData::fTotalFreq, 0},
};
// clang-format on

/// Fills the slots of a row that the items of the document give, in column order.
using RowFiller = void (*)(std::span<const double> items,
                           std::size_t row,
                           std::size_t columns,
                           std::vector<double>& vValues);

/// One form of a matrix in a document: how many items it needs, and where they go.
struct MatrixKind {
  std::string_view name;
  int64_t (*countItems)(int64_t rows, int64_t columns);
  RowFiller fillRow;
};

int64_t CountDiagonal(int64_t rows, int64_t) { return rows; }

int64_t CountTriangle(int64_t rows, int64_t) { return rows * (rows + 1) / 2; }

/// No number of items fits a matrix that is wider than its rows are long.
int64_t CountFull(int64_t rows, int64_t columns) {
  return rows > 0 && columns > rows ? -1 : rows * columns;
}

void FillDiagonal(std::span<const double> items,
                  std::size_t row,
                  std::size_t,
                  std::vector<double>& vValues) {
  vValues[row] = items[row];
}

/// From a lower triangle that is packed row by row.
void FillSymmetric(std::span<const double> items,
                   std::size_t row,
                   std::size_t,
                   std::vector<double>& vValues) {
  for (std::size_t column = 0; column < vValues.size(); ++column) {
    const auto [low, high] = std::minmax(row, column);
    vValues[column] = items[high * (high + 1) / 2 + low];
  }
}

void FillFull(std::span<const double> items,
              std::size_t row,
              std::size_t columns,
              std::vector<double>& vValues) {
  std::ranges::copy(items.subspan(row * columns, columns), vValues.begin());
}

// The last kind is that of any other text, too.
constexpr MatrixKind kMatrixKinds[] = {
    {"diagonal", &CountDiagonal, &FillDiagonal},
    {"symmetric", &CountTriangle, &FillSymmetric},
    {"", &CountFull, &FillFull},
};

const MatrixKind& FindMatrixKind(std::string_view name) {
  const auto kind = std::ranges::find(kMatrixKinds, name, &MatrixKind::name);
  return kind == std::end(kMatrixKinds) ? *std::rbegin(kMatrixKinds) : *kind;
}

/// Whether the items are as many as the shape says, and fit into rows that can be made.
bool FitsShape(const MatrixShape& shape, const MatrixKind& kind, std::size_t itemCount) {
  if (shape.rows < 0 || shape.columns < 0) return false;
  if (kind.countItems(shape.rows, shape.columns) != static_cast<int64_t>(itemCount)) return false;
  return int64_t{shape.rows} * shape.rows <= kMaxMatrixSlots;
}

void FillRows(const MatrixShape& shape,
              const MatrixKind& kind,
              std::span<const double> items,
              std::vector<MatrixRowData>& vRows) {
  const auto rowCount = static_cast<std::size_t>(shape.rows);
  vRows.resize(rowCount);
  for (std::size_t row = 0; row < rowCount; ++row) {
    vRows[row].fvValues.assign(rowCount, 0.0);
    kind.fillRow(items, row, static_cast<std::size_t>(shape.columns), vRows[row].fvValues);
    vRows[row].fRowTotal =
        std::accumulate(vRows[row].fvValues.begin(), vRows[row].fvValues.end(), 0.0);
  }
}

void MoveToEnd(std::vector<CFStatVariableValue>& vFrom, std::vector<CFStatVariableValue>& vTo) {
  vTo.insert(vTo.end(), std::make_move_iterator(vFrom.begin()),
             std::make_move_iterator(vFrom.end()));
}

}  // namespace

bool HFITParseOutXML::ReadFirstSubjectRecords(SDOMXMLWrapper* structuredDataElm,
                                              StructuredData& structuredData) {
  if (!(structuredDataElm != nullptr)) return false;
  SDOMXMLWrapper* countsElm = FirstElement(*structuredDataElm, "Counts");
  if (countsElm != nullptr && !ReadAttributes(*countsElm, kSubjectCounts, structuredData)) {
    return false;
  }
  SDOMXMLWrapper* segmentInfoElm = FirstElement(*structuredDataElm, "SegmentData/SegmentInfo");
  if (!ReadSegmentInfo(segmentInfoElm, structuredData.fSubjects)) return false;
  SDOMXMLWrapper* recordsElm = FirstElement(*structuredDataElm, "SegmentData/MultivariateData");
  if (recordsElm == nullptr) return false;

  SDOMXMLIterator* groupIter = Children(*recordsElm, "CoordinatesGroup");
  for (SDOMXMLWrapper* groupElm = nullptr; Step(groupIter, groupElm);) {
    if (!ReadSubjectGroup(*groupElm, structuredData)) return false;
  }
  return true;
}

bool HFITParseOutXML::ReadSubjectGroup(SDOMXMLWrapper& groupElm, StructuredData& structuredData) {
  std::string description;
  ReadText(groupElm, "description", description);
  const bool isTarget = description == "target";
  if (!isTarget && description != "repeatedMeasures") return false;
  SDOMXMLIterator* coordinatesIter = Children(groupElm, "Coordinates");
  if (coordinatesIter == nullptr) return false;

  for (SDOMXMLWrapper* coordinatesElm = nullptr; Step(coordinatesIter, coordinatesElm);) {
    if (isTarget) {
      if (!ReadTargetValues(*coordinatesElm, structuredData)) return false;
      continue;
    }
    RepeatMeasVarStruct repeatMeasVarStruct;
    if (!ReadRepeatMeasVar(coordinatesElm, repeatMeasVarStruct)) return false;
    structuredData.fvRepeatMeasVars.push_back(std::move(repeatMeasVarStruct));
  }
  return true;
}

bool HFITParseOutXML::ReadTargetValues(SDOMXMLWrapper& coordinatesElm,
                                       StructuredData& structuredData) {
  std::string field;
  if (!coordinatesElm.GetAttribute("field", field)) return false;
  SDOMXMLWrapper* arrayElm = FirstElement(coordinatesElm, "Array");
  if (arrayElm == nullptr || fpBuildSettings == nullptr) return false;
  std::vector<CFStatVariableValue> vValues;
  if (!ReadValues(*arrayElm, TargetVariable(), vValues)) return false;

  const int32_t index = FieldIndex(field);
  if (index < 0) return true;
  const bool isTarget = index == fpBuildSettings->fTargetIndex;
  if (index == fpBuildSettings->fTrialsIndex) {
    if (!isTarget) {
      MoveToEnd(vValues, structuredData.fvTrialsValues);
      return true;
    }
    structuredData.fvTrialsValues.insert(structuredData.fvTrialsValues.end(), vValues.begin(),
                                         vValues.end());
  }
  if (isTarget) MoveToEnd(vValues, structuredData.fvTargetValues);
  return true;
}

bool HFITParseOutXML::ReadRepeatMeasVar(SDOMXMLWrapper* coordinatesElm,
                                        RepeatMeasVarStruct& repeatMeasVarStruct) {
  if (!(coordinatesElm != nullptr)) return false;
  if (!coordinatesElm->GetAttribute("field", repeatMeasVarStruct.fField)) return false;
  repeatMeasVarStruct.fRepMeasInd = FieldIndex(repeatMeasVarStruct.fField);
  if (!(repeatMeasVarStruct.fRepMeasInd >= 0)) return false;
  const std::optional<std::size_t> variable = ModelVariable(repeatMeasVarStruct.fRepMeasInd);
  if (!variable) return false;
  repeatMeasVarStruct.fLevelCount = fpHFITOutputStats->GetVarMapInfo()->fvLevelCounts[*variable];

  SDOMXMLWrapper* arrayElm = FirstElement(*coordinatesElm, "Array");
  if (!(arrayElm != nullptr)) return false;
  return ReadValues(*arrayElm, fpDataSource->GetVariable(repeatMeasVarStruct.fRepMeasInd),
                    repeatMeasVarStruct.fvValues);
}

bool HFITParseOutXML::ReadMatrix(SDOMXMLWrapper* matrixElm, MatrixData& matrixData) {
  if (!(matrixElm != nullptr) || fpBuildSettings == nullptr) return false;
  MatrixShape shape;
  if (!ReadAttributes(*matrixElm, kMatrixAttributes, shape)) return false;
  matrixData.fNbRows = shape.rows;
  if (shape.columns == 0) shape.columns = shape.rows;
  if (!fpBuildSettings->fUseTrials && !ReadRowColLabels(*matrixElm, matrixData)) return false;

  SDOMXMLWrapper* arrayElm = FirstElement(*matrixElm, "Array");
  if (!(arrayElm != nullptr)) return false;
  std::vector<double> vItems;
  if (!ReadDoubleArray(arrayElm, vItems)) return false;
  const MatrixKind& kind = FindMatrixKind(shape.kind);
  if (!FitsShape(shape, kind, vItems.size())) return false;
  const auto side = static_cast<std::size_t>(shape.rows);
  if (!Unpack(side * side * sizeof(double))) return false;
  FillRows(shape, kind, vItems, matrixData.fvRows);
  return true;
}

bool HFITParseOutXML::ReadRowColLabels(SDOMXMLWrapper& matrixElm, MatrixData& matrixData) {
  SDOMXMLWrapper* labelsElm = FirstElement(matrixElm, "MatrixLabels/RowColLabels");
  if (labelsElm == nullptr) return true;
  SDOMXMLIterator* labelIter = Children(*labelsElm, "Label");
  if (labelIter == nullptr) return false;

  std::string text;
  for (SDOMXMLWrapper* labelElm = nullptr; Step(labelIter, labelElm);) {
    if (!labelElm->GetAttribute("label", text)) return false;
    // A text that is no value of the target is kept as the text that it is.
    matrixData.fvRowColLabels.emplace_back(text).LoadObsValue(TargetVariable(), 0);
  }
  return true;
}
