// Nodes on a circle and the edges between them.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "report/chart/pieces.h"

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

struct CircleNode {
  const BoundElement* element;
  size_t row;
  double angle;  ///< 0 at the top, clockwise
  Point at;
};

bool overlap(const Box& a, const Box& b) {
  return a.x < b.right() && b.x < a.right() && a.y < b.bottom() && b.y < a.bottom();
}

class Circles {
 public:
  Circles(const Binding& binding, double width)
      : binding_(binding), font_(binding.font(Lettering::MarkLabel)), width_(width) {
    collect();
  }

  Piece draw() {
    if (most_nodes_ == 0) return {};
    limit_nodes();
    const auto count = binding_.panels.size();
    const double fitting = std::floor((width_ + kPanelGap) / (kNarrowestPanel + kPanelGap));
    const size_t columns =
        std::clamp<size_t>(static_cast<size_t>(std::max(fitting, 1.0)), 1, count);
    const double panel_width =
        (width_ - static_cast<double>(columns - 1) * kPanelGap) / static_cast<double>(columns);
    Piece piece;
    piece.notes = std::move(notes_);
    piece.width = width_;
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
    return piece;
  }

 private:
  using Nodes = std::vector<CircleNode>;

  void collect() {
    nodes_.resize(binding_.panels.size());
    keys_.resize(binding_.panels.size());
    edges_.resize(binding_.panels.size());
    index_.resize(binding_.panels.size());
    for (const BoundElement& element : binding_.elements) {
      for (size_t row = 0; row < element.rows(); ++row) {
        if (!element.panel_of_row.empty()) {
          collect_row(element, row, element.panel_of_row[row]);
          continue;
        }
        for (uint32_t panel = 0; panel < nodes_.size(); ++panel)
          collect_row(element, row, panel);
      }
    }
    for (const Nodes& nodes : nodes_)
      most_nodes_ = std::max(most_nodes_, nodes.size());
  }

  void collect_row(const BoundElement& element, size_t row, uint32_t panel) {
    if (panel >= nodes_.size()) return;
    if (element.element->kind == ElementKind::Edge) edges_[panel].emplace_back(&element, row);
    const ChartVariable* key = element[RoleKind::Key];
    if (element.element->kind != ElementKind::Node || key == nullptr) return;
    // A key that comes again is the same node.
    const size_t before = keys_[panel].size();
    if (keys_[panel].add(*key, row, binding_.numbers) == before) {
      nodes_[panel].push_back({&element, row, 0, {}});
    }
  }

  // Too many nodes.

  /// As many nodes as have, joined each with each, no more edges than all circles may have.
  size_t nodes_of_circle() const {
    const double lines = static_cast<double>(kMostLines / binding_.panels.size());
    return std::min(kMostNodes, static_cast<size_t>(std::sqrt(2 * lines)));
  }

  void limit_nodes() {
    const size_t most = nodes_of_circle();
    for (size_t panel = 0; panel < nodes_.size(); ++panel) {
      if (nodes_[panel].size() > most) keep_most_significant(panel, most);
      const auto& edges = edges_[panel];
      edge_count_ += static_cast<size_t>(std::ranges::count_if(edges, [&](const auto& edge) {
        return node_of(panel, (*edge.first)[RoleKind::From], edge.second) != nullptr &&
               node_of(panel, (*edge.first)[RoleKind::To], edge.second) != nullptr;
      }));
    }
    if (most_nodes_ <= most) return;
    notes_.push_back(with_arguments(binding_.word("The ^1 most significant of ^2 are shown."),
                                    {std::to_string(most), std::to_string(most_nodes_)}));
  }

