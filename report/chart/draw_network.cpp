// Nodes and edges where the data put them; each label stands beside its node.
#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>

#include "report/chart/pieces.h"
#include "report/chart/scale.h"
#include "report/wording.h"

namespace hierfit::report::chart {
namespace {

constexpr double kNodeRadius = 7;
constexpr double kLabelGap = 7;
constexpr double kEdgeRoom = 6;  ///< between the marks and the sides of the picture
constexpr double kLongestLabel = 250;
constexpr double kShortestLabel = 80;
constexpr double kClearance = 70;  ///< wished for between the nodes and the box of the target
constexpr double kTallest = 30000;
constexpr size_t kUsualLabelLines = 2;
constexpr size_t kMostLabelLines = 6;  ///< of labels that would be cut alike else
constexpr size_t kMostNodes = 100;

using Place = std::pair<double, double>;

struct PlacedNode {
  const BoundElement* element;
  size_t row;
  double x;
  double y;
  std::string label;
  bool boxed;  ///< drawn as a box around its label and what is embedded
};

class Network {
 public:
  Network(const Binding& binding, double width)
      : binding_(binding), font_(binding.font(Lettering::MarkLabel)), width_(width) {}

  Piece draw() {
    collect();
    if (nodes_.empty()) return {};
    if (plain_ > kMostNodes) keep_most_significant();
    measure();
    for (const BoundElement& element : binding_.elements) {
      if (element.element->kind == ElementKind::Edge) draw_edges(element);
    }
    for (const PlacedNode& node : nodes_) {
      if (!node.boxed) draw_node(node);
    }
    for (const PlacedNode& node : nodes_) {
      if (node.boxed) draw_box(node);
    }
    piece_.width = width_;
    return std::move(piece_);
  }

 private:
  void collect() {
    for (const BoundElement& element : binding_.elements) {
      if (element.element->kind != ElementKind::Node) continue;
      for (size_t row = 0; row < element.rows(); ++row)
        collect_node(element, row);
    }
  }

  void collect_node(const BoundElement& element, size_t row) {
    const double x = number_at(element[RoleKind::X], row);
    const double y = number_at(element[RoleKind::Y], row);
    if (!is_number(x) || !is_number(y)) return;
    const ChartVariable* own = element[RoleKind::Label];
    std::string label = own != nullptr && has_value(*own, row)
                            ? shown_value(*own, row, binding_.numbers)
                            : text_beside(element, row);
    const bool boxed = element.element->embedded != nullptr || own != nullptr;
    nodes_.push_back({&element, row, x, y, std::move(label), boxed});
    (boxed ? boxes_ : plain_) += 1;
  }

  /// The label that a text element gives to the same row of the same source.
  std::string text_beside(const BoundElement& node, size_t row) const {
    for (const BoundElement& element : binding_.elements) {
      const ChartVariable* label = element[RoleKind::Label];
      const bool beside =
          element.element->kind == ElementKind::Text && element.source == node.source;
      if (beside && label != nullptr && has_value(*label, row)) {
        return shown_value(*label, row, binding_.numbers);
      }
    }
    return {};
  }

  // Too many nodes.

  /// Leaves the nodes with the strongest edges, at even distances on the bend of them all.
  void keep_most_significant() {
    std::vector<PlacedNode> plain;
    std::vector<PlacedNode> kept;
    for (PlacedNode& node : nodes_)
      (node.boxed ? kept : plain).push_back(std::move(node));
    const std::vector<size_t> order = greatest(scores_of(plain), kMostNodes);
    for (size_t i = 0; i < order.size(); ++i) {
      const PlacedNode& place = plain[i * (plain.size() - 1) / (order.size() - 1)];
      PlacedNode node = plain[order[i]];
      moved_[{node.x, node.y}] = {place.x, place.y};
      node.x = place.x;
      node.y = place.y;
      kept.push_back(std::move(node));
    }
    nodes_ = std::move(kept);
    plain_ = order.size();
    piece_.notes.push_back(filled(binding_.word("The ^1 most significant of ^2 are shown."),
                                  std::to_string(order.size()), std::to_string(plain.size())));
  }

