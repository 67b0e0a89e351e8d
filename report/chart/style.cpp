#include "report/chart/style.h"

#include <algorithm>

namespace hierfit::report::chart {
namespace {

struct Default {
  Part part;
  const char* light;
  const char* dark;
  Symbol symbol = Symbol::Circle;
  const char* dash = "";
};
constexpr Default kDefaults[] = {
    {Part::None, "none", "none"},
    {Part::Ground, "#ffffff", "#16181d"},
    {Part::Panel, "#ffffff", "#16181d"},
    {Part::Text, "#1f2328", "#e6e8eb"},
    {Part::Axis, "#5b6270", "#a4acb8"},
    {Part::Grid, "#dfe3e8", "#333943"},
    {Part::Mark, "#0068a8", "#56b4e9"},
    {Part::Guide, "#6b7280", "#9aa3b0"},
    {Part::Curve, "#b34700", "#f0a24f"},
    {Part::Categories, "#0072b2", "#56b4e9", Symbol::Circle, ""},
    {Part::Categories, "#b84a00", "#f08a3c", Symbol::Square, "6 3"},
    {Part::Categories, "#00795a", "#2fc49a", Symbol::Triangle, "2 2"},
    {Part::Categories, "#a8558a", "#d994bd", Symbol::Diamond, "8 3 2 3"},
    {Part::Categories, "#8a6d00", "#f0e442", Symbol::Cross, "4 2"},
    {Part::Categories, "#1b1f24", "#f2f4f7", Symbol::Star, "1 3"},
    {Part::Categories, "#3d8dbd", "#a6d4f2", Symbol::Hexagon, "10 4"},
    {Part::Categories, "#767b83", "#9aa0a8", Symbol::Frame, "6 2 1 2"},
    {Part::Significance, "#7d8590", "#8b949e", Symbol::Circle, "4 3"},
    {Part::Significance, "#b84a00", "#f0a24f", Symbol::Square, ""},
    {Part::Sign, "#0072b2", "#56b4e9", Symbol::Circle, ""},
    {Part::Sign, "#b84a00", "#f08a3c", Symbol::Square, "6 3"},
};

}  // namespace

std::string paint_name(Paint paint) {
  std::string name(kPartNames[static_cast<size_t>(paint.part)]);
  if (paint.part >= kFirstPalette) name += std::to_string(paint.step);
  return name;
}

Symbol symbol_named(std::string_view name) {
  const auto found = std::ranges::find(kSymbolNames, name);
  return found == kSymbolNames.end() ? Symbol::Circle
                                     : static_cast<Symbol>(found - kSymbolNames.begin());
}

Style::Style()
    : fonts{{{16, true},
             {13, false},
             {12, false},
             {12, false},
             {13, true},
             {12, false},
             {12, true},
             {12, true},
             {12, false},
             {12, false}}} {
  for (const Default& row : kDefaults) {
    paints[static_cast<size_t>(row.part)].push_back({row.light, row.dark, row.symbol, row.dash});
  }
}

const Series& Style::series(Paint paint) const {
  const std::vector<Series>& steps = paints[static_cast<size_t>(paint.part)];
  return steps[paint.step % steps.size()];
}

}  // namespace hierfit::report::chart
