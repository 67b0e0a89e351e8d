#include "report/chart/svg.h"

#include <algorithm>
#include <cmath>
#include <glib.h>
#include <memory>
#include <unordered_set>

#include "report/xml_text.h"

namespace hierfit::report::chart {
namespace {

constexpr double kTipPadding = 7;
constexpr double kTipGap = 8;  ///< between a mark and its tooltip
constexpr double kWidestTip = 320;
constexpr size_t kMostTipLines = 14;
constexpr double kSmallestTarget = 12;
constexpr Font kTipFont{12, false};

std::string base64(std::string_view bytes) {
  const std::unique_ptr<gchar, decltype(&g_free)> text(
      g_base64_encode(reinterpret_cast<const guchar*>(bytes.data()), bytes.size()), &g_free);
  return text.get();
}

/// An `svg` element as far as its size, not yet closed.
void append_size(std::string& out, double width, double height) {
  const auto add = [&out](std::string_view before, double value) {
    append_pixels(out += before, value);
  };
  add("<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 ", width);
  add(" ", height);
  add("\" width=\"", width);
  add("\" height=\"", height);
  out += '"';
}

class SvgWriter {
 public:
  SvgWriter(std::string& out, const Scene& scene, const Style& style, const SvgSettings& settings)
      : out_(out), scene_(scene), style_(style), settings_(settings) {
    reachable_ = settings.by_class && tips_in(scene.marks) <= kMostReachable;
  }

  void write() {
    write_start();
    if (reachable_) out_ += "<g aria-hidden=\"true\">\n";
    for (const Mark& mark : scene_.marks)
      write_mark(mark);
    if (reachable_) {
      out_ += "</g>\n";
      write_targets();
    }
    out_ += "</svg>\n";
  }

 private:
  static size_t tips_in(const std::vector<Mark>& marks) {
    size_t tips = 0;
    for (const Mark& mark : marks)
      tips += (mark.tooltip.empty() ? 0 : 1) + tips_in(mark.children);
    return tips;
  }

  // Attributes.

  void text(std::string_view value) { append_escaped(out_, value); }

  void attribute(std::string_view name, std::string_view value) {
    ((out_ += ' ') += name) += "=\"";
    text(value);
    out_ += '"';
  }

  void attribute(std::string_view name, double value) {
    ((out_ += ' ') += name) += "=\"";
    append_pixels(out_, value);
    out_ += '"';
  }

  void id(std::string_view name, std::string_view part) {
    attribute(name, std::string(settings_.prefix).append(part));
  }

  void write_start() {
    append_size(out_, scene_.width, scene_.height);
    if (settings_.top) attribute("y", *settings_.top);
    attribute("direction", "ltr");
    attribute("font-family", style_.family);
    attribute("role", reachable_ ? "graphics-document" : "img");
    attribute("aria-labelledby",
              std::string(settings_.prefix) + "t " + std::string(settings_.prefix) + "d");
    out_ += ">\n<title";
    id("id", "t");
    out_ += '>';
    text(scene_.title);
    out_ += "</title>\n<desc";
    id("id", "d");
    out_ += '>';
    text(scene_.description);
    out_ += "</desc>\n";
    if (settings_.by_class) return;
    out_ += "<rect width=\"100%\" height=\"100%\"";
    color("fill", {Part::Ground});
    out_ += "/>\n";
  }

  void color(std::string_view name, Paint paint) {
    attribute(name, settings_.by_class && paint ? "currentColor" : style_.series(paint).light);
  }

  /// A mark has one class, so a second paint is the ground's or the same colour.
  void paints(const Mark& mark) {
    const Paint own = mark.fill ? mark.fill : mark.stroke;
    const bool edged = mark.fill && mark.stroke && mark.stroke != mark.fill;
    if (settings_.by_class && own) {
      std::string css = "c-" + paint_name(own);
      if (edged) css += " c-e-" + paint_name(mark.stroke);
      attribute("class", css);
    }
    color("fill", mark.fill);
    if (mark.opacity != 1) attribute("fill-opacity", mark.opacity);
    if (!mark.stroke) return;
    if (!(edged && settings_.by_class)) color("stroke", mark.stroke);
    if (mark.stroke_width != 1) attribute("stroke-width", mark.stroke_width);
    if (mark.stroke_opacity != 1) attribute("stroke-opacity", mark.stroke_opacity);
    if (!mark.dash.empty()) attribute("stroke-dasharray", mark.dash);
  }

  // Marks.

  void write_mark(const Mark& mark);

