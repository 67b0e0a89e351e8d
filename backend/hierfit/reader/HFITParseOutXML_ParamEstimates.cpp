// Reads coefficients and covariance parameters: `ParameterEstimates`.
#include <utility>

#include "backend/hierfit/reader/Attributes.h"
#include "backend/hierfit/reader/Elements.h"
#include "backend/hierfit/reader/HFITParseOutXML.h"

namespace {

/// The highest number of a random block.
constexpr int32_t kMaxBlock = 9999;

/// Where a set of estimates is filed.
struct EstimateTarget {
  std::string type;
  int32_t block = 0;
};

// clang-format off
constexpr AttributeBinding<EstimateTarget> kEstimateAttributes[] = {
    {"parameterType", &EstimateTarget::type},
    {.name = "block", .field = &EstimateTarget::block, .ifEmpty = 0, .need = Need::Optional},
};

constexpr AttributeBinding<ParamStatData> kParamStatAttributes[] = {
    {"paramName", &ParamStatData::fParamName},
    {"paramLabel", &ParamStatData::fParamLabel},
    {"estimate", &ParamStatData::fEstimate},
    {"stdError", &ParamStatData::fStdError},
    {"df", &ParamStatData::fDf},
    {"confIntervalLower", &ParamStatData::fConfIntervalLower},
    {"confIntervalUpper", &ParamStatData::fConfIntervalUpper},
    {"tTest", &ParamStatData::fTTest},
    {"zTest", &ParamStatData::fZTest},
    {"sig", &ParamStatData::fSig},
    {"chiSquare", &ParamStatData::fChiSquare},
    {"expEstimate", &ParamStatData::fExpEstimate},
    {"expCILower", &ParamStatData::fExpCILower},
    {"expCIUpper", &ParamStatData::fExpCIUpper},
    {"isRedundant", &ParamStatData::fIsRedundant},
};
// clang-format on

/// Files estimates of a random block, with the blocks before it. False for a block beyond the
/// limit.
bool FileRandomEstimate(ParamEstimData& paramEstim,
                        int32_t block,
                        std::vector<RandomParamBlock>& vBlocks) {
  if (block < 0 || block > kMaxBlock) return false;
  const auto position = static_cast<std::size_t>(block);
  if (position >= vBlocks.size()) vBlocks.resize(position + 1, {block, {}});
  vBlocks[position].fvParamEstim.push_back(std::move(paramEstim));
  return true;
}

/// Files estimates by their type; those of an unknown one are dropped.
bool FileEstimate(ParamEstimData& paramEstim,
                  const EstimateTarget& target,
                  ParamCollect& paramCollect) {
  if (target.type == "random") {
    return FileRandomEstimate(paramEstim, target.block, paramCollect.fvRandomParamEstim);
  }
  if (target.type == "fixed") {
    paramCollect.fvFixedParamEstim.push_back(std::move(paramEstim));
  } else if (target.type == "repeated") {
    paramCollect.fvRepeatedParamEstim.push_back(std::move(paramEstim));
  }
  return true;
}

}  // namespace

bool HFITParseOutXML::ReadParameterEstimates(SDOMXMLIterator* paramEstimElmIter,
                                             ParamCollect& paramCollect) {
  if (!(paramEstimElmIter != nullptr)) return false;
  for (SDOMXMLWrapper* paramEstimElm = nullptr; Step(paramEstimElmIter, paramEstimElm);) {
    if (!ReadParameterEstimate(*paramEstimElm, paramCollect)) return false;
  }
  return true;
}

bool HFITParseOutXML::ReadParameterEstimate(SDOMXMLWrapper& paramEstimElm,
                                            ParamCollect& paramCollect) {
  EstimateTarget target;
  if (!ReadAttributes(paramEstimElm, kEstimateAttributes, target)) return false;
  ParamEstimData paramEstim;
  if (!ReadEstimateOwner(paramEstimElm, target.type == "fixed", paramEstim)) return false;

  SDOMXMLIterator* paramStatsIter = Children(paramEstimElm, "ParameterStats");
  if (paramStatsIter == nullptr) return false;
  for (SDOMXMLWrapper* paramStatsElm = nullptr; Step(paramStatsIter, paramStatsElm);) {
    ParamStatData paramStat;
    if (!ReadParameterStats(paramStatsElm, paramStat)) return false;
    paramEstim.fvParamStats.push_back(std::move(paramStat));
  }
  return FileEstimate(paramEstim, target, paramCollect);
}

