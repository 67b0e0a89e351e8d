// Reads the model as the user specified it: `BuildSettings`.
#include <algorithm>
#include <utility>

#include "backend/hierfit/reader/Attributes.h"
#include "backend/hierfit/reader/Elements.h"
#include "backend/hierfit/reader/HFITParseOutXML.h"

namespace {

constexpr std::string_view kDistributions[] = {"BINOMIAL", "GAMMA",  "IGAUSS", "NOMINAL",
                                               "ORDINAL",  "NEGBIN", "NORMAL", "POISSON"};
static_assert(std::size(kDistributions) == Distribution::kUnknown);

constexpr std::string_view kLinks[] = {"CLOGLOG", "IDENTITY", "LOG",    "LOGC",   "LOGIT",
                                       "NLOGLOG", "POWER",    "PROBIT", "CAUCHIT"};
static_assert(std::size(kLinks) == Link::kUnknown);

constexpr std::string_view kCovarianceTypes[] = {"VC",   "AR1", "ARMA11", "CS",
                                                 "DIAG", "ID",  "TP",     "UNSTRUCTURED"};
static_assert(std::size(kCovarianceTypes) == CovarianceType::kUnknown);

constexpr std::string_view kAdjustments[] = {"LSD", "SEQBONFERRONI", "SEQSIDAK"};
static_assert(std::size(kAdjustments) == Adjustment::kUnknown);

constexpr std::string_view kContrastTypes[] = {"Pairwise", "Deviation", "Simple", "None"};
static_assert(std::size(kContrastTypes) == ContrastType::kUnknown);

constexpr std::string_view kReferenceTypes[] = {"Last", "Value"};
static_assert(std::size(kReferenceTypes) == ReferenceType::kUnknown);

int32_t ParseDistribution(const std::string& text) { return CodeOf(kDistributions, text); }
int32_t ParseLink(const std::string& text) { return CodeOf(kLinks, text); }
int32_t ParseAdjustment(const std::string& text) { return CodeOf(kAdjustments, text); }
int32_t ParseContrastType(const std::string& text) { return CodeOf(kContrastTypes, text); }
int32_t ParseReferenceType(const std::string& text) { return CodeOf(kReferenceTypes, text); }
int32_t ParseTruncated(const std::string& text) { return TruncateToInteger(String2Double(text)); }

constexpr double kDefaultBand = 2;

// clang-format off
using Settings = BuildSettingsStruct;

constexpr AttributeBinding<Settings> kParameterValues[] = {
    {"TargetField", &Settings::fTargetField},
    {"UseTrials", &Settings::fUseTrials},
    {"TrialsField", &Settings::fTrialsField},
    {"TrialsValue", &Settings::fTrialsValue, kSystemMissing, &ParseTruncated},
    {"DistributionOfTarget", &Settings::fDistributionText},
    {"DistributionOfTarget", &Settings::fDistribution, Distribution::kUnknown, &ParseDistribution},
    {"LinkFunctionType", &Settings::fLinkText},
    {"LinkFunctionType", &Settings::fLink, Link::kUnknown, &ParseLink},
    {"LinkFunctionParam", &Settings::fLinkParamText},
    {"LinkFunctionParam", &Settings::fLinkParam},
    {"Intercept", &Settings::fIntercept},
    {"ResidualCovarianceType", &Settings::fResidualCovType, CovarianceType::kUnknown,
     &HFITParseOutXML::ParseCovarianceType},
    {"ResidualCovarianceTBand", &Settings::fResidualCovTBand, kDefaultBand},
    {"CIn", &Settings::fCIn},
    {"pAdjustment", &Settings::fPAdjustment, Adjustment::kUnknown, &ParseAdjustment},
};

constexpr AttributeBinding<RandomSpec> kRandomSpecValues[] = {
    {"Intercept", &RandomSpec::fIntercept},
    {"CovarianceType", &RandomSpec::fCovType, CovarianceType::kUnknown, &HFITParseOutXML::ParseCovarianceType},
    {"CovarianceTBand", &RandomSpec::fCovTBand, kDefaultBand},
};

constexpr AttributeBinding<EmmeansSpec> kEmmeansSpecValues[] = {
    {"EstimateMeans", &EmmeansSpec::fEstimateMeans},
    {"CompareFactor", &EmmeansSpec::fCompareFactor},
    {"ContrastType", &EmmeansSpec::fContrastType, ContrastType::kUnknown, &ParseContrastType},
    {"ReferenceType", &EmmeansSpec::fReferenceType, ReferenceType::kUnknown, &ParseReferenceType},
    {"ReferenceValue", &EmmeansSpec::fReferenceValue},
};
// clang-format on

/// What a `Parameter` or `Attribute` of this name has below it, and how that is read.
template <class Record>
struct StructureBinding {
  std::string_view name;
  bool (*read)(HFITParseOutXML& reader, SDOMXMLWrapper& element, Record& record);
};

bool ReadOptionalEffect(HFITParseOutXML& reader, SDOMXMLWrapper& parent, EffectStruct& effect) {
  SDOMXMLWrapper* effectElm = FirstElement(parent, "StructuredValue");
  return effectElm == nullptr || reader.ReadEffectStruct(effectElm, effect);
}

bool ReadOptionalEffects(HFITParseOutXML& reader,
                         SDOMXMLWrapper& parent,
                         std::vector<EffectStruct>& vEffects) {
  SDOMXMLWrapper* listElm = FirstElement(parent, "ListValue");
  return listElm == nullptr || reader.ReadEffectList(listElm, vEffects);
}

bool ReadOptionalTexts(HFITParseOutXML& reader,
                       SDOMXMLWrapper& parent,
                       std::vector<std::string>& vTexts) {
  SDOMXMLWrapper* listElm = FirstElement(parent, "ListValue");
  return listElm == nullptr || reader.ReadStringList(listElm, vTexts);
}

constexpr StructureBinding<Settings> kParameterStructures[] = {
    {"TargetField",
     [](HFITParseOutXML& reader, SDOMXMLWrapper&, Settings& settings) {
       settings.fTargetIndex = reader.FieldIndex(settings.fTargetField);
       return settings.fTargetIndex >= 0;
     }},
    {"TrialsField",
     [](HFITParseOutXML& reader, SDOMXMLWrapper&, Settings& settings) {
       settings.fTrialsIndex = reader.FieldIndex(settings.fTrialsField);
       return settings.fTrialsIndex >= 0;
     }},
    {"ResidualSubjectSpec",
     [](HFITParseOutXML& reader, SDOMXMLWrapper& element, Settings& settings) {
       return ReadOptionalEffect(reader, element, settings.fResidualSubjectSpec);
     }},
    {"ResidualGroupSpec",
     [](HFITParseOutXML& reader, SDOMXMLWrapper& element, Settings& settings) {
       return ReadOptionalTexts(reader, element, settings.fvResidualGroupSpec);
     }},
    {"FixedEffectList",
     [](HFITParseOutXML& reader, SDOMXMLWrapper& element, Settings& settings) {
       return ReadOptionalEffects(reader, element, settings.fvFixedEffectList);
     }},
    {"RandomSpecs",
     [](HFITParseOutXML& reader, SDOMXMLWrapper& element, Settings& settings) {
       return reader.ReadRandomSpecs(&element, settings.fvRandomSpecs);
     }},
    {"EMMEANS",
     [](HFITParseOutXML& reader, SDOMXMLWrapper& element, Settings& settings) {
       return reader.ReadEmmeansSpecs(&element, settings.fvEmmeansSpecs);
     }},
};

constexpr StructureBinding<RandomSpec> kRandomSpecStructures[] = {
    {"EffectList",
     [](HFITParseOutXML& reader, SDOMXMLWrapper& element, RandomSpec& spec) {
       return ReadOptionalEffects(reader, element, spec.fvEffectList);
     }},
    {"SubjectSpec",
     [](HFITParseOutXML& reader, SDOMXMLWrapper& element, RandomSpec& spec) {
       return ReadOptionalEffect(reader, element, spec.fSubjectSpec);
     }},
    {"GroupSpec",
     [](HFITParseOutXML& reader, SDOMXMLWrapper& element, RandomSpec& spec) {
       return ReadOptionalTexts(reader, element, spec.fvGroupSpec);
     }},
};

constexpr StructureBinding<EmmeansSpec> kEmmeansSpecStructures[] = {
    {"Factors",
     [](HFITParseOutXML& reader, SDOMXMLWrapper& element, EmmeansSpec& spec) {
       return reader.ReadEffectStruct(FirstElement(element, "StructuredValue"), spec.fFactors);
     }},
};

/// Reads one named element: its value into the field of that name, what stands below it into the
/// structure of that name. A name that is bound to nothing is passed over.
template <class Record, std::size_t V, std::size_t S>
bool ReadNamed(HFITParseOutXML& reader,
               SDOMXMLWrapper& element,
               const std::string& name,
               const AttributeBinding<Record> (&values)[V],
               const StructureBinding<Record> (&structures)[S],
               Record& record) {
  std::string value;
  ReadText(element, "value", value);
  StoreNamed(values, name, value, record);
  const auto structure = std::ranges::find(structures, name, &StructureBinding<Record>::name);
  return structure == std::end(structures) || structure->read(reader, element, record);
}

/// Reads the `Attribute` children up to the first that fails. False also when there are none.
template <class Record, std::size_t V, std::size_t S>
bool ReadNamedAttributes(HFITParseOutXML& reader,
                         SDOMXMLWrapper& structuredElm,
                         const AttributeBinding<Record> (&values)[V],
                         const StructureBinding<Record> (&structures)[S],
                         Record& record) {
  SDOMXMLIterator* attributeIter = Children(structuredElm, "Attribute");
  if (attributeIter == nullptr) return false;
  std::string name;
  for (SDOMXMLWrapper* attributeElm = nullptr; Step(attributeIter, attributeElm);) {
    ReadText(*attributeElm, "name", name);
    if (!ReadNamed(reader, *attributeElm, name, values, structures, record)) return false;
  }
  return true;
}

/// A walk over the structured values of the list below a parameter; null without either.
SDOMXMLIterator* StructuredValues(SDOMXMLWrapper& parameterElm) {
  SDOMXMLWrapper* listElm = FirstElement(parameterElm, "ListValue");
  return listElm == nullptr ? nullptr : Children(*listElm, "StructuredValue");
}

}  // namespace

