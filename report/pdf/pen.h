// Draws text, rules and pictures on the pages of a PDF.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "report/typeset/paper.h"

struct _cairo;
struct _cairo_surface;
struct _cairo_scaled_font;
struct _PangoContext;
struct _PangoLayout;

namespace hierfit::report::pdf {

enum class Side : uint8_t { Start, Centre, End };

/// A stretch of text.
struct Run {
  std::string text;
  bool bold = false;
  bool italic = false;
  bool raised = false;
  bool quiet = false;
};
using Runs = std::vector<Run>;

struct TextLook {
  double size = 10;
  Side side = Side::Start;
  double line = 1.2;  ///< from one line to the next, in sizes
};

enum class Ink : uint8_t { Text, Quiet, Hair, Warning, Error };

/// Pages under construction. Lengths are in points, from the top left corner of the paper. With
/// `draws` off nothing is drawn, but everything is measured and pages are counted as they would be.
class Pen {
 public:
  Pen(bool draws, bool right_to_left, const std::string& title);
  Pen(const Pen&) = delete;
  Pen& operator=(const Pen&) = delete;
  ~Pen();

  /// What is drawn on each page when it begins.
  std::function<void(Pen&)> on_page;

  void begin_page(bool landscape);
  /// Goes on on another page, which lies the same way.
  void next_page() { begin_page(landscape_); }
  /// The bytes of the file.
  std::string take();

  uint32_t page() const { return pages_; }
  bool landscape() const { return landscape_; }
  double left() const { return kSideMargin; }
  double width() const { return paper_width() - 2 * kSideMargin; }
  double top() const { return kEndMargin; }
  double bottom() const { return (landscape_ ? kPaperWidth : kPaperHeight) - kEndMargin; }
  double paper_width() const { return landscape_ ? kPaperHeight : kPaperWidth; }
  /// What is left of the page.
  double room() const { return bottom() - y; }
  bool at_top() const { return y <= top(); }

  /// Where the next thing goes.
  double y = 0;

  // Text. The box is `width` wide; the side where text begins is the right one for a document that
  // runs from right to left.

  double height(const Runs& runs, const TextLook& look, double width);
  void text(const Runs& runs, const TextLook& look, double x, double top, double width);
  /// A paragraph at `y`, which moves behind it. It goes on on the next page where it must.
  void flow(const Runs& runs, const TextLook& look, double x, double width);
  /// Digits and plain letters in one line, without shaping: many times as fast.
  void plain(std::string_view text, double size, double x, double baseline);
  /// Whether a text is of plain letters, line feeds among them.
  static bool is_ascii(std::string_view text);
  /// Whether a text may be drawn so and is no wider than that.
  static bool is_plain(std::string_view text, double size, double width);

  void ink(Ink ink);
  /// A level line.
  void rule(double x, double y_at, double length, double thickness, Ink colour);
  void bar(double x, double y_at, double height, double thickness, Ink colour);
  void picture(std::string_view svg, double x, double y_at, double width, double height);

  /// Names a place for links.
  void destination(const std::string& name);
  void link(const std::string& name, const std::function<void()>& draw);
  /// An entry of the viewer's outline; gives its number, for entries under it.
  int outline(int parent, const std::string& title, const std::string& name);

 private:
  void set_layout(const Runs& runs, const TextLook& look, double width);
  double show_lines(double x, double top, bool flows);

  bool draws_;
  bool right_to_left_;
  bool landscape_ = false;
  uint32_t pages_ = 0;
  std::string bytes_;
  _cairo_surface* surface_ = nullptr;
  _cairo* context_ = nullptr;
  _PangoContext* pango_ = nullptr;
  _PangoLayout* layout_ = nullptr;
  _cairo_scaled_font* digits_ = nullptr;
  double line_height_ = 12;
};

}  // namespace hierfit::report::pdf
