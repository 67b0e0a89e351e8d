// A chart as a list of marks: what is to be seen, where, and what it is called. Knows neither axes
// nor legends, nor the form it will be written in.
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "report/chart/style.h"

namespace hierfit::report::chart {

/// In pixels; y runs down.
struct Point {
  double x = 0;
  double y = 0;
};

/// Ends a line of a path.
inline constexpr Point kBreak{std::numeric_limits<double>::quiet_NaN(), 0};
bool is_break(const Point& point);

struct Box {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  double right() const { return x + width; }
  double bottom() const { return y + height; }
  double middle_x() const { return x + width / 2; }
  double middle_y() const { return y + height / 2; }
};

enum class MarkKind : uint8_t { Rect, Rule, Circle, Symbol, Path, Dots, Text, Image, Group };
enum class Anchor : uint8_t { Start, Middle, End };

/// A mark. Which members count is told by its kind.
struct Mark {
  MarkKind kind = MarkKind::Rect;
  Box box;          ///< rect, image: its place. Others: `x`, `y` are their point
  Point end;        ///< rule: its other end
  double size = 0;  ///< radius of a circle, symbol or dot; text: its font's size
  Symbol symbol = Symbol::Circle;
  Paint fill;
  Paint stroke;
  double stroke_width = 1;
  double opacity = 1;  ///< of the fill
  double stroke_opacity = 1;
  std::string dash;  ///< as in `stroke-dasharray`
  Anchor anchor = Anchor::Start;
  bool bold = false;
  double turn = 0;   ///< text: degrees clockwise around its point, which is on the baseline
  std::string text;  ///< text: one line; image: a PNG whose lightness is the opacity of `fill`
  std::vector<Point> points;   ///< path: lines through these, a new one behind each break; dots
  std::string tooltip;         ///< lines of what is shown about the mark; empty: it is decoration
  std::vector<Mark> children;  ///< group
};

/// A drawing.
struct Scene {
  double width = 0;
  double height = 0;
  std::string title;
  std::string description;
  std::vector<Mark> marks;  ///< from back to front
};

Mark rect_mark(const Box& box, Paint fill);
Mark rule_mark(Point from, Point to, Paint stroke, double width = 1);
Mark circle_mark(Point centre, double radius, Paint fill);
Mark symbol_mark(Point centre, double radius, Symbol symbol, Paint fill);
/// Filled circles of one size, each painted over those before it.
Mark dots_mark(double radius, Paint fill);
Mark path_mark(std::vector<Point> points, Paint stroke, double width);
Mark text_mark(Point at, std::string text, const Font& font, Anchor anchor = Anchor::Start);
Mark image_mark(const Box& box, std::string png, Paint fill);
Mark group_mark(std::string name, std::vector<Mark> children);

/// The corners of what a mark covers, a turned text in its own direction; empty for a group.
std::vector<Point> corners_of(const Mark& mark);
/// The smallest upright box around it; of a group around its children.
Box box_of(const Mark& mark);

/// Moves a mark.
void shift(Mark& mark, double x, double y);

/// One line a mark: its kind, place, paint, text and tooltip; what is in a group stands indented.
std::string to_text(const Scene& scene);

/// A number of pixels with at most two decimals.
void append_pixels(std::string& out, double value);

/// The outline of a symbol around a centre; none for a circle. Cross and star are lines in pairs.
std::vector<Point> symbol_outline(Symbol symbol, Point centre, double radius);
bool is_open_symbol(Symbol symbol);

}  // namespace hierfit::report::chart