  /// Ends an element: with the title of a mark whose tooltip shows no other way.
  void close(const Mark& mark, std::string_view tag) {
    if (mark.tooltip.empty() || reachable_) {
      out_ += "/>\n";
      return;
    }
    out_ += "><title>";
    text(mark.tooltip);
    ((out_ += "</title></") += tag) += ">\n";
  }

  void write_rect(const Mark& mark) {
    out_ += "<rect";
    place(mark.box);
    paints(mark);
    close(mark, "rect");
  }

  void place(const Box& box) {
    attribute("x", box.x);
    attribute("y", box.y);
    attribute("width", box.width);
    attribute("height", box.height);
  }

  void write_rule(const Mark& mark) {
    out_ += "<line";
    ends(mark);
    paints(mark);
    close(mark, "line");
  }

  void ends(const Mark& mark) {
    attribute("x1", mark.box.x);
    attribute("y1", mark.box.y);
    attribute("x2", mark.end.x);
    attribute("y2", mark.end.y);
  }

  void write_circle(const Mark& mark) {
    out_ += "<circle";
    attribute("cx", mark.box.x);
    attribute("cy", mark.box.y);
    attribute("r", mark.size);
    paints(mark);
    close(mark, "circle");
  }

  void write_symbol(const Mark& mark) {
    const bool strokes = mark.symbol == Symbol::Cross || mark.symbol == Symbol::Star;
    out_ += "<path d=\"";
    outline(symbol_outline(mark.symbol, {mark.box.x, mark.box.y}, mark.size), strokes);
    if (!strokes) out_ += 'Z';
    out_ += '"';
    paints(mark);
    close(mark, "path");
  }

  /// A path through points, anew behind each break, or, in pairs, from each first to its second.
  void outline(const std::vector<Point>& points, bool pairs) {
    bool begins = true;
    for (size_t i = 0; i < points.size(); ++i) {
      if (is_break(points[i])) {
        begins = true;
        continue;
      }
      out_ += begins || (pairs && i % 2 == 0) ? 'M' : 'L';
      begins = false;
      append_pixels(out_, points[i].x);
      out_ += ' ';
      append_pixels(out_, points[i].y);
    }
  }

  void write_path(const Mark& mark) {
    out_ += "<path d=\"";
    outline(mark.points, false);
    out_ += '"';
    paints(mark);
    close(mark, "path");
  }

  /// A line of no length with round ends is a circle, in the fewest bytes.
  void write_dots(const Mark& mark) {
    Mark look;
    look.stroke = mark.fill;
    look.stroke_width = 2 * mark.size;
    look.stroke_opacity = mark.opacity;
    out_ += "<g stroke-linecap=\"round\"";
    paints(look);
    out_ += ">\n";
    for (const Point& point : mark.points) {
      append_pixels(out_ += "<path d=\"M", point.x);
      append_pixels(out_ += ' ', point.y);
      out_ += "h0\"/>\n";
    }
    out_ += "</g>\n";
  }

  void write_text(const Mark& mark) {
    constexpr std::string_view kAnchors[] = {"start", "middle", "end"};
    out_ += "<text";
    attribute("x", mark.box.x);
    attribute("y", mark.box.y);
    attribute("font-size", mark.size);
    if (mark.bold) attribute("font-weight", "bold");
    if (mark.anchor != Anchor::Start) {
      attribute("text-anchor", kAnchors[static_cast<size_t>(mark.anchor)]);
    }
    if (mark.turn != 0) {
      out_ += " transform=\"rotate(";
      append_pixels(out_, mark.turn);
      out_ += ' ';
      append_pixels(out_, mark.box.x);
      out_ += ' ';
      append_pixels(out_, mark.box.y);
      out_ += ")\"";
    }
    paints(mark);
    out_ += '>';
    if (!mark.tooltip.empty() && !reachable_) {
      out_ += "<title>";
      text(mark.tooltip);
      out_ += "</title>";
    }
    text(mark.text);
    out_ += "</text>\n";
  }

  /// The picture is a mask over its paint, so that it follows the theme.
  void write_image(const Mark& mark) {
    const std::string mask = std::string(settings_.prefix) + "m" + std::to_string(masks_++);
    out_ += "<mask";
    attribute("id", mask);
    attribute("maskUnits", "userSpaceOnUse");
    place(mark.box);
    out_ += "><image";
    place(mark.box);
    out_ += " preserveAspectRatio=\"none\" href=\"data:image/png;base64,";
    out_ += base64(mark.text);
    out_ += "\"/></mask>\n<rect";
    place(mark.box);
    paints(mark);
    attribute("mask", "url(#" + mask + ")");
    close(mark, "rect");
  }

  void write_group(const Mark& mark) {
    out_ += "<g>\n";
    for (const Mark& child : mark.children)
      write_mark(child);
    out_ += "</g>\n";
  }

