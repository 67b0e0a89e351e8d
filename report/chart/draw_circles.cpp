// Nodes on a circle and the edges between them.
#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>

#include "report/chart/circle.h"
#include "report/chart/pieces.h"
#include "report/wording.h"

namespace hierfit::report::chart {
namespace {

constexpr double kNodeRadius = 7;
constexpr double kLabelGap = 6;
constexpr double kWidestCircle = 200;  ///< its radius
constexpr double kSmallCircle = 120;
constexpr double kLeastCircle = 60;
constexpr double kLongestWord = 110;
constexpr double kLargestCircle = 640;
constexpr double kNarrowestPanel = 320;
constexpr double kPanelGap = 16;
constexpr double kLongestTurned = 150;
constexpr size_t kMostUpright = 16;    ///< nodes whose labels are tried without turning
constexpr size_t kMostNodes = 60;      ///< of a circle
constexpr size_t kMostLines = 12'000;  ///< in all circles
constexpr size_t kMostEdges = 1500;    ///< marks of their own; beyond, one path a colour
constexpr size_t kMostLabelLines = 3;

struct PlacedNode {
  ElementRow of;
  double angle;  ///< 0 at the top, clockwise
  Point at;
};
using Nodes = std::vector<PlacedNode>;

bool overlap(const Box& a, const Box& b) {
  return a.x < b.right() && b.x < a.right() && a.y < b.bottom() && b.y < a.bottom();
}

Nodes placed(const Circle& circle, double radius) {
  Nodes nodes;
  for (size_t i = 0; i < circle.nodes.size(); ++i) {
    const double angle = 2 * std::numbers::pi * share_of_turn(i, circle.nodes.size());
    nodes.push_back(
        {circle.nodes[i], angle, {radius * std::sin(angle), -radius * std::cos(angle)}});
  }
  return nodes;
}

// Too many nodes.

/// As many nodes as have, joined each with each, no more edges than all circles may have.
size_t nodes_of_circle(size_t circles) {
  const size_t lines = kMostLines / circles;
  return std::min(kMostNodes, static_cast<size_t>(std::sqrt(2 * static_cast<double>(lines))));
}

/// The circle with the nodes alone that have the strongest edges.
Circle most_significant(const Circle& circle, const Binding& binding, size_t most) {
  const LineWidths widths(binding);
  std::vector<double> scores(circle.nodes.size());
  for (const auto& [from, to, of] : circle.edges) {
    const double width = width_of_edge(widths, binding, *of.element, of.row);
    scores[from] += width;
    scores[to] += width;
  }
  Circle kept;
  std::vector<size_t> places(circle.nodes.size(), SIZE_MAX);
  for (const size_t node : greatest(scores, most)) {
    places[node] = kept.nodes.size();
    kept.nodes.push_back(circle.nodes[node]);
  }
  for (const auto& [from, to, of] : circle.edges) {
    if (places[from] != SIZE_MAX && places[to] != SIZE_MAX) {
      kept.edges.push_back({places[from], places[to], of});
    }
  }
  return kept;
}

/// Draws circles, which all look alike where they have the same nodes.
class Circles {
 public:
  Circles(const Binding& binding, const std::vector<Circle>& circles)
      : binding_(binding), font_(binding.font(Lettering::MarkLabel)), circles_(circles) {
    size_t edges = 0;
    for (const Circle& circle : circles)
      edges += circle.edges.size();
    joined_ = edges > kMostEdges;
  }

