#include "report/chart/scene.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <numbers>

namespace hierfit::report::chart {
namespace {

constexpr double kAscent = 0.8;    ///< of a line, in em
constexpr double kDescent = 0.22;  ///< of a line, in em

std::vector<Point> rectangle(const Box& box) {
  return {{box.x, box.y}, {box.right(), box.y}, {box.right(), box.bottom()}, {box.x, box.bottom()}};
}

std::vector<Point> rect_corners(const Mark& mark) { return rectangle(mark.box); }

std::vector<Point> rule_corners(const Mark& mark) { return {{mark.box.x, mark.box.y}, mark.end}; }

std::vector<Point> round_corners(const Mark& mark) {
  return rectangle({mark.box.x - mark.size, mark.box.y - mark.size, 2 * mark.size, 2 * mark.size});
}

std::vector<Point> path_corners(const Mark& mark) { return mark.points; }

std::vector<Point> dots_corners(const Mark& mark) {
  std::vector<Point> corners;
  for (const auto& [x, y] : mark.points)
    corners.insert(corners.end(), {{x - mark.size, y - mark.size}, {x + mark.size, y + mark.size}});
  return corners;
}

std::vector<Point> text_corners(const Mark& mark) {
  const double width = text_width(mark.text, {mark.size, mark.bold});
  const double left = mark.anchor == Anchor::Start    ? 0
                      : mark.anchor == Anchor::Middle ? -width / 2
                                                      : -width;
  std::vector<Point> corners =
      rectangle({left, -kAscent * mark.size, width, (kAscent + kDescent) * mark.size});
  const double angle = mark.turn * std::numbers::pi / 180;
  for (Point& corner : corners) {
    corner = {mark.box.x + corner.x * std::cos(angle) - corner.y * std::sin(angle),
              mark.box.y + corner.x * std::sin(angle) + corner.y * std::cos(angle)};
  }
  return corners;
}

std::vector<Point> no_corners(const Mark&) { return {}; }

void append_point(std::string& out, double x, double y) {
  out += ' ';
  append_pixels(out, x);
  out += ' ';
  append_pixels(out, y);
}

void append_number(std::string& out, std::string_view name, double value) {
  ((out += ' ') += name) += '=';
  append_pixels(out, value);
}

void append_quoted(std::string& out, std::string_view text) {
  out += " \"";
  for (const char c : text) {
    if (c == '\n') {
      out += "\\n";
    } else {
      out += c;
    }
  }
  out += '"';
}

void print_rect(std::string& out, const Mark& mark) {
  append_point(out, mark.box.x, mark.box.y);
  append_point(out, mark.box.width, mark.box.height);
}

void print_rule(std::string& out, const Mark& mark) {
  append_point(out, mark.box.x, mark.box.y);
  append_point(out, mark.end.x, mark.end.y);
}

void print_circle(std::string& out, const Mark& mark) {
  append_point(out, mark.box.x, mark.box.y);
  append_number(out, "r", mark.size);
}

void print_symbol(std::string& out, const Mark& mark) {
  (out += ' ') += kSymbolNames[static_cast<size_t>(mark.symbol)];
  print_circle(out, mark);
}

void print_path(std::string& out, const Mark& mark) {
  for (const Point& point : mark.points) {
    if (is_break(point)) {
      out += " /";
    } else {
      append_point(out, point.x, point.y);
    }
  }
}

void print_dots(std::string& out, const Mark& mark) {
  append_number(out, "r", mark.size);
  print_path(out, mark);
}

void print_text(std::string& out, const Mark& mark) {
  constexpr std::string_view kAnchors[] = {"start", "middle", "end"};
  append_point(out, mark.box.x, mark.box.y);
  (out += ' ') += kAnchors[static_cast<size_t>(mark.anchor)];
  append_number(out, "size", mark.size);
  if (mark.bold) out += " bold";
  if (mark.turn != 0) append_number(out, "turn", mark.turn);
  append_quoted(out, mark.text);
}

void print_image(std::string& out, const Mark& mark) {
  print_rect(out, mark);
  append_number(out, "bytes", static_cast<double>(mark.text.size()));
}

void print_group(std::string&, const Mark&) {}

/// A kind of mark: what it covers, and how it prints.
struct MarkType {
  std::string_view name;
  std::vector<Point> (*corners)(const Mark&);
  void (*print)(std::string&, const Mark&);
};
constexpr MarkType kMarkTypes[] = {
    {"rect", rect_corners, print_rect},      {"rule", rule_corners, print_rule},
    {"circle", round_corners, print_circle}, {"symbol", round_corners, print_symbol},
    {"path", path_corners, print_path},      {"dots", dots_corners, print_dots},
    {"text", text_corners, print_text},      {"image", rect_corners, print_image},
    {"group", no_corners, print_group},
};

const MarkType& type_of(const Mark& mark) { return kMarkTypes[static_cast<size_t>(mark.kind)]; }

void append_paint(std::string& out, std::string_view name, Paint paint, double opacity) {
  if (!paint) return;
  (((out += ' ') += name) += '=') += paint_name(paint);
  if (opacity == 1) return;
  out += '/';
  append_pixels(out, opacity);
}

void print(std::string& out, const Mark& mark, size_t indent) {
  out.append(indent, ' ').append(type_of(mark).name);
  type_of(mark).print(out, mark);
  append_paint(out, "fill", mark.fill, mark.opacity);
  append_paint(out, "stroke", mark.stroke, mark.stroke_opacity);
  if (mark.stroke && mark.stroke_width != 1) append_number(out, "width", mark.stroke_width);
  if (!mark.dash.empty()) append_quoted(out += " dash", mark.dash);
  if (!mark.tooltip.empty()) append_quoted(out += " tooltip", mark.tooltip);
  out += '\n';
  for (const Mark& child : mark.children)
    print(out, child, indent + 2);
}

struct Range {
  Point low{HUGE_VAL, HUGE_VAL};
  Point high{-HUGE_VAL, -HUGE_VAL};

