// Joins the fields of an effect.
#include "backend/hierfit/store/EffectText.h"

std::string JoinEffectFields(const EffectStruct& effect, const EffectFieldText& fieldText) {
  if (effect.fvVarIndices.empty()) return {};

  std::string text(fieldText(0));
  int32_t level = 0;
  std::size_t openCount = 0;
  for (std::size_t k = 1; k < effect.fvVarIndices.size(); ++k) {
    const int32_t fieldLevel = k < effect.fvNestingLevels.size() ? effect.fvNestingLevels[k] : 0;
    if (fieldLevel > level) {
      text += '(';
      level = fieldLevel;
      ++openCount;
    } else {
      text += " * ";
    }
    text += fieldText(k);
  }
  return text.append(openCount, ')');
}