int32_t HFITParseOutXML::ParseCovarianceType(const std::string& text) {
  return CodeOf(kCovarianceTypes, text);
}

bool HFITParseOutXML::ReadBuildSettings(SDOMXMLWrapper* buildSettingsElm,
                                        BuildSettingsStruct& buildSettingsStruct) {
  if (buildSettingsElm == nullptr) return false;
  // The algorithm does not stand here; it was read before.
  BuildSettingsStruct fresh;
  fresh.fAlgorithmName = std::move(buildSettingsStruct.fAlgorithmName);
  buildSettingsStruct = std::move(fresh);
  SDOMXMLIterator* parameterIter = Children(*buildSettingsElm, "Parameter");
  if (parameterIter == nullptr) return false;

  std::string name;
  for (SDOMXMLWrapper* parameterElm = nullptr; Step(parameterIter, parameterElm);) {
    if (!parameterElm->GetAttribute("name", name)) return false;
    if (!ReadNamed(*this, *parameterElm, name, kParameterValues, kParameterStructures,
                   buildSettingsStruct)) {
      return false;
    }
  }
  // Everything behind the settings takes the target for a field of the dictionary.
  return buildSettingsStruct.fTargetIndex >= 0;
}

bool HFITParseOutXML::ReadRandomSpecs(SDOMXMLWrapper* parameterElm,
                                      std::vector<RandomSpec>& vRandomSpecs) {
  if (parameterElm == nullptr) return false;
  SDOMXMLIterator* specIter = StructuredValues(*parameterElm);
  if (specIter == nullptr) return false;

  for (SDOMXMLWrapper* specElm = nullptr; Step(specIter, specElm);) {
    RandomSpec spec;
    if (!ReadNamedAttributes(*this, *specElm, kRandomSpecValues, kRandomSpecStructures, spec)) {
      return false;
    }
    vRandomSpecs.push_back(std::move(spec));
  }
  return true;
}