  Piece draw(double width) {
    const size_t count = circles_.size();
    const double fitting = std::floor((width + kPanelGap) / (kNarrowestPanel + kPanelGap));
    const size_t columns =
        std::clamp<size_t>(static_cast<size_t>(std::max(fitting, 1.0)), 1, count);
    const double panel_width =
        (width - static_cast<double>(columns - 1) * kPanelGap) / static_cast<double>(columns);
    Piece piece;
    piece.width = width;
    double y = 0;
    for (size_t i = 0; i < count;) {
      double height = 0;
      double x = 0;
      for (size_t column = 0; column < columns && i < count; ++column, ++i) {
        Piece panel = draw_panel(i, panel_width);
        height = std::max(height, panel.height);
        const double advance = std::max(panel_width, panel.width) + kPanelGap;
        piece.take(std::move(panel), x, y);
        x += advance;
      }
      y += height + kPanelGap;
    }
    piece.legend.keys.resize(numbers_.size());
    for (const auto& [label, number] : numbers_)
      piece.legend.keys[number - 1] = label;
    return piece;
  }

 private:
  Piece draw_panel(size_t index, double width) {
    const Circle& circle = circles_[index];
    Piece piece;
    piece.width = width;
    const double top = draw_titles(piece, index, width);
    double radius = radius_beside_labels(circle, width);
    Nodes nodes = placed(circle, radius);
    std::vector<Mark> labels;
    if (nodes.size() > kMostUpright || !upright_labels(labels, nodes, width / 2 - radius)) {
      radius = turned_radius(nodes.size(), width);
      nodes = placed(circle, radius);
      const double room = std::clamp(width / 2 - radius - 20, 50.0, kLongestTurned);
      number_labels(nodes, room);
      labels = turned_labels(nodes, room, radius);
      std::vector<Mark> numbers;
      if (!numbers_.empty() && upright_labels(numbers, nodes, room)) labels = std::move(numbers);
    }
    std::vector<Mark> marks = draw_edges(circle, nodes);
    draw_nodes(marks, nodes);
    std::ranges::move(labels, std::back_inserter(marks));
    fit(piece, std::move(marks), width, top);
    return piece;
  }

  double draw_titles(Piece& piece, size_t index, double width) const {
    const Font& font = binding_.font(Lettering::FacetTitle);
    const size_t lines = lines_of_titles(binding_, width);
    double y = 0;
    for (const std::string& title : binding_.panels[index].titles) {
      if (title.empty()) continue;
      y = put_lines(piece.marks, fit_text(title, font, width, lines), width / 2, y, font,
                    Anchor::Middle, title);
    }
    return y == 0 ? 0 : y + 8;
  }

  /// Puts what was drawn around 0, 0 below the titles, in the middle.
  static void fit(Piece& piece, std::vector<Mark>&& marks, double width, double top) {
    double left = HUGE_VAL;
    double high = HUGE_VAL;
    double right = -HUGE_VAL;
    double low = -HUGE_VAL;
    for (const Mark& mark : marks) {
      const Box box = box_of(mark);
      left = std::min(left, box.x);
      high = std::min(high, box.y);
      right = std::max(right, box.right());
      low = std::max(low, box.bottom());
    }
    piece.width = std::max(width, 2 * std::max(-left, right) + 4);
    const double x = std::max(width / 2, std::max(-left, right) + 2);
    for (Mark& mark : marks) {
      shift(mark, x, top - high + 2);
      piece.marks.push_back(std::move(mark));
    }
    piece.height = top + low - high + 4;
  }

  /// Numbers stand for labels that would be cut to the same text.
  void number_labels(const Nodes& nodes, double room) {
    std::vector<std::string> labels;
    for (const PlacedNode& node : nodes)
      labels.push_back(label_of_node(node.of));
    const auto shown = [&](const std::string& label) { return fit_line(label, font_, room); };
    if (!are_cut_alike(labels, shown)) return;
    for (const std::string& label : labels)
      numbers_.try_emplace(label, numbers_.size() + 1);
  }

  std::string name_of(const PlacedNode& node) const {
    std::string label = label_of_node(node.of);
    const auto number = numbers_.find(label);
    return number == numbers_.end() ? label : std::to_string(number->second);
  }

