// Reads the blocks of estimated means: `DataGroup`.
#include <utility>

#include "backend/hierfit/reader/Attributes.h"
#include "backend/hierfit/reader/Elements.h"
#include "backend/hierfit/reader/HFITParseOutXML.h"

namespace {

constexpr AttributeBinding<EmmeansData> kBlockStatistics[] = {
    {"EMMEANSIndex", &EmmeansData::fEmmeansIndex, -1},
};

}  // namespace

bool HFITParseOutXML::ReadDataGroups(SDOMXMLIterator* dataGroupElmIter) {
  if (!(dataGroupElmIter != nullptr)) return false;
  for (SDOMXMLWrapper* dataGroupElm = nullptr; Step(dataGroupElmIter, dataGroupElm);) {
    std::string description;
    ReadText(*dataGroupElm, "description", description);
    if (description == "Emmeans" && !ReadTopEffect(*dataGroupElm)) return false;
    if (description == "customEmmeans" && !ReadBlock(*dataGroupElm)) return false;
  }
  return true;
}

bool HFITParseOutXML::ReadTopEffect(SDOMXMLWrapper& dataGroupElm) {
  EmmeansEstimList* pEmmeansEstimList = fpHFITOutputStats->GetEmmeansEstimList();
  if (pEmmeansEstimList == nullptr) pEmmeansEstimList = fpHFITOutputStats->NewEmmeansEstimList();
  if (!(pEmmeansEstimList != nullptr)) return false;
  EmmeansEstimData emmeansEstimData;
  if (!ReadEmmeansEstimates(FirstElement(dataGroupElm, "MultivariateData"), emmeansEstimData)) {
    return false;
  }
  pEmmeansEstimList->push_back(std::move(emmeansEstimData));
  return true;
}

bool HFITParseOutXML::ReadBlock(SDOMXMLWrapper& dataGroupElm) {
  EmmeansList* pEmmeansList = fpHFITOutputStats->GetEmmeansList();
  if (pEmmeansList == nullptr) pEmmeansList = fpHFITOutputStats->NewEmmeansList();
  if (!(pEmmeansList != nullptr)) return false;
  EmmeansData emmeansData;
  if (!ReadCustomEmmeans(&dataGroupElm, emmeansData)) return false;
  pEmmeansList->push_back(std::move(emmeansData));
  return true;
}

bool HFITParseOutXML::ReadCustomEmmeans(SDOMXMLWrapper* emmeansCustomElm,
                                        EmmeansData& emmeansData) {
  if (!(emmeansCustomElm != nullptr)) return false;
  bool isRead = true;
  if (SDOMXMLWrapper* labelListElm = FirstElement(*emmeansCustomElm, "Label/PrintableList")) {
    isRead = ReadEmmeansLabels(*labelListElm, emmeansData.fvLabels);
  }
  if (SDOMXMLWrapper* statisticElm = FirstElement(*emmeansCustomElm, "Statistic")) {
    std::string name;
    std::string value;
    // A statistic that reads makes up for labels that did not.
    isRead = ReadStatistic(statisticElm, name, value);
    if (isRead) StoreNamed(kBlockStatistics, name, value, emmeansData);
  }
  if (!isRead) return false;

  if (!ReadEmmeansTables(*emmeansCustomElm, emmeansData)) return false;
  if (!ReadOverallTests(*emmeansCustomElm, emmeansData.fvOverallTests)) return false;
  SDOMXMLIterator* messageIter = Children(*emmeansCustomElm, "Message");
  return messageIter == nullptr || ReadWarningMessages(messageIter, emmeansData.fvWarningList);
}

bool HFITParseOutXML::ReadEmmeansLabels(SDOMXMLWrapper& labelListElm,
                                        std::vector<EmmeansLabelData>& vLabels) {
  SDOMXMLIterator* labelIter = Children(labelListElm, "PrintableList");
  if (labelIter == nullptr) return false;
  for (SDOMXMLWrapper* labelElm = nullptr; Step(labelIter, labelElm);) {
    if (!ReadEmmeansLabel(*labelElm, vLabels.emplace_back())) return false;
  }
  return true;
}

bool HFITParseOutXML::ReadEmmeansLabel(SDOMXMLWrapper& labelElm, EmmeansLabelData& label) {
  if (!labelElm.GetAttribute("pattern", label.fFieldName)) return false;
  SDOMXMLWrapper* valueElm = FirstElement(labelElm, "PrintableList");
  if (valueElm == nullptr) return false;
  std::string text;
  if (!valueElm->GetAttribute("pattern", text)) return false;
  const int32_t index = FieldIndex(label.fFieldName);
  if (index < 0) return false;
  return label.fValue.SetCompleteValue(text, fpDataSource->GetVariable(index), 0);
}

bool HFITParseOutXML::ReadEmmeansTables(SDOMXMLWrapper& emmeansCustomElm,
                                        EmmeansData& emmeansData) {
  SDOMXMLIterator* tableIter = Children(emmeansCustomElm, "MultivariateData");
  if (tableIter == nullptr) return false;
  std::string description;
  for (SDOMXMLWrapper* tableElm = nullptr; Step(tableIter, tableElm);) {
    if (!tableElm->GetAttribute("description", description)) return false;
    if (description == "estimates" && !ReadEmmeansEstimates(tableElm, emmeansData.fEstimates)) {
      return false;
    }
    if (description == "contrasts" && !ReadEmmeansContrasts(tableElm, emmeansData.fContrasts)) {
      return false;
    }
  }
  return true;
}

bool HFITParseOutXML::ReadOverallTests(SDOMXMLWrapper& emmeansCustomElm,
                                       std::vector<EmmeansOverallTest>& vOverallTests) {
  SDOMXMLIterator* testIter = Children(emmeansCustomElm, "ModelTestStats");
  for (SDOMXMLWrapper* testElm = nullptr; Step(testIter, testElm);) {
    EmmeansOverallTest test;
    if (!ReadEmmeansOverallTest(testElm, test)) return false;
    vOverallTests.push_back(std::move(test));
  }
  return true;
}