  // Targets: over all marks, so that no tooltip lies under one.

  void write_targets() {
    std::vector<const Mark*> marks;
    collect(scene_.marks, marks);
    // A tooltip that several marks share is reached once, at the mark in front.
    std::vector<bool> first(marks.size());
    std::unordered_set<std::string_view> seen;
    for (size_t i = marks.size(); i-- > 0;)
      first[i] = seen.insert(marks[i]->tooltip).second;
    for (size_t i = 0; i < marks.size(); ++i)
      write_target(*marks[i], first[i]);
  }

  static void collect(const std::vector<Mark>& marks, std::vector<const Mark*>& found) {
    for (const Mark& mark : marks) {
      if (!mark.tooltip.empty() && mark.kind != MarkKind::Group) found.push_back(&mark);
      collect(mark.children, found);
    }
  }

  void write_target(const Mark& mark, bool tab_stop) {
    out_ += "<g class=\"c-m\"";
    if (tab_stop) {
      out_ += " tabindex=\"0\" role=\"graphics-symbol\"";
      attribute("aria-label", mark.tooltip);
    } else {
      out_ += " aria-hidden=\"true\"";
    }
    out_ += '>';
    write_area(mark);
    write_tip(mark);
    out_ += "</g>\n";
  }

  void write_area(const Mark& mark) {
    if (mark.kind == MarkKind::Rule) {
      out_ += "<line";
      ends(mark);
      attribute("stroke-width", std::max(kSmallestTarget - 4, mark.stroke_width + 2));
      out_ += "/>";
      return;
    }
    Box box = box_of(mark);
    const double width = std::max(box.width, kSmallestTarget);
    const double height = std::max(box.height, kSmallestTarget);
    box = {box.middle_x() - width / 2, box.middle_y() - height / 2, width, height};
    out_ += "<rect";
    place(box);
    out_ += "/>";
  }

  void write_tip(const Mark& mark) {
    const double room = std::max(std::min(kWidestTip, scene_.width - 2 * kTipPadding - 2), 60.0);
    const TextLines lines = fit_text(mark.tooltip, kTipFont, room, kMostTipLines);
    const Box tip = place_of_tip(mark, lines);
    out_ += "<g class=\"c-tip\" aria-hidden=\"true\"><rect";
    place(tip);
    out_ += " rx=\"3\"/>";
    double y = tip.y + kTipPadding + kTipFont.size - 2;
    for (const std::string& line : lines.lines) {
      out_ += "<text";
      attribute("x", tip.x + kTipPadding);
      attribute("y", y);
      out_ += '>';
      text(line);
      out_ += "</text>";
      y += kTipFont.line_height();
    }
    out_ += "</g>";
  }

  /// Above the mark, else below it, and within the picture.
  Box place_of_tip(const Mark& mark, const TextLines& lines) const {
    const Box box = box_of(mark);
    const double width = lines.width(kTipFont) + 2 * kTipPadding;
    const double height =
        static_cast<double>(lines.lines.size()) * kTipFont.line_height() + 2 * kTipPadding - 3;
    const bool rule = mark.kind == MarkKind::Rule;
    double y = (rule ? box.middle_y() : box.y) - kTipGap - height;
    if (y < 0) y = (rule ? box.middle_y() : box.bottom()) + kTipGap;
    y = std::clamp(y, 1.0, std::max(scene_.height - height - 1, 1.0));
    const double x =
        std::clamp(box.middle_x() - width / 2, 1.0, std::max(scene_.width - width - 1, 1.0));
    return {x, y, width, height};
  }

  std::string& out_;
  const Scene& scene_;
  const Style& style_;
  const SvgSettings& settings_;
  bool reachable_ = false;
  int masks_ = 0;
};

void SvgWriter::write_mark(const Mark& mark) {
  using Write = void (SvgWriter::*)(const Mark&);
  /// By kind of mark.
  constexpr Write kWrites[] = {
      &SvgWriter::write_rect,   &SvgWriter::write_rule,  &SvgWriter::write_circle,
      &SvgWriter::write_symbol, &SvgWriter::write_path,  &SvgWriter::write_dots,
      &SvgWriter::write_text,   &SvgWriter::write_image, &SvgWriter::write_group,
  };
  (this->*kWrites[static_cast<size_t>(mark.kind)])(mark);
}

}  // namespace

void append_svg(std::string& out,
                const Scene& scene,
                const Style& style,
                const SvgSettings& settings) {
  SvgWriter(out, scene, style, settings).write();
}

void append_svg_start(std::string& out, double width, double height) {
  append_size(out, width, height);
  out += ">\n<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n";
}

}  // namespace hierfit::report::chart
