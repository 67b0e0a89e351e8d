// The road through the two documents: what is read when, and what is required.
#include "backend/hierfit/reader/HFITParseOutXML.h"

#include <sstream>
#include <utility>

#include "host/pmml.h"

#include "backend/hierfit/reader/Elements.h"

namespace {

constexpr BpErrorShow kShowInOutput{2};
constexpr BpErrorLevel kErrorLevel{3};

/// Reads the values of a message. The result is whether the last of them had one.
bool ReadWarningParameters(SDOMXMLWrapper& printListElm, std::vector<std::string>& vParameters) {
  SDOMXMLIterator* valueIter = Children(printListElm, "PrintableValue");
  bool hasValue = true;
  std::string value;
  for (SDOMXMLWrapper* valueElm = nullptr; Step(valueIter, valueElm);) {
    hasValue = valueElm->GetAttribute("value", value);
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

  return ReadSettings(*documentElm) && ReadDiagnostics(*documentElm) &&
         ReadTrainingSummary(*documentElm);
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

bool HFITParseOutXML::ReadDiagnostics(SDOMXMLWrapper& documentElm) {
  ModelDiagnostics* pModelDiagnostics = fpHFITOutputStats->NewModelDiagnostics();
  if (pModelDiagnostics == nullptr) return false;
  SDOMXMLWrapper* diagnosticsElm = FirstElement(documentElm, "PMMLModel/ModelDiagnostics");
  return diagnosticsElm != nullptr && ReadModelDiagnostics(diagnosticsElm, *pModelDiagnostics);
}

bool HFITParseOutXML::ReadTrainingSummary(SDOMXMLWrapper& documentElm) {
  SDOMXMLWrapper* trainingSummaryElm = FirstElement(documentElm, "PMMLModel/TrainingSummary");
  if (trainingSummaryElm == nullptr) return false;
  SDOMXMLIterator* messageIter = Children(*trainingSummaryElm, "Message");
  return messageIter == nullptr ||
         ReadWarningMessages(messageIter, *fpHFITOutputStats->GetWarningList());
}

bool HFITParseOutXML::ReadWarningMessages(SDOMXMLIterator* warningMsgElmIter,
                                          std::vector<WarningData>& vWarnings) {
  if (warningMsgElmIter == nullptr) return false;

  for (SDOMXMLWrapper* warningMsgElm = nullptr; warningMsgElmIter->Next(&warningMsgElm);) {
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
