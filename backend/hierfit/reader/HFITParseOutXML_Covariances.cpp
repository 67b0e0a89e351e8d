// Reads the covariance matrices of a random block.
#include <utility>

#include "backend/hierfit/reader/Elements.h"
#include "backend/hierfit/reader/HFITParseOutXML.h"

bool HFITParseOutXML::ReadRandEffCovars(SDOMXMLWrapper* randEffCovarMatElm,
                                        RandEffCovarsData& randEffCovars) {
  if (!(randEffCovarMatElm != nullptr)) return false;
  SDOMXMLWrapper* statisticElm = FirstElement(*randEffCovarMatElm, "Statistic");
  if (!ReadNumericStatistic(statisticElm, randEffCovars.fStatName, randEffCovars.fStatValue)) {
    return false;
  }
  SDOMXMLWrapper* labelsElm = FirstElement(*randEffCovarMatElm, "MatrixLabels/RowColLabels");
  if (labelsElm == nullptr) return false;
  if (!ReadEffectLabels(Children(*labelsElm, "Label"), randEffCovars.fvEffectLabels)) return false;

  SDOMXMLIterator* segmentDataIter = Children(*randEffCovarMatElm, "SegmentData");
  if (segmentDataIter == nullptr) return false;
  for (SDOMXMLWrapper* segmentDataElm = nullptr; Step(segmentDataIter, segmentDataElm);) {
    if (!ReadSegmentMatrix(*segmentDataElm, randEffCovars)) return false;
  }
  return true;
}

bool HFITParseOutXML::ReadEffectLabels(SDOMXMLIterator* labelIter,
                                       std::vector<std::string>& vEffectLabels) {
  bool isRead = false;
  for (SDOMXMLWrapper* labelElm = nullptr; Step(labelIter, labelElm);) {
    PrintableListData printableList;
    isRead = ReadPrintableList(FirstElement(*labelElm, "PrintableList"), printableList);
    if (!isRead) continue;
    if (!UnpackText(printableList, vEffectLabels.emplace_back())) return false;
  }
  return isRead;
}

bool HFITParseOutXML::ReadSegmentMatrix(SDOMXMLWrapper& segmentDataElm,
                                        RandEffCovarsData& randEffCovars) {
  SegmentInfoData segmentInfo;
  if (!ReadSegmentInfo(FirstElement(segmentDataElm, "SegmentInfo"), segmentInfo)) return false;
  randEffCovars.fSimpleSubjects.push_back(std::move(segmentInfo));

  MatrixData matrix;
  if (!ReadMatrix(FirstElement(segmentDataElm, "Matrix"), matrix)) return false;
  randEffCovars.fMatrixValues.push_back(std::move(matrix));
  return true;
}

bool HFITParseOutXML::ReadNumericStatistic(SDOMXMLWrapper* statisticElm,
                                           std::string& name,
                                           double& value) {
  if (!(statisticElm != nullptr)) return false;
  std::string text;
  ReadText(*statisticElm, "value", text);
  value = text.empty() ? fMissingValue : String2Double(text);
  return ReadText(*statisticElm, "name", name);
}