  std::string label_of_node(const ElementRow& node) const {
    const ChartVariable* label = (*node.element)[RoleKind::Label];
    if (label == nullptr) return {};
    return shown_value(*label, node.row, binding_.numbers);
  }

  /// Labels beside their nodes in lines. False when two of them would touch.
  bool upright_labels(std::vector<Mark>& labels, const Nodes& nodes, double half) const {
    std::vector<Box> boxes;
    std::map<std::string, std::string> shown;
    for (const PlacedNode& node : nodes) {
      std::vector<Mark> lines = upright_label(node, half);
      std::string text;
      for (const Mark& line : lines)
        (text += line.text) += '\n';
      const std::string label = name_of(node);
      if (shown.try_emplace(std::move(text), label).first->second != label) return false;
      Box box = box_of(group_mark("", lines));
      for (const Box& other : boxes) {
        if (overlap(box, other)) return false;
      }
      box.x -= 2;
      box.width += 4;
      boxes.push_back(box);
      std::ranges::move(lines, std::back_inserter(labels));
    }
    return true;
  }

  std::vector<Mark> upright_label(const PlacedNode& node, double half) const {
    const double side = std::sin(node.angle);
    const double rise = -std::cos(node.angle);
    const bool middle = std::fabs(side) < 0.2;
    const double away = kNodeRadius + kLabelGap;
    const double room = std::max(middle ? half : half - away - 4, 40.0);
    const std::string text = name_of(node);
    const bool whole_words = widest_word(text, font_) <= room;
    const TextLines lines = fit_text(text, font_, room, whole_words ? kMostLabelLines : 1);
    const double height = static_cast<double>(lines.lines.size()) * font_.line_height();
    double y = node.at.y - height / 2;
    if (middle) y = rise < 0 ? node.at.y - away - height : node.at.y + away;
    const double x = middle ? node.at.x : node.at.x + (side > 0 ? away : -away);
    const Anchor anchor = middle ? Anchor::Middle : side > 0 ? Anchor::Start : Anchor::End;
    std::vector<Mark> marks;
    put_lines(marks, lines, x, y, font_, anchor, text);
    return marks;
  }

  /// Smaller where the words of the labels would not fit beside the usual circle.
  double radius_beside_labels(const Circle& circle, double width) const {
    const size_t nodes = circle.nodes.size();
    if (nodes > kMostUpright) return usual_radius(nodes, width);
    double word = 0;
    for (const ElementRow& node : circle.nodes)
      word = std::max(word, std::min(widest_word(label_of_node(node), font_), kLongestWord));
    const double room = width / 2 - kNodeRadius - kLabelGap - 6 - word;
    return std::clamp(room, kLeastCircle, usual_radius(nodes, width));
  }

  static double usual_radius(size_t nodes, double width) {
    return std::min(nodes <= 3 ? kSmallCircle : kWidestCircle, width * 0.27);
  }

  /// The radius at which turned labels keep clear of one another.
  double turned_radius(size_t nodes, double width) const {
    const double needed =
        static_cast<double>(nodes) * (font_.line_height() + 1) / (2 * std::numbers::pi);
    return std::min(std::max(needed, usual_radius(nodes, width)), kLargestCircle);
  }

  std::vector<Mark> turned_labels(const Nodes& nodes, double room, double radius) const {
    const double circumference = 2 * std::numbers::pi * radius;
    const double fitting = std::floor(circumference / font_.line_height());
    const auto every =
        static_cast<size_t>(std::ceil(static_cast<double>(nodes.size()) / std::max(fitting, 1.0)));
    std::vector<Mark> labels;
    for (size_t i = 0; i < nodes.size(); i += every)
      labels.push_back(turned_label(nodes[i], room, radius));
    return labels;
  }

