// Panels with axes: their grids, axes and titles, and the elements in them.
#include "report/chart/panel_frame.h"

namespace hierfit::report::chart {
namespace {

constexpr Paint kAxis{Part::Axis};

/// An element that stands on axes: how it is drawn in a panel.
struct ElementType {
  ElementKind kind;
  void (*draw)(std::vector<Mark>&, const PanelFrame&, const BoundElement&, uint32_t panel);
};
constexpr ElementType kElementTypes[] = {
    {ElementKind::Point, draw_points},
    {ElementKind::Line, draw_lines},
    {ElementKind::Interval, draw_intervals},
};

class Panels {
 public:
  explicit Panels(const PanelFrame& frame) : frame_(frame) {}

  Piece draw() {
    piece_.width = frame_.grid.width;
    piece_.notes = frame_.limits.notes;
    piece_.legend.colors = frame_.limits.colors;
    piece_.legend.keys = frame_.x_labels.keys;
    piece_.legend.keys_title = frame_.x.title;
    rasters_ = count_points(frame_);
    for (const DensityRaster& raster : rasters_)
      piece_.legend.densest = std::max(piece_.legend.densest, raster.most());
    for (uint32_t i = 0; i < graph_panels(); ++i)
      draw_panel(i);
    draw_y_title();
    draw_x_title();
    return std::move(piece_);
  }

 private:
  const Graph& graph() const { return frame_.binding.graph; }
  uint32_t graph_panels() const { return static_cast<uint32_t>(frame_.binding.panels.size()); }

  void draw_panel(uint32_t index) {
    const Box box = frame_.box_of_panel(index);
    std::vector<Mark> marks;
    draw_grid(marks);
    if (!frame_.crowd.crowded) draw_guides(marks, frame_, index);
    if (!rasters_.empty()) draw_density(marks, rasters_[index]);
    for (const BoundElement& element : frame_.binding.elements)
      draw_element(marks, element, index);
    if (frame_.crowd.crowded) draw_guides(marks, frame_, index);
    draw_axes(marks, index);
    draw_panel_titles(marks, index);
    for (Mark& mark : marks) {
      shift(mark, box.x, box.y);
      piece_.marks.push_back(std::move(mark));
    }
    piece_.height = std::max(piece_.height, box.bottom());
  }

  void draw_element(std::vector<Mark>& marks, const BoundElement& element, uint32_t panel) const {
    if (element[RoleKind::Y] == nullptr) return;
    for (const ElementType& type : kElementTypes) {
      if (type.kind == element.element->kind) type.draw(marks, frame_, element, panel);
    }
  }

  void draw_density(std::vector<Mark>& marks, const DensityRaster& raster) const {
    marks.push_back(image_mark({0, 0, raster.width(), raster.height()},
                               raster.png(piece_.legend.densest), {Part::Mark}));
  }

  void draw_grid(std::vector<Mark>& marks) const {
    const Box& panel = frame_.grid.panel;
    marks.push_back(rect_mark({0, 0, panel.width, panel.height}, {Part::Panel}));
    for (const TickLabel& label : frame_.y_labels)
      marks.push_back(rule_mark({0, label.at}, {panel.width, label.at}, {Part::Grid}));
    if (!frame_.x.categorical) {
      for (const TickLabel& label : frame_.x_labels.labels)
        marks.push_back(rule_mark({label.at, 0}, {label.at, panel.height}, {Part::Grid}));
    }
    if (frame_.y.range.low < 0 && frame_.y.range.high > 0) {
      const double zero = frame_.y_scale().at(0);
      marks.push_back(rule_mark({0, zero}, {panel.width, zero}, kAxis));
    }
  }

  void draw_axes(std::vector<Mark>& marks, uint32_t index) const {
    const double bottom = frame_.grid.panel.height;
    if (graph().y.visible) {
      marks.push_back(rule_mark({0, 0}, {0, bottom}, kAxis));
      if (frame_.column_of(index) == 0) draw_y_labels(marks);
    }
    if (!graph().x.visible) return;
    marks.push_back(rule_mark({0, bottom}, {frame_.grid.panel.width, bottom}, kAxis));
    if (frame_.is_lowest(index)) draw_x_labels(marks);
  }

