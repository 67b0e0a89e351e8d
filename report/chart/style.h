// What the style sheet of a chart document says: fonts, colours and palettes.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "report/chart/metrics.h"

namespace hierfit::report::chart {

/// What a mark is painted with: a part of the chart, or a step of a palette. None paints nothing.
enum class Part : uint8_t {
  None,
  Ground,
  Panel,
  Text,
  Axis,
  Grid,
  Mark,
  Guide,
  Curve,
  Categories,
  Significance,
  Sign,
};
inline constexpr size_t kParts = 12;
inline constexpr std::array<std::string_view, kParts> kPartNames = {
    "none", "ground", "panel", "text",       "axis",         "grid",
    "mark", "guide",  "curve", "categories", "significance", "sign"};
inline constexpr Part kFirstPalette = Part::Categories;

/// A colour by what it stands for; `step` counts within a palette.
struct Paint {
  Part part = Part::None;
  uint8_t step = 0;

  explicit operator bool() const { return part != Part::None; }
  bool operator==(const Paint&) const = default;
};

/// "text", "categories0".
std::string paint_name(Paint paint);

enum class Symbol : uint8_t { Circle, Square, Diamond, Triangle, Cross, Star, Hexagon, Frame };
inline constexpr std::array<std::string_view, 8> kSymbolNames = {
    "circle", "square", "diamond", "triangle", "cross", "star", "hexagon", "frame"};
/// The symbol of that name; a circle for any other.
Symbol symbol_named(std::string_view name);

/// A part of the text of a chart.
enum class Lettering : uint8_t {
  Title,
  SubTitle,
  Caption,
  Footnote,
  AxisTitle,
  AxisLabel,
  FacetTitle,
  LegendTitle,
  LegendLabel,
  MarkLabel,
};
inline constexpr std::array<std::string_view, 10> kLetteringNames = {
    "title",     "subTitle",   "caption",     "footnote",    "axisTitle",
    "axisLabel", "facetTitle", "legendTitle", "legendLabel", "markLabel"};

/// A step of a palette.
struct Series {
  std::string light = "#0072b2";  ///< "#rrggbb"
  std::string dark = "#56b4e9";
  Symbol symbol = Symbol::Circle;
  std::string dash;  ///< as in `stroke-dasharray`; empty: a whole line
};

/// The sheet. What a document leaves out is as in its defaults.
struct Style {
  std::string family = "Arial, Liberation Sans, Helvetica, sans-serif";
  std::array<Font, kLetteringNames.size()> fonts;
  std::array<std::vector<Series>, kParts> paints;  ///< one step each, but for palettes

  Style();
  const Font& font(Lettering lettering) const { return fonts[static_cast<size_t>(lettering)]; }
  size_t steps(Part palette) const { return paints[static_cast<size_t>(palette)].size(); }
  /// The series of a paint, its step taken around the palette.
  const Series& series(Paint paint) const;
};

}  // namespace hierfit::report::chart
