#include "backend/hierfit/tables/HFITParamEstimatesOutput.h"

#include "host/string_table.h"

#include "backend/hierfit/store/EffectText.h"
#include "backend/hierfit/store/EngineMessages.h"
#include "backend/hierfit/store/SystemMissing.h"

namespace {

/// The word for an effect without variables, from the string table of the output; without one the
/// key stands for itself.
std::string InterceptWord() {
  constexpr char kIntercept[] = "Intercept";
  const PathFinder* paths = PathFactory::getPathInstance();
  if (paths == nullptr) return kIntercept;
  const FacSTDictionary dictionary(paths->StringTablePath());
  int32_t code = 0;
  return dictionary.LookUp(kIntercept, code);
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
      fpBuildSettings(outputStats == nullptr ? nullptr : outputStats->GetBuildSettings()) {
  if (outputStats == nullptr) return;
  // When the first of the two is there, the rules of the second do not apply.
  for (const char* key : {kGLMM_C9, kGLMM_C8}) {
    if (fRowWarning.empty() && outputStats->HasWarning(key)) fRowWarning = key;
  }
  fHasEstimateNote = outputStats->HasWarning(kGLMM_C10);
}

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