  /// The strength of each node's edges.
  std::vector<double> scores_of(const std::vector<PlacedNode>& nodes) const {
    std::map<Place, size_t> index;
    for (size_t i = 0; i < nodes.size(); ++i)
      index.try_emplace({nodes[i].x, nodes[i].y}, i);
    std::vector<double> scores(nodes.size());
    const LineWidths widths(binding_);
    for (const BoundElement& element : binding_.elements) {
      if (element.element->kind != ElementKind::Edge) continue;
      for (size_t row = 0; row < element.rows(); ++row) {
        const auto found = index.find(
            {number_at(element[RoleKind::X], row), number_at(element[RoleKind::Y], row)});
        if (found == index.end()) continue;
        scores[found->second] += widths.share_of(number_at(element[RoleKind::Size], row));
      }
    }
    return scores;
  }

  // Places.

  void measure() {
    for (const PlacedNode& node : nodes_) {
      x_range_.add(node.x);
      y_range_.add(node.y);
    }
    const bool narrow = width_ < 500;
    box_size_ = {0, 0, narrow ? 124.0 : 190.0, has_embedded() ? (narrow ? 120.0 : 160.0) : 44.0};
    if (boxes_ == 0) box_size_ = {0, 0, 2 * kNodeRadius, 2 * kNodeRadius};
    right_ = width_ - box_size_.width / 2 - kEdgeRoom;
    find_label_room();
    find_heights();
  }

  bool has_embedded() const {
    return std::ranges::any_of(nodes_, [&](const PlacedNode& node) {
      return has_histogram(binding_, *node.element->element);
    });
  }

  /// The longest labels that leave the edges room to be seen.
  void find_label_room() {
    for (label_room_ = std::min(kLongestLabel, width_ * 0.4);; label_room_ -= 10) {
      scale_ = scale_for_labels();
      if (label_room_ <= kShortestLabel) return;
      const double leftmost = right_ - (x_range_.high - x_range_.low) * scale_;
      if (right_ - box_size_.width / 2 - leftmost >= kClearance + box_size_.width * 0.5) return;
    }
  }

  double label_width(const PlacedNode& node) const {
    return std::min(text_width(node.label, font_), label_room_);
  }

  /// Pixels per unit along x, so that every label begins within the picture.
  double scale_for_labels() const {
    double scale = HUGE_VAL;
    for (const PlacedNode& node : nodes_) {
      const double distance = x_range_.high - node.x;
      if (node.boxed || distance <= 0) continue;
      const double room = right_ - kEdgeRoom - kNodeRadius - kLabelGap - label_width(node);
      scale = std::min(scale, std::max(room, 40.0) / distance);
    }
    return std::isfinite(scale) ? scale : 1;
  }

  TextLines lines_of(const std::string& label) const {
    return fit_text(label, font_, label_room_, label_lines_);
  }

  void find_label_lines() {
    std::vector<std::string> labels;
    for (const PlacedNode& node : nodes_)
      labels.push_back(node.label);
    const auto shown = [&](const std::string& label) { return joined(lines_of(label)); };
    while (label_lines_ < kMostLabelLines && are_cut_alike(labels, shown))
      ++label_lines_;
  }

  void find_heights() {
    find_label_lines();
    size_t lines = 1;
    for (const PlacedNode& node : nodes_) {
      if (!node.boxed) {
        lines = std::max(lines, lines_of(node.label).lines.size());
      }
    }
    line_room_ = static_cast<double>(lines) * font_.line_height();
    const double step = std::max(line_room_ + 6, 26.0);
    const double units = std::max(1.0, y_range_.high - y_range_.low);
    const double rows = std::min(units, std::max(1.0, static_cast<double>(plain_)));
    double height = std::min(rows * step, kTallest);
    const double least = std::max(box_size_.height * 1.1, plain_ > 2 ? 180.0 : 90.0);
    if (plain_ > 1) height = std::max(height, least);
    unit_ = height / units;
    const double spread = (y_range_.high - y_range_.low) * unit_;
    const double half = std::max(line_room_, 2 * kNodeRadius) / 2 + 4;
    const double target = (spread - box_size_.height) / 2;
    top_ = std::max(half, -target + kEdgeRoom);
    piece_.height = spread + 2 * top_;
  }

  double x_at(double x) const { return right_ - (x_range_.high - x) * scale_; }
  double y_at(double y) const { return top_ + (y_range_.high - y) * unit_; }

  // Marks.