bool HFITParseOutXML::ReadEmmeansSpecs(SDOMXMLWrapper* EMMEANSElm,
                                       std::vector<EmmeansSpec>& vEmmeansSpecs) {
  if (EMMEANSElm == nullptr) return false;
  SDOMXMLIterator* specIter = StructuredValues(*EMMEANSElm);
  if (specIter == nullptr) return false;

  for (SDOMXMLWrapper* specElm = nullptr; Step(specIter, specElm);) {
    if (Children(*specElm, "Attribute") == nullptr) return false;
    EmmeansSpec& spec = vEmmeansSpecs.emplace_back();
    if (!ReadNamedAttributes(*this, *specElm, kEmmeansSpecValues, kEmmeansSpecStructures, spec)) {
      return false;
    }
  }
  return true;
}

bool HFITParseOutXML::ReadEffectList(SDOMXMLWrapper* effectListElm,
                                     std::vector<EffectStruct>& vEffects) {
  if (effectListElm == nullptr) return false;
  SDOMXMLIterator* effectIter = Children(*effectListElm, "StructuredValue");
  for (SDOMXMLWrapper* effectElm = nullptr; Step(effectIter, effectElm);) {
    EffectStruct effect;
    if (!ReadEffectStruct(effectElm, effect)) return false;
    vEffects.push_back(std::move(effect));
  }
  return true;
}

