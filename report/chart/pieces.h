// The pieces that a layout is put together from. Each is drawn with its upper left corner at 0, 0.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "report/chart/binding.h"
#include "report/chart/scene.h"

namespace hierfit::report::chart {

/// What a graph's legends have to know of how it was drawn.
struct LegendFacts {
  double densest = 0;             ///< the sum of weights that a density raster shows strongest
  size_t colors = SIZE_MAX;       ///< colours that are shown
  std::string keys_title;         ///< what the keys are categories of
  std::vector<std::string> keys;  ///< what numbers stand for, from 1
};

/// Marks and the room that they take.
struct Piece {
  std::vector<Mark> marks;
  double width = 0;
  double height = 0;
  std::vector<std::string> notes;  ///< sentences on what is not shown
  LegendFacts legend;

  bool empty() const { return marks.empty(); }
  /// Takes over the marks of another piece, moved.
  void take(Piece&& other, double x, double y);
};

/// From this many points on a scatter is drawn as a density raster.
inline constexpr size_t kMostPoints = 20000;

/// Panels with axes: points, lines, intervals.
Piece draw_panels(const Binding& binding, double width);

/// Nodes on a circle and the edges between them, a circle a panel.
Piece draw_circles(const Binding& binding, double width);

/// Nodes and edges where the data put them, with labels.
Piece draw_network(const Binding& binding, double width);

/// The lines that the titles of panels take at most in this width: as many as tell each from the
/// others.
size_t lines_of_titles(const Binding& binding, double width);

/// A row for each category, with its interval along x and its numbers beside it.
Piece draw_rows(const Binding& binding, double width);

/// What the colours, symbols, widths and transparencies mean.
Piece draw_legends(const Binding& binding, const LegendFacts& facts, double width);

/// The numbers of a variable that a legend explains: those with labels that occur, from the
/// greatest; else a few of the range, whole ones of whole numbers. None where all are the same.
std::vector<double> legend_values(const ChartVariable& variable);

/// Whether an element has a histogram inside, and values for it.
bool has_histogram(const Binding& binding, const Element& element);

/// A histogram with its curve, inside `box`.
void draw_histogram(std::vector<Mark>& marks,
                    const Binding& binding,
                    const Embedded& embedded,
                    const Box& box);

/// Lines of text, the first with its top at `y`; gives where the next would begin.
double put_lines(std::vector<Mark>& marks,
                 const TextLines& lines,
                 double x,
                 double y,
                 const Font& font,
                 Anchor anchor,
                 const std::string& whole);

/// How the values of a role become opacities.
struct Opacity {
  static constexpr double kLeast = 0.22;
  static constexpr double kMost = 0.95;
  static constexpr double kPlain = 0.6;  ///< where there is nothing to tell apart

  double low = 0;
  double high = 0;

  explicit Opacity(const Binding& binding);
  double of(double value) const;
};

/// How the values of the role `size` become widths of lines in pixels. A role with limits of its
/// own has the same widths in every chart.
struct LineWidths {
  double low = 0;
  double high = 0;
  std::optional<double> step;  ///< values below it are hairlines

  explicit LineWidths(const Binding& binding);
  double of(double value) const;
  /// From 0 for the thinnest line to 1 for the thickest; 0 where there is no number.
  double share_of(double value) const;
};

/// The width of an edge: by its size, else by the step of its palette, of which the first is the
/// plain one.
double width_of_edge(const LineWidths& widths,
                     const Binding& binding,
                     const BoundElement& edges,
                     size_t row);

/// The places of the `most` greatest scores, ascending; of equal ones the first count.
std::vector<size_t> greatest(const std::vector<double>& scores, size_t most);

/// The dashes of a line as wide as this: longer the wider it is.
std::string dash_for(const std::string& dash, double width);

/// What the picture shows, in sentences made from the data.
std::string describe(const Binding& binding);

}  // namespace hierfit::report::chart