  void draw_edges(const BoundElement& element) {
    const LineWidths widths(binding_);
    for (size_t row = 0; row < element.rows(); ++row) {
      auto [from_x, from_y] =
          Place{number_at(element[RoleKind::X], row), number_at(element[RoleKind::Y], row)};
      if (!moved_.empty()) {
        const auto moved = moved_.find({from_x, from_y});
        if (moved == moved_.end()) continue;
        std::tie(from_x, from_y) = moved->second;
      }
      const double to_x = number_at(element[RoleKind::X2], row);
      const double to_y = number_at(element[RoleKind::Y2], row);
      if (!is_number(from_x) || !is_number(from_y) || !is_number(to_x) || !is_number(to_y))
        continue;
      const Paint paint = binding_.paint_of(element, row);
      Mark mark = rule_mark({x_at(from_x), y_at(from_y)}, {x_at(to_x), y_at(to_y)}, paint,
                            width_of_edge(widths, binding_, element, row));
      mark.dash = dash_for(binding_.plan.style.series(paint).dash, mark.stroke_width);
      mark.tooltip = binding_.tooltip_of(element, {row, row});
      piece_.marks.push_back(std::move(mark));
    }
  }

  void draw_node(const PlacedNode& node) {
    const Point at{x_at(node.x), y_at(node.y)};
    const Symbol symbol = binding_.symbol_of(*node.element, node.row);
    if (is_open_symbol(symbol)) {
      piece_.marks.push_back(circle_mark(at, kNodeRadius + 1, {Part::Ground}));
    }
    Mark mark = symbol_mark(at, kNodeRadius, symbol, {Part::Text});
    if (!is_open_symbol(symbol)) {
      mark.stroke = {Part::Ground};
      mark.stroke_width = 1.5;
    }
    mark.tooltip = binding_.tooltip_of(*node.element, {node.row, node.row});
    if (mark.tooltip.empty()) mark.tooltip = node.label;
    piece_.marks.push_back(std::move(mark));
    draw_label(node, at);
  }

  /// Labels that would touch the one above are left out: the nodes are too many for them all.
  void draw_label(const PlacedNode& node, Point at) {
    const double left = at.x - kNodeRadius - kLabelGap;
    const TextLines lines = lines_of(node.label);
    const double height = static_cast<double>(lines.lines.size()) * font_.line_height();
    if (unit_ < font_.line_height() && at.y - last_label_ < height && at.y >= last_label_) return;
    last_label_ = at.y;
    put_lines(piece_.marks, lines, left, at.y - height / 2 - 1, font_, Anchor::End, node.label);
  }

  void draw_box(const PlacedNode& node) {
    Box box = box_size_;
    box.x = x_at(node.x) - box.width / 2;
    box.y = y_at(node.y) - box.height / 2;
    Mark mark = rect_mark(box, {Part::Panel});
    mark.stroke = {Part::Axis};
    mark.stroke_width = 1.5;
    mark.tooltip = binding_.tooltip_of(*node.element, {node.row, node.row});
    piece_.marks.push_back(std::move(mark));
    Font bold = font_;
    bold.bold = true;
    const bool embedded = has_histogram(binding_, *node.element->element);
    const TextLines title = fit_text(node.label, bold, box.width - 12, embedded ? 1 : 2);
    const double height = static_cast<double>(title.lines.size()) * bold.line_height();
    const double y = embedded ? box.y + 4 : box.middle_y() - height / 2 - 1;
    const double below =
        put_lines(piece_.marks, title, box.middle_x(), y, bold, Anchor::Middle, node.label);
    if (!embedded) return;
    draw_histogram(piece_.marks, binding_, *node.element->element->embedded,
                   {box.x + 8, below + 4, box.width - 16, box.bottom() - below - 8});
  }

  const Binding& binding_;
  const Font& font_;
  double width_;
  Piece piece_;
  std::vector<PlacedNode> nodes_;
  std::map<Place, Place> moved_;  ///< where kept nodes stand now; empty where all are shown
  size_t boxes_ = 0;
  size_t plain_ = 0;
  Range x_range_;
  Range y_range_;
  Box box_size_;
  double right_ = 0;  ///< the pixel of the greatest x
  double scale_ = 1;  ///< pixels per unit along x
  double unit_ = 1;   ///< pixels per unit along y
  double top_ = 0;    ///< the pixel of the greatest y
  double label_room_ = 0;
  size_t label_lines_ = kUsualLabelLines;
  double line_room_ = 0;
  double last_label_ = -HUGE_VAL;
};

}  // namespace

Piece draw_network(const Binding& binding, double width) { return Network(binding, width).draw(); }

}  // namespace hierfit::report::chart
