#include "backend/hierfit/tables/HFITParamEstimatesOutput.h"

#include "host/string_table.h"

#include "backend/hierfit/store/EffectText.h"
#include "backend/hierfit/store/SystemMissing.h"

namespace {

/// The word for an effect without variables, from the string table of the output.
std::string InterceptWord() {
  const FacSTDictionary dictionary(PathFactory::getPathInstance()->StringTablePath());
  int32_t code = 0;
  return dictionary.LookUp("Intercept", code);
}

std::string_view NameOf(const VELT_Variable* variable) {
  return variable == nullptr ? std::string_view() : std::string_view(variable->GetName());
}

}  // namespace

HFITParamEstimatesOutput::HFITParamEstimatesOutput(BpProcedure* procedure,
                                                   ProcedureDataSource* dataSource,
                                                   HFITOutputStats* outputStats)
    : fpProcedure(procedure),
      fpDataSource(dataSource),
      fpHFITOutputStats(outputStats),
      fpBuildSettings(outputStats == nullptr ? nullptr : outputStats->GetBuildSettings()) {}

/// Names that are there already stay, and none is added to them.
void HFITParamEstimatesOutput::EffectNames(const std::vector<EffectStruct>& effectList,
                                           std::vector<std::string>& names) {
  if (!names.empty()) return;
  for (const EffectStruct& effect : effectList) {
    if (effect.fvVarIndices.empty()) {
      names.push_back(InterceptWord());
      continue;
    }
    names.push_back(JoinEffectFields(effect, [&](std::size_t field) {
      return NameOf(fpDataSource->GetVariable(effect.fvVarIndices[field]));
    }));
  }
}

const VELT_Variable* HFITParamEstimatesOutput::Target() const {
  return fpDataSource->GetVariable(fpBuildSettings->fTargetIndex);
}
