// The data of a chart: its sources and variables, the template roles that they fill, its rows.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "host/chart_data.h"
#include "host/chart_document.h"
#include "host/dictionary.h"

#include "backend/hierfit/store/Emmeans.h"

/// A variable of a chart's data, with the role of the template that it fills.
struct ChartVariable {
  const char* name;
  bool categorical = false;
  const VELT_Format* format = nullptr;  ///< null for none
  const char* label = nullptr;          ///< null for none
  const char* labelKey = "";
  const char* role = name;
};

inline const char* NameOf(const ChartVariable& variable) { return variable.name; }
inline const char* NameOf(const char* name) { return name; }

/// Adds a source and its variables, in their order. `handles` has a record for each of them.
template <class Variable, std::size_t N>
void AddSource(VarDataProcessor& data,
               const std::string& source,
               int32_t rowCount,
               const Variable (&variables)[N],
               std::array<_varinfo, N>& handles) {
  data.AddDataSource(source, rowCount);
  for (std::size_t i = 0; i < N; ++i) {
    data.AddVariable(source, NameOf(variables[i]), &handles[i]);
  }
}

/// Binds the roles of a template to the variables of a source, in their order.
void AddRoles(XGlyphTemplate& glyphTemplate,
              const std::string& source,
              std::span<const ChartVariable> variables);

/// The chart document that a template makes with its bindings.
std::string ConvertedText(XGlyphTemplate& glyphTemplate);

/// Sets a value as a number when it is one, else as a text. Gives whether it is one.
bool SetNumberOrText(VarDataProcessor& data,
                     const _varinfo& variable,
                     int32_t row,
                     const std::string& text);

/// The charts of means draw each cell as two rows, 2i and 2i + 1. These write both.
void SetPair(VarDataProcessor& data,
             const _varinfo& variable,
             std::size_t cell,
             double first,
             double second);
void SetPairText(VarDataProcessor& data,
                 const _varinfo& variable,
                 std::size_t cell,
                 const std::string& text);
void SetPairNumberOrText(VarDataProcessor& data,
                         const _varinfo& variable,
                         std::size_t cell,
                         const std::string& text);

/// The text of a cell; empty for one that the list does not have, and without a list.
const std::string& ValueAt(const CoordinatesData* coordinates, std::size_t cell);