  Mark turned_label(const PlacedNode& node, double room, double radius) const {
    const bool right = node.angle <= std::numbers::pi;
    const double degrees = node.angle * 180 / std::numbers::pi - 90;
    const double away = (radius + kNodeRadius + kLabelGap) / radius;
    const double down = font_.size * 0.35;
    const double turn = (right ? degrees : degrees + 180) * std::numbers::pi / 180;
    const Point at{node.at.x * away - down * std::sin(turn),
                   node.at.y * away + down * std::cos(turn)};
    const std::string text = name_of(node);
    bool cut = false;
    Mark mark = text_mark(at, fit_line(text, font_, room, &cut), font_,
                          right ? Anchor::Start : Anchor::End);
    mark.turn = right ? degrees : degrees - 180;
    if (cut) mark.tooltip = text;
    return mark;
  }

  void draw_nodes(std::vector<Mark>& marks, const Nodes& nodes) const {
    const double radius = nodes.size() > 60 ? 4 : nodes.size() > 24 ? 5 : kNodeRadius;
    for (const PlacedNode& node : nodes) {
      Mark mark = circle_mark(node.at, radius, {Part::Mark});
      mark.stroke = {Part::Ground};
      mark.stroke_width = 1.5;
      mark.tooltip = binding_.tooltip_of(*node.of.element, {node.of.row, node.of.row});
      marks.push_back(std::move(mark));
    }
  }

  /// The edges, those of a later level of colour in front.
  std::vector<Mark> draw_edges(const Circle& circle, const Nodes& nodes) const {
    const size_t count = nodes.size();
    const LineWidths widths(binding_);
    std::vector<std::pair<uint32_t, Mark>> drawn;
    for (const auto& [from, to, of] : circle.edges) {
      const auto& [element, row] = of;
      const Paint paint = binding_.paint_of(*element, row);
      const double width = width_of_edge(widths, binding_, *element, row);
      Mark mark = rule_mark(nodes[from].at, nodes[to].at, paint, width);
      mark.dash = dash_for(binding_.plan.style.series(paint).dash, mark.stroke_width);
      if (count > 24) mark.stroke_opacity = 0.75;
      if (!joined_) mark.tooltip = binding_.tooltip_of(*element, {row, row});
      drawn.emplace_back(paint.step, std::move(mark));
    }
    std::ranges::stable_sort(drawn, {}, &std::pair<uint32_t, Mark>::first);
    std::vector<Mark> marks;
    for (auto& [step, mark] : drawn)
      joined_ ? join(marks, mark) : marks.push_back(std::move(mark));
    return marks;
  }

  /// Adds a line to the path of its colour.
  static void join(std::vector<Mark>& marks, const Mark& line) {
    const Point start{line.box.x, line.box.y};
    if (marks.empty() || marks.back().stroke != line.stroke) {
      marks.push_back(path_mark({start, line.end}, line.stroke, 0.5));
      marks.back().stroke_opacity = line.stroke_opacity;
    } else {
      std::vector<Point>& points = marks.back().points;
      points.insert(points.end(), {kBreak, start, line.end});
    }
  }

  const Binding& binding_;
  const Font& font_;
  const std::vector<Circle>& circles_;
  std::map<std::string, size_t> numbers_;  ///< of labels, where there are
  bool joined_ = false;                    ///< the edges of a colour are one mark
};

}  // namespace

Piece draw_circles(const Binding& binding, double width) {
  std::vector<Circle> circles = circles_of(binding);
  const size_t most = nodes_of_circle(circles.size());
  size_t nodes = 0;
  for (Circle& circle : circles) {
    nodes = std::max(nodes, circle.nodes.size());
    if (circle.nodes.size() > most) circle = most_significant(circle, binding, most);
  }
  if (nodes == 0) return {};
  Piece piece = Circles(binding, circles).draw(width);
  if (nodes > most) {
    piece.notes.push_back(filled(binding.word("The ^1 most significant of ^2 are shown."),
                                 std::to_string(most), std::to_string(nodes)));
  }
  return piece;
}

}  // namespace hierfit::report::chart
