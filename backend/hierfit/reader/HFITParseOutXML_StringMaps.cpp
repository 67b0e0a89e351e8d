// Reads string maps, printable lists and regression terms.
#include <utility>

#include "backend/hierfit/reader/Attributes.h"
#include "backend/hierfit/reader/Elements.h"
#include "backend/hierfit/reader/HFITParseOutXML.h"

namespace {

/// The highest power of a covariate; its name stands as often in a label.
constexpr int32_t kMaxPower = 9999;

constexpr int32_t kNoMap = -1;

constexpr std::string_view kStorages[] = {"integer", "real", "string", "date", "time", "timestamp"};
static_assert(std::size(kStorages) == Storage::kTimestamp);

int32_t ParseStorage(const std::string& text) {
  const int32_t position = CodeOf(kStorages, text);
  return position < Storage::kTimestamp ? Storage::kInteger + position : Storage::kUnknown;
}

// clang-format off
constexpr AttributeBinding<StringMapData> kStringMapAttributes[] = {
    {"mapId", &StringMapData::fMapId, kNoMap},
};

constexpr AttributeBinding<PrintableListData> kPrintableListAttributes[] = {
    {"pattern", &PrintableListData::fPattern},
    {"isKey", &PrintableListData::fIsKey},
    {"mapId", &PrintableListData::fMapId, kNoMap},
};

constexpr AttributeBinding<PrintableValueData> kPrintableValueAttributes[] = {
    {"storage", &PrintableValueData::fStorage, Storage::kUnknown, &ParseStorage},
    {"value", &PrintableValueData::fValue},
    {.name = "isNull", .field = &PrintableValueData::fIsNull, .need = Need::Optional},
    {.name = "label", .field = &PrintableValueData::fLabel, .need = Need::Optional},
};

constexpr AttributeBinding<RegressionParamData> kTermAttributes[] = {
    {"isIntercept", &RegressionParamData::fIsIntercept},
    {"name", &RegressionParamData::fName},
};

constexpr AttributeBinding<CovariateData> kCovariateAttributes[] = {
    {"field", &CovariateData::fField},
    {"power", &CovariateData::fPower, 0},
};

constexpr AttributeBinding<FactorData> kFactorAttributes[] = {
    {"field", &FactorData::fField},
    {.name = "nest", .field = &FactorData::fNest, .need = Need::Optional},
};
// clang-format on

}  // namespace

bool HFITParseOutXML::ReadStringMaps(SDOMXMLIterator* stringMapCollectIter,
                                     StringMapCollect& stringMapCollect) {
  if (!(stringMapCollectIter != nullptr)) return false;

  bool isRead = true;
  for (SDOMXMLWrapper* stringMapElm = nullptr; Step(stringMapCollectIter, stringMapElm);) {
    StringMapData& stringMap = stringMapCollect.emplace_back();
    ReadAttributesUntested(*stringMapElm, kStringMapAttributes, stringMap);
    SDOMXMLIterator* mapEntryIter = Children(*stringMapElm, "MapEntry");
    isRead = mapEntryIter != nullptr;
    for (SDOMXMLWrapper* mapEntryElm = nullptr; Step(mapEntryIter, mapEntryElm);) {
      MapEntryData mapEntry;
      isRead = ReadMapEntry(*mapEntryElm, mapEntry);
      if (isRead) stringMap.fvEntries.push_back(std::move(mapEntry));
    }
  }
  return isRead;
}

bool HFITParseOutXML::ReadMapEntry(SDOMXMLWrapper& mapEntryElm, MapEntryData& mapEntry) {
  ReadText(mapEntryElm, "name", mapEntry.fName);
  return ReadRegressionParameter(FirstElement(mapEntryElm, "Label/RegressionParameter"),
                                 mapEntry.fRegressionParam);
}

bool HFITParseOutXML::ReadPrintableList(SDOMXMLWrapper* printableListElm,
                                        PrintableListData& printableListData) {
  if (!(printableListElm != nullptr)) return false;
  ReadAttributesUntested(*printableListElm, kPrintableListAttributes, printableListData);

  SDOMXMLIterator* subListIter = Children(*printableListElm, "PrintableList");
  for (SDOMXMLWrapper* subListElm = nullptr; Step(subListIter, subListElm);) {
    PrintableListData subList;
    if (!ReadPrintableList(subListElm, subList)) return false;
    printableListData.fvSubLists.push_back(std::move(subList));
  }
  SDOMXMLIterator* valueIter = Children(*printableListElm, "PrintableValue");
  for (SDOMXMLWrapper* valueElm = nullptr; Step(valueIter, valueElm);) {
    PrintableValueData value;
    if (!ReadPrintableValue(valueElm, value)) return false;
    printableListData.fvValues.push_back(std::move(value));
  }
  return true;
}

bool HFITParseOutXML::ReadPrintableValue(SDOMXMLWrapper* printableValueElm,
                                         PrintableValueData& printableValueData) {
  if (!(printableValueElm != nullptr)) return false;
  return ReadAttributes(*printableValueElm, kPrintableValueAttributes, printableValueData);
}

bool HFITParseOutXML::ReadRegressionParameter(SDOMXMLWrapper* regressionParamElm,
                                              RegressionParamData& regressionParamData) {
  if (!(regressionParamElm != nullptr)) return false;
  if (!ReadAttributes(*regressionParamElm, kTermAttributes, regressionParamData)) return false;
  if (regressionParamData.fIsIntercept) return true;

  SDOMXMLIterator* covariateIter = Children(*regressionParamElm, "Covariate");
  for (SDOMXMLWrapper* covariateElm = nullptr; Step(covariateIter, covariateElm);) {
    CovariateData covariate;
    if (!ReadCovariate(covariateElm, covariate)) return false;
    regressionParamData.fvCovariates.push_back(std::move(covariate));
  }
  SDOMXMLIterator* factorIter = Children(*regressionParamElm, "Factor");
  for (SDOMXMLWrapper* factorElm = nullptr; Step(factorIter, factorElm);) {
    FactorData factor;
    if (!ReadFactor(factorElm, factor)) return false;
    regressionParamData.fvFactors.push_back(std::move(factor));
  }
  return true;
}

bool HFITParseOutXML::ReadCovariate(SDOMXMLWrapper* covariateElm, CovariateData& covariateData) {
  if (!(covariateElm != nullptr)) return false;
  if (!ReadAttributes(*covariateElm, kCovariateAttributes, covariateData)) return false;
  covariateData.fVarIndex = FieldIndex(covariateData.fField);
  return covariateData.fPower <= kMaxPower;
}

bool HFITParseOutXML::ReadFactor(SDOMXMLWrapper* factorElm, FactorData& factorData) {
  if (!(factorElm != nullptr)) return false;
  if (!ReadAttributes(*factorElm, kFactorAttributes, factorData)) return false;
  factorData.fVarIndex = FieldIndex(factorData.fField);
  std::string value;
  ReadText(*factorElm, "value", value);
  return factorData.fValue.SetCompleteValue(value, fpDataSource->GetVariable(factorData.fVarIndex),
                                            0);
}
