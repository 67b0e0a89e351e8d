#include "backend/hierfit/charts/ChartData.h"

#include "backend/hierfit/charts/ChartText.h"

void AddRoles(XGlyphTemplate& glyphTemplate,
              const std::string& source,
              std::span<const ChartVariable> variables) {
  for (const ChartVariable& variable : variables) {
    glyphTemplate.addVariable(variable.role, variable.name, variable.categorical, variable.labelKey,
                              source, variable.format, variable.label, 0, nullptr);
  }
}

std::string ConvertedText(XGlyphTemplate& glyphTemplate) {
  std::string text;
  std::string second;
  // The document is what the text says; the answer tells nothing more.
  static_cast<void>(glyphTemplate.convert(text, second));
  return text;
}

bool SetNumberOrText(VarDataProcessor& data,
                     const _varinfo& variable,
                     int32_t row,
                     const std::string& text) {
  double number = 0.0;
  const bool isNumber = ParseNumber(text, number);
  if (isNumber) {
    data.SetVariableValue(&variable, row, number);
  } else {
    data.SetStringVariableValue(&variable, row, text);
  }
  return isNumber;
}

void SetPair(VarDataProcessor& data,
             const _varinfo& variable,
             std::size_t cell,
             double first,
             double second) {
  const auto row = static_cast<int32_t>(2 * cell);
  data.SetVariableValue(&variable, row, first);
  data.SetVariableValue(&variable, row + 1, second);
}

void SetPairText(VarDataProcessor& data,
                 const _varinfo& variable,
                 std::size_t cell,
                 const std::string& text) {
  const auto row = static_cast<int32_t>(2 * cell);
  data.SetStringVariableValue(&variable, row, text);
  data.SetStringVariableValue(&variable, row + 1, text);
}

void SetPairNumberOrText(VarDataProcessor& data,
                         const _varinfo& variable,
                         std::size_t cell,
                         const std::string& text) {
  double number = 0.0;
  if (ParseNumber(text, number)) {
    SetPair(data, variable, cell, number, number);
  } else {
    SetPairText(data, variable, cell, text);
  }
}

const std::string& ValueAt(const CoordinatesData* coordinates, std::size_t cell) {
  static const std::string kNothing;
  if (coordinates == nullptr || cell >= coordinates->fvValues.size()) return kNothing;
  return coordinates->fvValues[cell];
}
