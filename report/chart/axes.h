// The axes of panels: where values stand, how they are named, and how much room the names take.
#pragma once

#include <string>
#include <vector>

#include "report/chart/binding.h"
#include "report/chart/pieces.h"
#include "report/chart/scale.h"

namespace hierfit::report::chart {

/// The values along x: categories side by side, or a scale of numbers.
struct HorizontalAxis {
  bool categorical = false;
  ValueIndex categories;
  Range range;
  const ChartVariable* variable = nullptr;
  std::string title;
};

struct VerticalAxis {
  Range range;
  const ChartVariable* variable = nullptr;
  std::string title;
};

HorizontalAxis horizontal_axis(const Binding& binding);
VerticalAxis vertical_axis(const Binding& binding);

/// Whether one place along x of one panel holds marks of several colours.
bool colors_share_places(const Binding& binding, const HorizontalAxis& axis);

/// A name on an axis.
struct TickLabel {
  double at = 0;  ///< pixels from the start of the axis
  std::string text;
};

/// The names along x, as they fit.
struct TickLabels {
  std::vector<TickLabel> labels;
  double turn = 0;  ///< degrees; 0: upright, in lines
  double room = 0;  ///< length of the longest that is let stand, or width of a line
  size_t lines = 1;
  double height = 0;
  std::vector<std::string> keys;  ///< the names by number, where there is room for numbers alone
};

/// Names of the first `count` categories in bands of `band` pixels: in lines, else turned, else
/// every n-th; `lead` is the room ahead of the axis. Where names cut to their room would look the
/// same they have more of it, and in the end numbers stand for them.
TickLabels category_labels(
    const HorizontalAxis& axis, size_t count, const Font& font, double band, double lead);

/// Numbers along an axis of `length` pixels that do not touch one another.
std::vector<TickLabel> number_labels(const Binding& binding,
                                     const ChartVariable* variable,
                                     const LinearScale& scale,
                                     double length,
                                     const Font& font,
                                     bool upright);

/// Numbers at powers of ten along an upright axis of logarithms, with 2 and 5 times them where
/// there is room.
std::vector<TickLabel> log_labels(const Binding& binding,
                                  const LinearScale& scale,
                                  const Font& font);

}  // namespace hierfit::report::chart
