// A scene as SVG. Knows marks alone, neither axes nor legends.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "report/chart/scene.h"

namespace hierfit::report::chart {

/// Ahead of an `svg` element that is a file.
inline constexpr std::string_view kSvgHead = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

struct SvgSettings {
  /// Colours by class, which the style sheet of the page gives for light and dark; else literal
  /// colours of the light theme, and the picture is a file of its own.
  bool by_class = false;
  /// Ahead of every id; unique in the page.
  std::string_view prefix = "c";
  /// Where the picture begins within another one, in pixels from its top.
  std::optional<double> top = {};
};

/// Marks with tooltips that are reached by keyboard; of a scene with more, none is.
inline constexpr size_t kMostReachable = 600;

/// Appends an `svg` element. Its title and description are those of the scene. In a page each mark
/// with a tooltip shows it under the pointer and with the keyboard's focus, without script; in a
/// file it is the mark's title.
void append_svg(std::string& out,
                const Scene& scene,
                const Style& style,
                const SvgSettings& settings);

/// Appends the start of an `svg` element that others lie in, with a ground of its own.
void append_svg_start(std::string& out, double width, double height);

}  // namespace hierfit::report::chart