bool HFITParseOutXML::ReadEffectStruct(SDOMXMLWrapper* structuredValueElm,
                                       EffectStruct& effectStruct) {
  if (structuredValueElm == nullptr) return false;
  SDOMXMLIterator* attributeIter = Children(*structuredValueElm, "Attribute");
  if (attributeIter == nullptr) return false;

  bool isRead = false;
  for (SDOMXMLWrapper* attributeElm = nullptr; Step(attributeIter, attributeElm);) {
    isRead = ReadEffectAttribute(*attributeElm, effectStruct);
  }
  return isRead;
}

bool HFITParseOutXML::ReadEffectAttribute(SDOMXMLWrapper& attributeElm, EffectStruct& effect) {
  std::string name;
  ReadText(attributeElm, "name", name);
  SDOMXMLWrapper* listElm = FirstElement(attributeElm, "ListValue");
  if (listElm == nullptr) return false;

  SDOMXMLIterator* valueIter = Children(*listElm, "Value");
  std::string text;
  for (SDOMXMLWrapper* valueElm = nullptr; Step(valueIter, valueElm);) {
    ReadText(*valueElm, "value", text);
    if (name == "Fields") {
      effect.fvFieldNames.push_back(text);
      const int32_t index = FieldIndex(text);
      if (index < 0) return false;
      effect.fvVarIndices.push_back(index);
    } else if (name == "NestingLevels") {
      effect.fvNestingLevels.push_back(text.empty() ? 0 : String2Integer(text));
    }
  }
  return true;
}

bool HFITParseOutXML::ReadStringList(SDOMXMLWrapper* listValueElm,
                                     std::vector<std::string>& vTexts) {
  if (listValueElm == nullptr) return true;
  SDOMXMLIterator* valueIter = Children(*listValueElm, "Value");
  for (SDOMXMLWrapper* valueElm = nullptr; Step(valueIter, valueElm);) {
    ReadText(*valueElm, "value", vTexts.emplace_back());
  }
  return true;
}
