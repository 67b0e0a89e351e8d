// The road through the two documents: what is read when, and what is required.
#include "backend/hierfit/reader/HFITParseOutXML.h"

#include <sstream>
#include <utility>

#include "host/pmml.h"

#include "backend/hierfit/frame/Messages.h"
#include "backend/hierfit/reader/Elements.h"

namespace {

/// What the result document may unpack to: the largest single matrix, and twice as many numbers as
/// its text has bytes, which is more than honest matrices of any size need.
constexpr std::size_t kUnpackedBytes = (std::size_t{1} << 24) * sizeof(double);
constexpr std::size_t kUnpackedPerByte = 2 * sizeof(double);

/// Reads the values of a message. The result is whether the last of them had one.
bool ReadWarningParameters(SDOMXMLWrapper& printListElm, std::vector<std::string>& vParameters) {
  SDOMXMLIterator* valueIter = Children(printListElm, "PrintableValue");
  bool hasValue = true;
  std::string value;
  for (SDOMXMLWrapper* valueElm = nullptr; Step(valueIter, valueElm);) {
    hasValue = ReadText(*valueElm, "value", value);
    if (!value.empty()) vParameters.push_back(value);
  }
  return hasValue;
}

}  // namespace

HFITParseOutXML::HFITParseOutXML(BpProcedure* procedure,
                                 ProcedureDataSource* dataSource,
                                 HFITOutputStats* outputStats,
                                 const std::string& pmmlStr,
                                 const std::string& statXMLStr)
    : fpProcedure(procedure),
      fpDataSource(dataSource),
      fpHFITOutputStats(outputStats),
      fpPMMLStr(&pmmlStr),
      fpStatXMLStr(&statXMLStr) {}

bool HFITParseOutXML::ReadDocuments() {
  if (!ReadPMML(*fpPMMLStr)) return false;
  return ReadStatXML(*fpStatXMLStr);
}

bool HFITParseOutXML::ReadPMML(const std::string& pmmlStr) {
  if (fPMMLParsed) return true;

  MCPMMLParser parser;
  std::istringstream pmmlStream(pmmlStr);
  if (parser.ParseToDOM(pmmlStream).IsError()) return false;
  MCVarList* varList = fpHFITOutputStats->NewVarList();
  if (!(varList != nullptr)) return false;
  if (parser.FillVarList(varList, {}, false).IsError()) return false;
  fpHFITOutputStats->BuildVarMap();
  fPMMLParsed = true;
  return true;
}

bool HFITParseOutXML::ReadStatXML(const std::string& statXMLStr) {
  if (fStatXMLParsed) return true;
  if (statXMLStr.empty()) return false;

  try {
    fStatXMLParsed = ReadStatXMLDocument(statXMLStr);
  } catch (...) {
    // Whatever goes wrong while reading is a failed read, reported below like any other.
    fStatXMLParsed = false;
  }
  fvItems = {};  // the reader outlives the writers
  if (!fStatXMLParsed) {
    BpError(BpString("StatXML parsing error ...", true), kShowInOutput, kErrorLevel);
  }
  return fStatXMLParsed;
}

bool HFITParseOutXML::ReadStatXMLDocument(const std::string& statXMLStr) {
  SDOMXMLWrapper root;
  SDOMXMLWrapper* documentElm = root.LoadFromString(statXMLStr);
  fpBuildSettings = fpHFITOutputStats->NewBuildSettings();
  if (fpBuildSettings == nullptr || documentElm == nullptr) return false;

  return ReadSettings(*documentElm) && ReadLabelMaps(*documentElm) &&
         ReadDiagnostics(*documentElm) && ReadTrainingSummary(*documentElm);
}