  /// Leaves the nodes with the strongest edges.
  void keep_most_significant(size_t panel, size_t most) {
    Nodes& nodes = nodes_[panel];
    const LineWidths widths(binding_, 1);
    std::vector<double> scores(nodes.size());
    for (const auto& [element, row] : edges_[panel]) {
      for (const RoleKind end : {RoleKind::From, RoleKind::To}) {
        const CircleNode* node = node_of(panel, (*element)[end], row);
        if (node == nullptr) continue;
        scores[static_cast<size_t>(node - nodes.data())] +=
            widths.share_of(number_at((*element)[RoleKind::Size], row));
      }
    }
    Nodes kept;
    std::vector<size_t> index(nodes.size(), nodes.size());
    for (const size_t place : greatest(scores, most)) {
      index[place] = kept.size();
      kept.push_back(nodes[place]);
    }
    nodes = std::move(kept);
    index_[panel] = std::move(index);
  }

  Piece draw_panel(size_t index, double width) {
    Piece piece;
    piece.width = width;
    const double top = draw_titles(piece, index, width);
    Nodes& nodes = nodes_[index];
    std::vector<Mark> labels;
    double radius = radius_beside_labels(nodes, width);
    place(nodes, radius);
    if (nodes.size() > kMostUpright || !upright_labels(labels, nodes, width / 2 - radius)) {
      radius = turned_radius(nodes.size(), width);
      place(nodes, radius);
      labels =
          turned_labels(nodes, std::clamp(width / 2 - radius - 20, 50.0, kLongestTurned), radius);
    }
    std::vector<Mark> marks = draw_edges(index);
    draw_nodes(marks, nodes);
    std::ranges::move(labels, std::back_inserter(marks));
    fit(piece, std::move(marks), width, top);
    return piece;
  }

