#include "report/chart/layout.h"

#include <algorithm>

#include "report/chart/pieces.h"
#include "report/wording.h"

namespace hierfit::report::chart {
namespace {

constexpr double kMargin = 10;
constexpr double kNarrowest = 240;
constexpr size_t kMostTextLines = 12;

bool has_kind(const Graph& graph, ElementKind kind) {
  return std::ranges::any_of(graph.elements,
                             [&](const Element& element) { return element.kind == kind; });
}

Piece draw_graph(const Binding& binding, double width) {
  if (binding.graph.circle) return draw_circles(binding, width);
  if (binding.graph.rows) return draw_rows(binding, width);
  if (has_kind(binding.graph, ElementKind::Node) || has_kind(binding.graph, ElementKind::Edge)) {
    return draw_network(binding, width);
  }
  return draw_panels(binding, width);
}

Piece draw_nothing(const Binding& binding, double width) {
  Piece piece;
  const Font& font = binding.font(Lettering::Caption);
  piece.marks.push_back(text_mark({width / 2, 40}, std::string(binding.word("No data to show")),
                                  font, Anchor::Middle));
  piece.width = width;
  piece.height = 64;
  return piece;
}

class Page {
 public:
  Page(const Binding& binding, const Settings& settings)
      : binding_(binding),
        settings_(settings),
        width_(std::max(settings.width, kNarrowest) - 2 * kMargin) {
    y_ = settings.texts ? kMargin : 2;
  }

  Scene write() {
    const Texts& texts = binding_.plan.texts;
    put_text(texts.title, Lettering::Title, 2);
    put_text(texts.sub_title, Lettering::SubTitle, 2);
    if (settings_.texts && y_ > kMargin) y_ += 8;
    put_graph();
    put_text(texts.caption, Lettering::Caption, 6);
    put_text(texts.footnote, Lettering::Footnote, 6);
    for (const std::string& note : texts.notes)
      put_text(note, Lettering::Footnote, 6);
    scene_.width = page_.width + 2 * kMargin;
    scene_.height = std::max(page_.height, y_) + (settings_.texts ? kMargin : 4);
    scene_.marks = std::move(page_.marks);
    std::erase_if(scene_.marks, [](const Mark& mark) {
      return mark.kind == MarkKind::Text && mark.text.empty();
    });
    return std::move(scene_);
  }

 private:
  void put_graph() {
    Piece graph = draw_graph(binding_, width_);
    if (graph.empty()) graph = draw_nothing(binding_, width_);
    const std::vector<std::string> notes = std::move(graph.notes);
    const auto& margins = binding_.graph.margins;
    const double height = graph.height;
    const LegendFacts facts = graph.legend;
    width_ = std::max(width_, graph.width);
    page_.width = width_;
    page_.take(std::move(graph), kMargin + margins[3], y_ + margins[0]);
    page_.width = width_ + margins[1] + margins[3];
    y_ += height + margins[0] + margins[2] + 8;
    Piece legends = draw_legends(binding_, facts, width_);
    const double legend_height = legends.height;
    page_.take(std::move(legends), kMargin, y_);
    page_.width = width_ + margins[1] + margins[3];
    y_ += legend_height;
    for (const std::string& note : notes)
      put_line(note);
    if (binding_.left_out > 0) {
      put_line(filled(binding_.word("Some panels are not shown: they are too many.")));
    }
  }

  void put_line(const std::string& text) {
    const Font& font = binding_.font(Lettering::Caption);
    y_ = put_lines(page_.marks, fit_text(text, font, width_, 2), kMargin, y_ + 4, font,
                   Anchor::Start, text);
  }

  void put_text(const std::string& text, Lettering lettering, double gap) {
    if (!settings_.texts || text.empty()) return;
    const Font& font = binding_.font(lettering);
    y_ = put_lines(page_.marks, fit_text(text, font, width_, kMostTextLines), kMargin, y_ + gap,
                   font, Anchor::Start, text);
  }

  const Binding& binding_;
  const Settings& settings_;
  double width_;
  double y_ = 0;
  Piece page_;
  Scene scene_;
};

}  // namespace

Scene lay_out(const Binding& binding, const Settings& settings) {
  return Page(binding, settings).write();
}

}  // namespace hierfit::report::chart
