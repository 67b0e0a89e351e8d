// Panels: where each stands, and where in it the mark of a row lies.
#pragma once

#include <algorithm>
#include <cstdint>
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

/// How panels with common axes share the room, and what is left out where it does not suffice.
struct PanelFrame {
  const Binding& binding;
  HorizontalAxis x;
  VerticalAxis y;
  double width = 0;  ///< of all panels with their axes
  uint32_t columns = 1;
  uint32_t rows = 1;
  Box panel;               ///< the first one, ahead of its titles
  size_t title_lines = 0;  ///< above each panel
  TextLines y_title;
  std::vector<TickLabel> y_labels;
  TickLabels x_labels;
  double inset = kInset;        ///< free of places at both ends of x
  size_t categories = 0;        ///< along x, that are shown
  size_t colors = 0;            ///< that are shown
  size_t slots = 1;             ///< colours side by side in one place
  double band = 0;              ///< room of a place along x, in pixels
  double slot = 0;              ///< room of a colour within it
  size_t most_rows = SIZE_MAX;  ///< of an element, that are shown
  bool scatter = false;         ///< points stand for themselves, not for what an interval is about
  bool joined = false;          ///< the marks are too many to be told apart one by one
  bool crowded = false;         ///< the points are too many to say what they are
  bool dense = false;           ///< the points are too many to be marks at all
  std::vector<std::string> notes;  ///< what is not shown

  const Font& font(Lettering lettering) const { return binding.font(lettering); }

  LinearScale x_scale() const;
  LinearScale y_scale() const;
  double title_height() const;
  std::vector<TextLines> titles_of(const Panel& of) const;
  bool is_leftmost(uint32_t index) const;
  /// Whether no other panel stands below, so that this one shows the names along x.
  bool is_lowest(uint32_t index) const;
  /// The place of a panel without its titles.
  Box box_of_panel(uint32_t index) const;

  /// The pixel of a row from the left side of its panel; not finite where it has none.
  double x_at(const BoundElement& element, size_t row) const;
  /// The same from the top.
  double y_at(const BoundElement& element, size_t row) const;
  bool inside(double y_pixel) const { return y_pixel >= -1 && y_pixel <= panel.height + 1; }

  /// Calls `draw` with the rows of each mark of the panel.
  template <class Draw>
  void each_mark(const BoundElement& element, uint32_t index, Draw draw) const {
    const auto draw_in = [&](MarkRows mark) {
      if (element.in_panel(mark.row, index)) draw(mark);
    };
    element.each_mark(draw_in, most_rows);
  }

  /// The pixel of a row's place along x, which its colours share.
  double place_along_x(const BoundElement& element, size_t row) const;
};

/// Shares out `width`. Nothing is to be drawn where an axis has no variable.
PanelFrame arrange_panels(const Binding& binding, double width);

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