bool HFITParseOutXML::ReadEstimateOwner(SDOMXMLWrapper& paramEstimElm,
                                        bool isFixed,
                                        ParamEstimData& paramEstim) {
  if (!isFixed) {
    SDOMXMLWrapper* segmentInfoElm = FirstElement(paramEstimElm, "SegmentInfo");
    return segmentInfoElm == nullptr || ReadSegmentInfo(segmentInfoElm, paramEstim.fFiledData);
  }
  SDOMXMLWrapper* fieldInfoElm = FirstElement(paramEstimElm, "SegmentInfo/FieldInfo");
  if (fieldInfoElm == nullptr) return true;
  std::string fieldValue;
  if (!fieldInfoElm->GetAttribute("fieldValue", fieldValue)) return false;
  paramEstim.fTargetCategory.SetStringValue(fieldValue);
  return paramEstim.fTargetCategory.LoadObsValue(TargetVariable(), 0);
}

bool HFITParseOutXML::ReadParameterStats(SDOMXMLWrapper* paramStatsElm,
                                         ParamStatData& paramStatData) {
  if (!(paramStatsElm != nullptr)) return false;
  SDOMXMLWrapper* regressionParamElm = FirstElement(*paramStatsElm, "RegressionParameter");
  if (regressionParamElm != nullptr &&
      !ReadRegressionParameter(regressionParamElm, paramStatData.fRegressionParam)) {
    return false;
  }
  paramStatData.fStatIndex = -1;
  if (SDOMXMLWrapper* statisticElm = FirstElement(*paramStatsElm, "Statistic")) {
    if (paramStatData.fRegressionParam.fIsIntercept) return false;
    if (!ReadStatistic(statisticElm, paramStatData.fStatName, paramStatData.fStatValue)) {
      return false;
    }
    paramStatData.fStatIndex = String2Integer(paramStatData.fStatValue);
  }
  SDOMXMLWrapper* printableListElm = FirstElement(*paramStatsElm, "PrintableList");
  if (printableListElm != nullptr &&
      !ReadPrintableList(printableListElm, paramStatData.fPrintableList)) {
    return false;
  }
  for (const PrintableListData& subList : paramStatData.fPrintableList.fvSubLists) {
    std::string text;
    if (!UnpackText(subList, text)) return false;
  }
  return ReadAttributes(*paramStatsElm, kParamStatAttributes, paramStatData);
}

bool HFITParseOutXML::ReadStatistic(SDOMXMLWrapper* statisticElm,
                                    std::string& name,
                                    std::string& value) {
  if (!(statisticElm != nullptr)) return false;
  return ReadText(*statisticElm, "name", name) && ReadText(*statisticElm, "value", value);
}

bool HFITParseOutXML::ReadSegmentInfo(SDOMXMLWrapper* segmentInfoElm,
                                      SegmentInfoData& segmentInfoData) {
  if (!(segmentInfoElm != nullptr)) return false;
  SDOMXMLIterator* fieldInfoIter = Children(*segmentInfoElm, "FieldInfo");
  for (SDOMXMLWrapper* fieldInfoElm = nullptr; Step(fieldInfoIter, fieldInfoElm);) {
    if (!ReadFieldInfo(*fieldInfoElm, segmentInfoData)) return false;
  }
  return true;
}

bool HFITParseOutXML::ReadFieldInfo(SDOMXMLWrapper& fieldInfoElm,
                                    SegmentInfoData& segmentInfoData) {
  std::string fieldName;
  if (!fieldInfoElm.GetAttribute("fieldName", fieldName)) return false;
  const int32_t index = FieldIndex(fieldName);
  if (index < 0) return false;
  std::string fieldValue;
  if (!fieldInfoElm.GetAttribute("fieldValue", fieldValue)) return false;
  CFStatVariableValue value(std::move(fieldValue));
  if (!value.LoadObsValue(fpDataSource->GetVariable(index), 0)) return false;
  const std::optional<std::size_t> variable = ModelVariable(index);
  const VarMapInfo* pVarMapInfo = fpHFITOutputStats->GetVarMapInfo();
  if (!variable || !pVarMapInfo->fvIsCategorical[*variable]) return false;

  segmentInfoData.fvFieldNames.push_back(std::move(fieldName));
  segmentInfoData.fvVarIndices.push_back(index);
  segmentInfoData.fSubjectValues.push_back(std::move(value));
  segmentInfoData.fvLevelCounts.push_back(pVarMapInfo->fvLevelCounts[*variable]);
  return true;
}