bool HFITParseOutXML::ReadSettings(SDOMXMLWrapper& documentElm) {
  SDOMXMLWrapper* summaryElm = FirstElement(documentElm, "PMMLModel/PredictiveSummary");
  if (summaryElm == nullptr) return false;
  if (!summaryElm->GetAttribute("algorithmName", fpBuildSettings->fAlgorithmName)) return false;
  if (fpBuildSettings->fAlgorithmName != "GLMM") return false;
  SDOMXMLWrapper* buildSettingsElm = FirstElement(documentElm, "BuildSettings");
  if (buildSettingsElm == nullptr) return false;

  if (ReadBuildSettings(buildSettingsElm, *fpBuildSettings)) return true;
  fpHFITOutputStats->ClearBuildSettings();
  fpBuildSettings = nullptr;
  return false;
}

bool HFITParseOutXML::ReadLabelMaps(SDOMXMLWrapper& documentElm) {
  StringMapCollect* pStringMapCollect = fpHFITOutputStats->NewStringMapCollect();
  if (!(pStringMapCollect != nullptr)) return false;
  SDOMXMLWrapper* modelElm = FirstElement(documentElm, "PMMLModel");
  if (modelElm == nullptr) return false;
  return ReadStringMaps(Children(*modelElm, "StringMap"), *pStringMapCollect);
}

bool HFITParseOutXML::ReadDiagnostics(SDOMXMLWrapper& documentElm) {
  ModelDiagnostics* pModelDiagnostics = fpHFITOutputStats->NewModelDiagnostics();
  if (!(pModelDiagnostics != nullptr)) return false;
  SDOMXMLWrapper* diagnosticsElm = FirstElement(documentElm, "PMMLModel/ModelDiagnostics");
  if (diagnosticsElm == nullptr) return false;
  if (!ReadModelDiagnostics(diagnosticsElm, *pModelDiagnostics)) return false;

  if (!ReadStructuredData(*diagnosticsElm)) return false;
  if (!ReadClassification(*diagnosticsElm)) return false;
  SDOMXMLIterator* dataGroupIter = Children(*diagnosticsElm, "DataGroup");
  return dataGroupIter == nullptr || ReadDataGroups(dataGroupIter);
}

bool HFITParseOutXML::ReadStructuredData(SDOMXMLWrapper& modelDiagnosticsElm) {
  SDOMXMLIterator* structuredDataElmIter = Children(modelDiagnosticsElm, "StructuredData");
  if (structuredDataElmIter == nullptr) return true;
  StructuredData* pStructuredData = fpHFITOutputStats->NewStructuredData();
  if (!(pStructuredData != nullptr)) return false;

  for (SDOMXMLWrapper* structuredDataElm = nullptr;
       Step(structuredDataElmIter, structuredDataElm);) {
    if (!ReadStructuredDataElement(*structuredDataElm, *pStructuredData)) return false;
  }
  return true;
}

bool HFITParseOutXML::ReadStructuredDataElement(SDOMXMLWrapper& structuredDataElm,
                                                StructuredData& structuredData) {
  std::string description;
  if (!structuredDataElm.GetAttribute("description", description)) return false;
  if (description == "firstSubjectRecordsForDataStructure") {
    return ReadFirstSubjectRecords(&structuredDataElm, structuredData);
  }
  if (description != "randomEffectCovariances") return true;
  RandEffCovarsData randEffCovars;
  if (!ReadRandEffCovars(&structuredDataElm, randEffCovars)) return false;
  structuredData.fvRandEffCovars.push_back(std::move(randEffCovars));
  return true;
}

bool HFITParseOutXML::ReadClassification(SDOMXMLWrapper& modelDiagnosticsElm) {
  SDOMXMLWrapper* classifMatrixElm = FirstElement(modelDiagnosticsElm, "Matrix");
  if (classifMatrixElm == nullptr) return true;
  std::string description;
  ReadText(*classifMatrixElm, "description", description);
  if (description != "classificationTable") return true;
  ClassifMatrixData* pClassifMatrixData = fpHFITOutputStats->NewClassifMatrixData();
  if (!(pClassifMatrixData != nullptr)) return false;
  return ReadMatrix(classifMatrixElm, *pClassifMatrixData);
}

