// What a chart document says to draw, as structures.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "output/chart.h"
#include "output/hide_condition.h"
#include "output/number_format.h"
#include "report/chart/style.h"

namespace hierfit::report::chart {

enum class RoleKind : uint8_t {
  X,
  Y,
  X2,
  Y2,
  Key,
  From,
  To,
  Color,
  Shape,
  Transparency,
  Size,
  Label,
};
inline constexpr std::array<std::string_view, 12> kRoleNames = {
    "x", "y", "x2", "y2", "key", "from", "to", "color", "shape", "transparency", "size", "label"};

/// A value of a role in the order of its palette, or with its symbol.
struct Level {
  std::string value;
  std::optional<Symbol> symbol;
};

/// A binding of a role to a variable.
struct Role {
  std::string variable;  ///< its role in the source; empty: the role is not bound
  Part palette = Part::Categories;
  std::vector<Level> levels;
  std::optional<double> low;
  std::optional<double> high;
  std::optional<double> step;  ///< from it on values are of the stronger kind
};

/// An entry of a tooltip.
struct TooltipEntry {
  std::string variable;
  std::string words;  ///< ahead of the value
};

struct Roles {
  std::array<Role, kRoleNames.size()> of;
  std::vector<TooltipEntry> tooltip;

  const Role& operator[](RoleKind kind) const { return of[static_cast<size_t>(kind)]; }
};

enum class ElementKind : uint8_t { Point, Line, Interval, Edge, Node, Text };
inline constexpr std::array<std::string_view, 6> kElementNames = {"point", "line", "interval",
                                                                  "edge",  "node", "text"};
/// Whether an element of that kind stands on axes.
inline bool is_positional(ElementKind kind) { return kind <= ElementKind::Interval; }

enum class Rows : uint8_t { All, First, Second, Pairs };

struct Embedded;

/// Something that is drawn.
struct Element {
  ElementKind kind = ElementKind::Point;
  std::string source;
  Rows rows = Rows::All;
  bool whisker = false;  ///< of an interval: a line with end marks
  Roles roles;           ///< with those of the graph where it has none of its own
  std::unique_ptr<Embedded> embedded;
};

struct Axis {
  bool visible = true;
  bool zero = false;
  bool log = false;  ///< of the numbers of rows
  std::optional<double> min;
  std::optional<double> max;
  std::string label;
};

struct LineGuide {
  std::optional<double> y;  ///< horizontal; else by slope and intercept
  double slope = 0;
  double intercept = 0;
  output::HideCondition hidden{""};
};

struct Legend {
  RoleKind role = RoleKind::Color;
  std::string title;
};

/// The distribution of a curve: the method's name and its parameters.
struct Distribution {
  std::string method;
  double parameter = output::kSystemMissing;
  double secondary = output::kSystemMissing;
};

struct Histogram {
  std::string variable;
  std::string weight;
  size_t bins = 0;  ///< 0: the renderer chooses
  std::optional<Distribution> curve;
};

struct Facet {
  std::string variable;
  bool across_columns = true;
};

struct Graph {
  double aspect = 0;  ///< height by width of a panel; 0: as the layout likes
  bool circle = false;
  bool rows = false;                ///< categories run down, numbers along x
  std::array<double, 4> margins{};  ///< top, right, bottom, left
  Axis x;
  Axis y;
  bool has_axes = false;
  std::vector<Facet> facets;
  double cluster = 0.6;  ///< share of a category's room
  std::vector<Legend> legends;
  std::vector<LineGuide> guides;
  std::vector<Element> elements;  ///< from back to front
  std::optional<Histogram> histogram;
};

/// A graph inside a node.
struct Embedded {
  int field_type = 6;
  Graph graph;
  std::string source;
};

/// Running texts; an empty one is not shown.
struct Texts {
  std::string title;
  std::string sub_title;
  std::string caption;
  std::string footnote;
  std::vector<std::string> notes;
};

struct Plan {
  Graph graph;
  Texts texts;
  Style style;
};

/// Reads a chart document. What it lacks or says wrongly is as in the defaults.
Plan read_plan(const output::Chart& chart);

}  // namespace hierfit::report::chart
