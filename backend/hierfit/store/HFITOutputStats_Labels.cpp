// The texts of effects, terms and labels.
#include "backend/hierfit/store/EffectText.h"
#include "backend/hierfit/store/HFITOutputStats.h"
#include "backend/hierfit/store/LabelText.h"

namespace {

/// "x*x*z" for the covariates x, with power 2, and z.
void AppendCovariates(const std::vector<CovariateData>& vCovariates, LabelText& text) {
  std::string_view separator;
  for (const CovariateData& covariate : vCovariates) {
    const int32_t count = covariate.fPower > 1 ? covariate.fPower : 1;
    for (int32_t i = 0; i < count && !text.IsFull(); ++i) {
      text.Append(separator);
      text.Append(covariate.fField);
      separator = "*";
    }
  }
}

/// "a=1" for a factor that is the whole term; the name alone without a value.
void AppendLoneFactor(const FactorData& factor, LabelText& text) {
  text.Append(factor.fField);
  if (factor.fValue.GetStringValue().empty()) return;
  text.Append("=");
  text.Append(factor.fValue.GetStringValue());
}

/// "[a=1]*[b=2]", with parentheses around nested factors.
void AppendFactors(const std::vector<FactorData>& vFactors, LabelText& text) {
  std::size_t nestCount = 0;
  for (const FactorData& factor : vFactors) {
    if (factor.fNest) {
      text.Append("(");
      ++nestCount;
    } else if (&factor != &vFactors.front()) {
      text.Append("*");
    }
    text.Append("[");
    text.Append(factor.fField);
    text.Append("=");
    text.Append(factor.fValue.GetStringValue());
    text.Append("]");
  }
  text.Append(std::string(nestCount, ')'));
}

}  // namespace

std::string LabelText::Take() {
  if (!IsFull()) return std::move(text_);
  const auto isInsideCharacter = [](char byte) { return (byte & 0xC0) == 0x80; };
  std::size_t end = kMaxLabelBytes;
  while (end > 0 && isInsideCharacter(text_[end]))
    --end;
  text_.resize(end);
  return std::move(text_ += "\u2026");
}

bool HFITOutputStats::GetEffectText(const RandomSpec& randomSpec,
                                    uint32_t effectIndex,
                                    std::string& text) const {
  text.clear();
  if (randomSpec.fIntercept && effectIndex == 0) {
    text = GetTranslatedText("Intercept");
    return true;
  }
  const std::size_t position = randomSpec.fIntercept ? effectIndex - 1 : effectIndex;
  if (position >= randomSpec.fvEffectList.size()) return false;

  const EffectStruct& effect = randomSpec.fvEffectList[position];
  // An effect whose first field is unknown has a name without an index.
  if (effect.fvVarIndices.empty() && !effect.fvFieldNames.empty()) {
    text = effect.fvFieldNames.front();
    return true;
  }
  text = JoinEffectFields(effect, [&effect](std::size_t field) -> std::string_view {
    return effect.fvFieldNames[field];
  });
  return true;
}

bool HFITOutputStats::GetRegressionParamText(const RegressionParamData& regressionParamData,
                                             std::string& text) const {
  if (regressionParamData.fIsIntercept) {
    text = GetTranslatedText("Intercept");
    return true;
  }
  const std::vector<FactorData>& vFactors = regressionParamData.fvFactors;
  LabelText label;
  AppendCovariates(regressionParamData.fvCovariates, label);
  if (label.IsEmpty() && vFactors.size() == 1) {
    AppendLoneFactor(vFactors.front(), label);
  } else if (!vFactors.empty()) {
    if (!label.IsEmpty() && !vFactors.front().fNest) label.Append("*");
    AppendFactors(vFactors, label);
  }
  text = label.Take();
  return true;
}

bool HFITOutputStats::GetPrintableText(const PrintableListData& printableListData,
                                       std::string& text) const {
  if (printableListData.fMapId == -1) {
    text = printableListData.fPattern;
    return true;
  }
  const RegressionParamData* term = nullptr;
  if (FindTerm(printableListData.fMapId, printableListData.fPattern, term) != 0) return false;
  return GetRegressionParamText(*term, text);
}

bool HFITOutputStats::GetPrintableListText(const PrintableListData& printableListData,
                                           int32_t block,
                                           std::string& key,
                                           std::vector<std::string>& vParameters,
                                           std::string& text) const {
  if (printableListData.fMapId != -1) return true;

  key = printableListData.fPattern;
  vParameters.clear();
  bool isUsable = true;
  if (key != "VarOfEffect") {
    for (const PrintableListData& subList : printableListData.fvSubLists) {
      GetPrintableText(subList, vParameters.emplace_back());
    }
  } else if (printableListData.fvSubLists.size() == 1) {
    std::string effect;
    isUsable = GetBlockEffectText(printableListData.fvSubLists.front().fPattern, block, effect);
    if (isUsable) vParameters.push_back(std::move(effect));
  }

  if (vParameters.size() > 2) return isUsable;
  const auto parameter = [&vParameters](std::size_t i) {
    return i < vParameters.size() ? vParameters[i].c_str() : nullptr;
  };
  text = GetTranslatedText(key, parameter(0), parameter(1));
  return isUsable;
}

bool HFITOutputStats::GetBlockEffectText(const std::string& effectNumber,
                                         int32_t block,
                                         std::string& text) const {
  const int32_t effect = effectNumber.empty() ? -1 : String2Integer(effectNumber);
  if (effect < 0 || block < 0 || fpBuildSettings == nullptr) return false;
  const auto position = static_cast<std::size_t>(block);
  if (position >= fpBuildSettings->fvRandomSpecs.size()) return false;
  return GetEffectText(fpBuildSettings->fvRandomSpecs[position], static_cast<uint32_t>(effect),
                       text);
}