  void draw_y_labels(std::vector<Mark>& marks) const {
    const double down = frame_.font(Lettering::AxisLabel).size * 0.35;
    for (const TickLabel& label : frame_.y_labels) {
      marks.push_back(rule_mark({-kTick, label.at}, {0, label.at}, kAxis));
      put_line(marks, label.text, {-kTick - 3, label.at + down}, kLongestNumber, 0);
    }
  }

  void draw_x_labels(std::vector<Mark>& marks) const {
    const Font& font = frame_.font(Lettering::AxisLabel);
    const TickLabels& labels = frame_.x_labels;
    const double bottom = frame_.grid.panel.height;
    const double top = bottom + kTick + 2;
    for (const TickLabel& label : labels.labels) {
      marks.push_back(rule_mark({label.at, bottom}, {label.at, bottom + kTick}, kAxis));
      if (labels.turn == 0) {
        const TextLines lines = fit_text(label.text, font, labels.room, labels.lines);
        put_lines(marks, lines, label.at, top, font, Anchor::Middle, label.text);
      } else {
        const double right = labels.turn == -90 ? font.size * 0.35 : 4;
        const double drop = labels.turn == -90 ? 2 : font.size * 0.7;
        put_line(marks, label.text, {label.at + right, top + drop}, labels.room, labels.turn);
      }
    }
  }

  /// A name that ends at a point.
  void put_line(
      std::vector<Mark>& marks, const std::string& text, Point at, double room, double turn) const {
    const Font& font = frame_.font(Lettering::AxisLabel);
    bool cut = false;
    Mark mark = text_mark(at, fit_line(text, font, room, &cut), font, Anchor::End);
    mark.turn = turn;
    if (cut) mark.tooltip = text;
    marks.push_back(std::move(mark));
  }

  void draw_panel_titles(std::vector<Mark>& marks, uint32_t index) const {
    const Font& font = frame_.font(Lettering::FacetTitle);
    const Panel& panel = frame_.binding.panels[index];
    const std::vector<TextLines> titles = frame_.titles_of(panel);
    double lines = 0;
    for (const TextLines& title : titles)
      lines += static_cast<double>(title.lines.size());
    double y = -4 - lines * font.line_height();
    for (size_t i = 0; i < titles.size(); ++i) {
      y = put_lines(marks, titles[i], frame_.grid.panel.width / 2, y, font, Anchor::Middle,
                    panel.titles[i]);
    }
  }

  void draw_y_title() {
    if (!graph().y.visible) return;
    const Font& font = frame_.font(Lettering::AxisTitle);
    const double middle = (frame_.title_height() + piece_.height) / 2;
    double x = font.size;
    for (const std::string& line : frame_.grid.y_title.lines) {
      Mark mark = text_mark({x, middle}, line, font, Anchor::Middle);
      mark.turn = -90;
      if (frame_.grid.y_title.cut) mark.tooltip = frame_.y.title;
      piece_.marks.push_back(std::move(mark));
      x += font.line_height();
    }
  }

  void draw_x_title() {
    double y = piece_.height;
    if (graph().x.visible) y += kTick + 4 + frame_.x_labels.height;
    if (!frame_.x.title.empty() && graph().x.visible) {
      const Font& font = frame_.font(Lettering::AxisTitle);
      const double width = frame_.grid.columns * (frame_.grid.panel.width + kPanelGap) - kPanelGap;
      const TextLines lines = fit_text(frame_.x.title, font, width, 2);
      y = put_lines(piece_.marks, lines, frame_.grid.panel.x + width / 2, y + 4, font,
                    Anchor::Middle, frame_.x.title);
    }
    piece_.height = y + 4;
  }

  const PanelFrame& frame_;
  std::vector<DensityRaster> rasters_;  ///< by panel; none where the points are marks
  Piece piece_;
};

}  // namespace

Piece draw_panels(const Binding& binding, double width) {
  const std::optional<PanelFrame> frame = arrange_panels(binding, width);
  return frame ? Panels(*frame).draw() : Piece();
}

}  // namespace hierfit::report::chart