  void add(const Point& point) {
    low = {std::min(low.x, point.x), std::min(low.y, point.y)};
    high = {std::max(high.x, point.x), std::max(high.y, point.y)};
  }
  void add(const Mark& mark) {
    for (const Point& corner : corners_of(mark))
      add(corner);
    for (const Mark& child : mark.children)
      add(child);
  }
};

Mark at_point(MarkKind kind, Point point) {
  Mark mark;
  mark.kind = kind;
  mark.box = {point.x, point.y, 0, 0};
  return mark;
}

/// Points around a centre: from `first` degrees on (0: to the right, clockwise), at equal steps.
std::vector<Point> around(Point centre, double radius, int count, double first) {
  std::vector<Point> points;
  for (int i = 0; i < count; ++i) {
    const double angle = (first + 360.0 * i / count) * std::numbers::pi / 180;
    points.push_back({centre.x + radius * std::cos(angle), centre.y + radius * std::sin(angle)});
  }
  return points;
}

/// Lines through a centre, as pairs of ends.
std::vector<Point> through(Point centre, double radius, int lines, double first) {
  std::vector<Point> points;
  const std::vector<Point> ends = around(centre, radius, 2 * lines, first);
  const size_t half = ends.size() / 2;
  for (size_t i = 0; i < half; ++i) {
    points.push_back(ends[i]);
    points.push_back(ends[half + i]);
  }
  return points;
}

}  // namespace

Mark rect_mark(const Box& box, Paint fill) {
  Mark mark;
  mark.box = box;
  mark.fill = fill;
  return mark;
}

Mark rule_mark(Point from, Point to, Paint stroke, double width) {
  Mark mark = at_point(MarkKind::Rule, from);
  mark.end = to;
  mark.stroke = stroke;
  mark.stroke_width = width;
  return mark;
}

Mark circle_mark(Point centre, double radius, Paint fill) {
  Mark mark = at_point(MarkKind::Circle, centre);
  mark.size = radius;
  mark.fill = fill;
  return mark;
}

Mark symbol_mark(Point centre, double radius, Symbol symbol, Paint fill) {
  Mark mark = circle_mark(centre, radius, fill);
  mark.kind = symbol == Symbol::Circle ? MarkKind::Circle : MarkKind::Symbol;
  mark.symbol = symbol;
  if (!is_open_symbol(symbol)) return mark;
  mark.stroke = fill;
  mark.fill = {};
  mark.stroke_width = std::max(1.5, radius / 2.5);
  return mark;
}

Mark dots_mark(double radius, Paint fill) {
  Mark mark = circle_mark({}, radius, fill);
  mark.kind = MarkKind::Dots;
  return mark;
}

Mark path_mark(std::vector<Point> points, Paint stroke, double width) {
  Mark mark = at_point(MarkKind::Path, {});
  mark.points = std::move(points);
  mark.stroke = stroke;
  mark.stroke_width = width;
  return mark;
}

Mark text_mark(Point at, std::string text, const Font& font, Anchor anchor) {
  Mark mark = at_point(MarkKind::Text, at);
  mark.text = std::move(text);
  mark.size = font.size;
  mark.bold = font.bold;
  mark.anchor = anchor;
  mark.fill = {Part::Text};
  return mark;
}

bool is_break(const Point& point) { return !std::isfinite(point.x); }

Mark image_mark(const Box& box, std::string png, Paint fill) {
  Mark mark = rect_mark(box, fill);
  mark.kind = MarkKind::Image;
  mark.text = std::move(png);
  return mark;
}

Mark group_mark(std::string name, std::vector<Mark> children) {
  Mark mark;
  mark.kind = MarkKind::Group;
  mark.tooltip = std::move(name);
  mark.children = std::move(children);
  return mark;
}

std::vector<Point> corners_of(const Mark& mark) { return type_of(mark).corners(mark); }

Box box_of(const Mark& mark) {
  Range range;
  range.add(mark);
  if (range.low.x > range.high.x) return {};
  return {range.low.x, range.low.y, range.high.x - range.low.x, range.high.y - range.low.y};
}

void shift(Mark& mark, double x, double y) {
  mark.box.x += x;
  mark.box.y += y;
  mark.end = {mark.end.x + x, mark.end.y + y};
  for (Point& point : mark.points)
    point = {point.x + x, point.y + y};
  for (Mark& child : mark.children)
    shift(child, x, y);
}

std::string to_text(const Scene& scene) {
  std::string out = "scene";
  append_point(out, scene.width, scene.height);
  append_quoted(out, scene.title);
  append_quoted(out += "\n ", scene.description);
  out += '\n';
  for (const Mark& mark : scene.marks)
    print(out, mark, 0);
  return out;
}

void append_pixels(std::string& out, double value) {
  if (!std::isfinite(value) || std::fabs(value) > 1e7) value = value > 0 ? 1e7 : 0;
  auto hundredths = static_cast<int64_t>(std::llround(value * 100));
  if (hundredths < 0) out += '-';
  hundredths = std::abs(hundredths);
  std::array<char, 24> digits;
  out.append(digits.data(),
             std::to_chars(digits.data(), digits.data() + digits.size(), hundredths / 100).ptr);
  if (hundredths % 100 == 0) return;
  (out += '.') += static_cast<char>('0' + hundredths % 100 / 10);
  if (hundredths % 10 != 0) out += static_cast<char>('0' + hundredths % 10);
}

bool is_open_symbol(Symbol symbol) {
  return symbol == Symbol::Cross || symbol == Symbol::Star || symbol == Symbol::Frame;
}

std::vector<Point> symbol_outline(Symbol symbol, Point centre, double radius) {
  switch (symbol) {
    case Symbol::Circle:
      return {};
    case Symbol::Square:
    case Symbol::Frame:
      return around(centre, radius * 1.2, 4, 45);
    case Symbol::Diamond:
      return around(centre, radius * 1.25, 4, 0);
    case Symbol::Triangle:
      return around({centre.x, centre.y + radius * 0.2}, radius * 1.25, 3, -90);
    case Symbol::Cross:
      return through(centre, radius * 1.1, 2, 45);
    case Symbol::Star:
      return through(centre, radius * 1.1, 3, 30);
    case Symbol::Hexagon:
      return around(centre, radius * 1.1, 6, 0);
  }
  return {};
}

}  // namespace hierfit::report::chart
