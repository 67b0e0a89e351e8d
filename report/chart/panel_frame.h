// Panels: where each stands, and where in it the mark of a row lies.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "report/chart/axes.h"
#include "report/chart/density.h"
#include "report/chart/pieces.h"

namespace hierfit::report::chart {

inline constexpr double kInset = 8;  ///< free of marks along the edges of a panel
inline constexpr double kTick = 5;
inline constexpr double kPanelGap = 18;
inline constexpr double kLongestNumber = 116;  ///< along y
/// Marks of their own, with tooltips; those of one colour are one mark beyond.
inline constexpr size_t kMostSingleMarks = 1000;

/// How panels share the width.
struct Grid {
  double width = 0;  ///< of all panels with their axes
  uint32_t columns = 1;
  uint32_t rows = 1;
  Box panel;  ///< the first one, ahead of its titles
  TextLines y_title;
};

/// Whether points are too many to be drawn as marks that say what they are.
struct Crowd {
  bool scatter = false;  ///< points stand for themselves, not for what an interval is about
  bool crowded = false;  ///< they are too many to say what they are
  bool dense = false;    ///< they are too many to be marks at all
};

/// What is shown; the rest is too much to be told apart.
struct Limits {
  size_t categories = 1;  ///< along x
  size_t colors = 1;
  bool beside = false;             ///< colours stand side by side
  size_t slots = 1;                ///< for colours in one place
  size_t most_rows = SIZE_MAX;     ///< of an element
  std::vector<std::string> notes;  ///< what is not shown
};

/// The room of places along x, in pixels.
struct Slots {
  double inset = kInset;  ///< free of places at both ends
  double band = 0;        ///< room of a place
  double slot = 0;        ///< room of a colour within it
};

/// Panels with common axes, and what is left out where their room does not suffice.
struct PanelFrame {
  const Binding& binding;
  HorizontalAxis x;
  VerticalAxis y;
  Grid grid;
  Crowd crowd;
  Limits limits;
  Slots slots;
  size_t title_lines = 0;  ///< above each panel
  std::vector<TickLabel> y_labels;
  TickLabels x_labels;
  bool joined = false;  ///< the marks are too many to be told apart one by one

  const Font& font(Lettering lettering) const { return binding.font(lettering); }

  LinearScale x_scale() const;
  LinearScale y_scale() const;
  double title_height() const;
  std::vector<TextLines> titles_of(const Panel& of) const;
  uint32_t column_of(uint32_t index) const;
  /// Whether no other panel stands below, so that this one shows the names along x.
  bool is_lowest(uint32_t index) const;
  /// The place of a panel without its titles.
  Box box_of_panel(uint32_t index) const;

  /// The pixel of a row from the left side of its panel; not finite where it has none.
  double x_at(const BoundElement& element, size_t row) const;
  /// The same from the top.
  double y_at(const BoundElement& element, size_t row) const;
  bool inside(double y_pixel) const { return y_pixel >= -1 && y_pixel <= grid.panel.height + 1; }

  /// Calls `draw` with the rows of each mark of the panel.
  template <class Draw>
  void each_mark(const BoundElement& element, uint32_t index, Draw draw) const {
    const auto draw_in = [&](MarkRows mark) {
      if (element.in_panel(mark.row, index)) draw(mark);
    };
    element.each_mark(draw_in, limits.most_rows);
  }
};

/// Shares out `width`. None where an axis has no variable: nothing is to be drawn.
std::optional<PanelFrame> arrange_panels(const Binding& binding, double width);

/// Elements of a panel, from its upper left corner.
void draw_points(std::vector<Mark>& marks,
                 const PanelFrame& frame,
                 const BoundElement& element,
                 uint32_t panel);
void draw_lines(std::vector<Mark>& marks,
                const PanelFrame& frame,
                const BoundElement& element,
                uint32_t panel);
void draw_intervals(std::vector<Mark>& marks,
                    const PanelFrame& frame,
                    const BoundElement& element,
                    uint32_t panel);
void draw_guides(std::vector<Mark>& marks, const PanelFrame& frame, uint32_t panel);

/// The points of all elements by panel, where the frame is dense; none else.
std::vector<DensityRaster> count_points(const PanelFrame& frame);

}  // namespace hierfit::report::chart