  double draw_titles(Piece& piece, size_t index, double width) const {
    const Font& font = binding_.font(Lettering::FacetTitle);
    double y = 0;
    for (const std::string& title : binding_.panels[index].titles) {
      if (title.empty()) continue;
      y = put_lines(piece.marks, fit_text(title, font, width, 2), width / 2, y, font,
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

  /// Two nodes lie side by side, more begin at the top.
  static void place(Nodes& nodes, double radius) {
    constexpr double kTurn = 2 * std::numbers::pi;
    const double first = nodes.size() == 2 ? 0.75 : 0;
    for (size_t i = 0; i < nodes.size(); ++i) {
      const double share = first + static_cast<double>(i) / static_cast<double>(nodes.size());
      nodes[i].angle = kTurn * (share - std::floor(share));
      nodes[i].at = {radius * std::sin(nodes[i].angle), -radius * std::cos(nodes[i].angle)};
    }
  }

  std::string label_of_node(const CircleNode& node) const {
    const ChartVariable* label = (*node.element)[RoleKind::Label];
    if (label == nullptr) return {};
    return shown_in_panel(*node.element->source, binding_.graph, *label, node.row,
                          binding_.numbers);
  }

  /// Labels beside their nodes in lines. False when two of them would touch.
  bool upright_labels(std::vector<Mark>& labels, const Nodes& nodes, double half) const {
    std::vector<Box> boxes;
    for (const CircleNode& node : nodes) {
      std::vector<Mark> lines = upright_label(node, half);
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

  std::vector<Mark> upright_label(const CircleNode& node, double half) const {
    const double side = std::sin(node.angle);
    const double rise = -std::cos(node.angle);
    const bool middle = std::fabs(side) < 0.2;
    const double away = kNodeRadius + kLabelGap;
    const double room = std::max(middle ? half : half - away - 4, 40.0);
    const std::string text = label_of_node(node);
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
  double radius_beside_labels(const Nodes& nodes, double width) const {
    if (nodes.size() > kMostUpright) return usual_radius(nodes.size(), width);
    double word = 0;
    for (const CircleNode& node : nodes)
      word = std::max(word, std::min(widest_word(label_of_node(node), font_), kLongestWord));
    const double room = width / 2 - kNodeRadius - kLabelGap - 6 - word;
    return std::clamp(room, kLeastCircle, usual_radius(nodes.size(), width));
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

  Mark turned_label(const CircleNode& node, double room, double radius) const {
    const bool right = node.angle <= std::numbers::pi;
    const double degrees = node.angle * 180 / std::numbers::pi - 90;
    const double away = (radius + kNodeRadius + kLabelGap) / radius;
    const double down = font_.size * 0.35;
    const double turn = (right ? degrees : degrees + 180) * std::numbers::pi / 180;
    const Point at{node.at.x * away - down * std::sin(turn),
                   node.at.y * away + down * std::cos(turn)};
    const std::string text = label_of_node(node);
    bool cut = false;
    Mark mark = text_mark(at, fit_line(text, font_, room, &cut), font_,
                          right ? Anchor::Start : Anchor::End);
    mark.turn = right ? degrees : degrees - 180;
    if (cut) mark.tooltip = text;
    return mark;
  }

  void draw_nodes(std::vector<Mark>& marks, const Nodes& nodes) const {
    const double radius = nodes.size() > 60 ? 4 : nodes.size() > 24 ? 5 : kNodeRadius;
    for (const CircleNode& node : nodes) {
      Mark mark = circle_mark(node.at, radius, {Part::Mark});
      mark.stroke = {Part::Ground};
      mark.stroke_width = 1.5;
      mark.tooltip = binding_.tooltip_of(*node.element, node.row, node.row);
      marks.push_back(std::move(mark));
    }
  }

  /// The edges, those of a later level of colour in front.
  std::vector<Mark> draw_edges(size_t panel) const {
    const auto& edges = edges_[panel];
    const size_t count = nodes_[panel].size();
    const LineWidths widths(binding_, count > 40 ? 0.6 : count > 24 ? 1 : count > 9 ? 2.5 : 4.5);
    std::vector<std::pair<uint32_t, Mark>> drawn;
    for (const auto& [element, row] : edges) {
      const CircleNode* from = node_of(panel, (*element)[RoleKind::From], row);
      const CircleNode* to = node_of(panel, (*element)[RoleKind::To], row);
      if (from == nullptr || to == nullptr) continue;
      const Paint paint = binding_.paint_of(*element, row);
      const double width = widths.of(number_at((*element)[RoleKind::Size], row));
      Mark mark = rule_mark(from->at, to->at, paint, width);
      mark.dash = dash_for(binding_.plan.style.series(paint).dash, mark.stroke_width);
      if (count > 24) mark.stroke_opacity = 0.75;
      if (edge_count_ <= kMostEdges) mark.tooltip = binding_.tooltip_of(*element, row, row);
      drawn.emplace_back(paint.step, std::move(mark));
    }
    std::ranges::stable_sort(drawn, {}, &std::pair<uint32_t, Mark>::first);
    std::vector<Mark> marks;
    for (auto& [step, mark] : drawn) {
      const bool joined =
          edge_count_ > kMostEdges && !marks.empty() && marks.back().stroke == mark.stroke;
      if (joined) {
        marks.back().points.insert(marks.back().points.end(),
                                   {kBreak, {mark.box.x, mark.box.y}, mark.end});
      } else if (edge_count_ > kMostEdges) {
        marks.push_back(path_mark({{mark.box.x, mark.box.y}, mark.end}, mark.stroke, 0.5));
        marks.back().stroke_opacity = mark.stroke_opacity;
      } else {
        marks.push_back(std::move(mark));
      }
    }
    return marks;
  }

  const CircleNode* node_of(size_t panel, const ChartVariable* key, size_t row) const {
    if (key == nullptr) return nullptr;
    size_t place = keys_[panel].find(*key, row);
    if (place < index_[panel].size()) place = index_[panel][place];
    return place < nodes_[panel].size() ? &nodes_[panel][place] : nullptr;
  }

  const Binding& binding_;
  const Font& font_;
  double width_;
  std::vector<Nodes> nodes_;  ///< by panel
  std::vector<ValueIndex> keys_;
  std::vector<std::vector<std::pair<const BoundElement*, size_t>>> edges_;
  std::vector<std::vector<size_t>> index_;  ///< by panel: of a key's node, where some are left out
  std::vector<std::string> notes_;
  size_t most_nodes_ = 0;
  size_t edge_count_ = 0;  ///< that are drawn
};

}  // namespace

Piece draw_circles(const Binding& binding, double width) { return Circles(binding, width).draw(); }

}  // namespace hierfit::report::chart