bool HFITParseOutXML::ReadTrainingSummary(SDOMXMLWrapper& documentElm) {
  ParamCollect* pParamCollect = fpHFITOutputStats->NewParamCollect();
  if (!(pParamCollect != nullptr)) return false;
  SDOMXMLWrapper* trainingSummaryElm = FirstElement(documentElm, "PMMLModel/TrainingSummary");
  const bool hasEstimates =
      trainingSummaryElm != nullptr && ReadEstimates(*trainingSummaryElm, *pParamCollect);
  if (!hasEstimates) fpHFITOutputStats->ClearParamCollect();
  if (trainingSummaryElm == nullptr) return false;

  // A fit without estimates is still a result when the engine says why.
  SDOMXMLIterator* messageIter = Children(*trainingSummaryElm, "Message");
  if (messageIter == nullptr) return hasEstimates;
  return ReadWarningMessages(messageIter, *fpHFITOutputStats->GetWarningList());
}

bool HFITParseOutXML::ReadEstimates(SDOMXMLWrapper& trainingSummaryElm,
                                    ParamCollect& paramCollect) {
  SDOMXMLIterator* paramEstimIter = Children(trainingSummaryElm, "ParameterEstimates");
  return paramEstimIter != nullptr && ReadParameterEstimates(paramEstimIter, paramCollect);
}

bool HFITParseOutXML::ReadWarningMessages(SDOMXMLIterator* warningMsgElmIter,
                                          std::vector<WarningData>& vWarnings) {
  if (warningMsgElmIter == nullptr) return false;

  for (SDOMXMLWrapper* warningMsgElm = nullptr; Step(warningMsgElmIter, warningMsgElm);) {
    SDOMXMLWrapper* printListElm = FirstElement(*warningMsgElm, "PrintableList");
    if (printListElm == nullptr) return false;
    WarningData warning;
    if (!printListElm->GetAttribute("pattern", warning.fPattern)) return false;
    if (warning.fPattern.empty()) continue;
    const bool isWhole = ReadWarningParameters(*printListElm, warning.fWarningParameters);
    vWarnings.push_back(std::move(warning));
    if (!isWhole) return false;
  }
  return true;
}

bool HFITParseOutXML::Unpack(std::size_t byteCount) {
  fUnpackedBytes += byteCount;
  return fUnpackedBytes <= kUnpackedBytes + kUnpackedPerByte * fpStatXMLStr->size();
}

bool HFITParseOutXML::UnpackText(const PrintableListData& printableListData, std::string& text) {
  fpHFITOutputStats->GetPrintableText(printableListData, text);
  return Unpack(text.size());
}

const VELT_Variable* HFITParseOutXML::TargetVariable() const {
  if (fpBuildSettings == nullptr) return nullptr;
  return fpDataSource->GetVariable(fpBuildSettings->fTargetIndex);
}

std::optional<std::size_t> HFITParseOutXML::ModelVariable(int32_t index) const {
  const VarMapInfo* pVarMapInfo = fpHFITOutputStats->GetVarMapInfo();
  if (!(pVarMapInfo != nullptr)) return {};
  const auto field = static_cast<std::size_t>(index);
  if (index < 0 || field >= pVarMapInfo->fvFieldToVar.size()) return {};
  const int32_t variable = pVarMapInfo->fvFieldToVar[field];
  if (variable < 0) return {};
  return static_cast<std::size_t>(variable);
}

bool HFITParseOutXML::ReadValues(SDOMXMLWrapper& arrayElm,
                                 const VELT_Variable* variable,
                                 std::vector<CFStatVariableValue>& vValues) {
  std::vector<std::string> vItems;
  if (!arrayElm.GetSimpleArray(vItems)) return false;
  vValues.reserve(vValues.size() + vItems.size());
  for (std::string& item : vItems) {
    CFStatVariableValue value(std::move(item));
    if (!value.LoadObsValue(variable, 0)) return false;
    vValues.push_back(std::move(value));
  }
  return true;
}
