#include "report/pdf/pen.h"

#include <algorithm>
#include <array>
#include <cairo-pdf.h>
#include <cmath>
#include <pango/pangocairo.h>
#include <stdexcept>

#include "output/utf8.h"
#include "report/chart/metrics.h"
#include "report/picture/picture.h"

namespace hierfit::report::pdf {
namespace {

constexpr char kFamily[] = "Liberation Sans, Arial, sans-serif";

/// The same document gives the same file at any time.
constexpr char kCreated[] = "1970-01-01T00:00:00Z";

/// How raised marks stand, in sizes.
constexpr double kRaisedSize = 0.72;
constexpr double kRaise = 0.33;

struct Colour {
  double red, green, blue;
};
constexpr std::array<Colour, 5> kInks = {{
    {0.086, 0.094, 0.106},
    {0.333, 0.357, 0.388},
    {0.62, 0.64, 0.67},
    {0.541, 0.353, 0},
    {0.651, 0.106, 0.106},
}};

cairo_status_t append(void* text, const unsigned char* data, unsigned int length) {
  static_cast<std::string*>(text)->append(reinterpret_cast<const char*>(data), length);
  return CAIRO_STATUS_SUCCESS;
}

void require(cairo_status_t status) {
  if (status == CAIRO_STATUS_SUCCESS) return;
  throw std::runtime_error(std::string("a page cannot be drawn: ") +
                           cairo_status_to_string(status));
}

int units(double points) { return static_cast<int>(std::lround(points * PANGO_SCALE)); }
double points(int pango_units) { return static_cast<double>(pango_units) / PANGO_SCALE; }

void insert(PangoAttrList* list, PangoAttribute* attribute, size_t begin, size_t end) {
  attribute->start_index = static_cast<guint>(begin);
  attribute->end_index = static_cast<guint>(end);
  pango_attr_list_insert(list, attribute);
}

void insert_look(PangoAttrList* list, const Run& run, double size, size_t begin, size_t end) {
  if (run.bold) insert(list, pango_attr_weight_new(PANGO_WEIGHT_BOLD), begin, end);
  if (run.italic) insert(list, pango_attr_style_new(PANGO_STYLE_ITALIC), begin, end);
  if (run.quiet) {
    const auto [red, green, blue] = kInks[static_cast<size_t>(Ink::Quiet)];
    const auto part = [](double value) { return static_cast<guint16>(value * 65535); };
    insert(list, pango_attr_foreground_new(part(red), part(green), part(blue)), begin, end);
  }
  if (!run.raised) return;
  insert(list, pango_attr_size_new(units(size * kRaisedSize)), begin, end);
  insert(list, pango_attr_rise_new(units(size * kRaise)), begin, end);
}

PangoAlignment alignment_of(Side side, PangoLayout* layout, bool right_to_left) {
  if (side == Side::Centre) return PANGO_ALIGN_CENTER;
  // Pango's left is the side where a paragraph begins.
  const bool leftward = pango_layout_get_direction(layout, 0) == PANGO_DIRECTION_RTL;
  const bool at_right = (side == Side::End) != right_to_left;
  return at_right != leftward ? PANGO_ALIGN_RIGHT : PANGO_ALIGN_LEFT;
}

/// Whether the font itself has all characters: ASCII, and what else stands in numbers but for the
/// narrow no-break space.
bool in_font(std::string_view text) {
  constexpr std::string_view kOthers[] = {"\u00A0", "\u00B7", "\u2212"};
  while (!text.empty()) {
    size_t bytes = text[0] >= ' ' && text[0] < '\x7F' ? 1 : 0;
    for (const std::string_view other : kOthers) {
      if (text.starts_with(other)) bytes = other.size();
    }
    if (bytes == 0) return false;
    text.remove_prefix(bytes);
  }
  return true;
}

/// A word that is longer than any line is shaped anew for each of its lines, all of what is left of
/// it, and of many paragraphs each one counts all text behind it. So where a text goes on and on,
/// words get places to break at, which show nothing, and lines are divided as lines.
constexpr size_t kLongWord = 256;  // characters

void append_with_breaks(std::string& all, std::string_view text) {
  if (text.size() <= kLongWord) {
    all += text;
    return;
  }
  size_t characters = 0;
  for (const utf8::Character& each : utf8::Characters(text)) {
    if (each.code == U'\n') {
      all += "\u2028";
      characters = 0;
      continue;
    }
    if (each.code == U' ') characters = 0;
    if (characters++ == kLongWord) {
      all += "\u200B";
      characters = 1;
    }
    all += each.bytes;
  }
}

PangoFontDescription* font_of(double size) {
  PangoFontDescription* font = pango_font_description_from_string(kFamily);
  pango_font_description_set_size(font, units(size));
  return font;
}

cairo_scaled_font_t* scaled_font_of(PangoContext* context) {
  PangoFontDescription* description = font_of(kTableFont);
  PangoFont* font = pango_context_load_font(context, description);
  pango_font_description_free(description);
  if (font == nullptr) throw std::runtime_error("a page cannot be drawn: there is no font");
  cairo_scaled_font_t* scaled =
      cairo_scaled_font_reference(pango_cairo_font_get_scaled_font(PANGO_CAIRO_FONT(font)));
  g_object_unref(font);
  return scaled;
}

}  // namespace

Pen::Pen(bool draws, bool right_to_left, const std::string& title)
    : draws_(draws), right_to_left_(right_to_left) {
  // The default one would live until the end of the process.
  PangoFontMap* fonts = pango_cairo_font_map_new();
  pango_ = pango_font_map_create_context(fonts);
  g_object_unref(fonts);
  pango_cairo_context_set_resolution(pango_, 72);
  pango_context_set_round_glyph_positions(pango_, FALSE);
  cairo_font_options_t* options = cairo_font_options_create();
  cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
  cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
  pango_cairo_context_set_font_options(pango_, options);
  cairo_font_options_destroy(options);
  layout_ = pango_layout_new(pango_);
  pango_layout_set_wrap(layout_, PANGO_WRAP_WORD_CHAR);
  if (!draws_) return;
  surface_ = cairo_pdf_surface_create_for_stream(&append, &bytes_, kPaperWidth, kPaperHeight);
  cairo_pdf_surface_set_metadata(surface_, CAIRO_PDF_METADATA_CREATE_DATE, kCreated);
  cairo_pdf_surface_set_metadata(surface_, CAIRO_PDF_METADATA_TITLE, title.c_str());
  context_ = cairo_create(surface_);
  require(cairo_status(context_));
  digits_ = scaled_font_of(pango_);
}

Pen::~Pen() {
  g_object_unref(layout_);
  g_object_unref(pango_);
  if (!draws_) return;
  cairo_scaled_font_destroy(digits_);
  cairo_destroy(context_);
  cairo_surface_destroy(surface_);
}

void Pen::begin_page(bool landscape) {
  if (draws_ && pages_ > 0) cairo_show_page(context_);
  landscape_ = landscape;
  ++pages_;
  y = top();
  if (draws_) {
    cairo_pdf_surface_set_size(surface_, paper_width(), landscape_ ? kPaperWidth : kPaperHeight);
  }
  if (on_page) on_page(*this);
}

std::string Pen::take() {
  cairo_surface_finish(surface_);
  require(cairo_surface_status(surface_));
  return std::move(bytes_);
}

// Text.

void Pen::set_layout(const Runs& runs, const TextLook& look, double width) {
  std::string all;
  PangoAttrList* attributes = pango_attr_list_new();
  for (const Run& run : runs) {
    const size_t begin = all.size();
    append_with_breaks(all, run.text);
    insert_look(attributes, run, look.size, begin, all.size());
  }
  PangoFontDescription* font = font_of(look.size);
  pango_layout_set_font_description(layout_, font);
  pango_font_description_free(font);
  pango_layout_set_text(layout_, all.data(), static_cast<int>(all.size()));
  pango_layout_set_attributes(layout_, attributes);
  pango_attr_list_unref(attributes);
  pango_layout_set_width(layout_, units(std::max(width, 1.0)));
  pango_layout_set_alignment(layout_, alignment_of(look.side, layout_, right_to_left_));
  line_height_ = look.size * look.line;
}

/// Lines stand at even distances, whatever marks and scripts they hold.
double Pen::show_lines(double x, double top, bool flows) {
  // A new page has a foot, which takes the layout for its own text.
  PangoLayout* layout = flows ? pango_layout_copy(layout_) : PANGO_LAYOUT(g_object_ref(layout_));
  const double height = line_height_;
  PangoLayoutIter* lines = pango_layout_get_iter(layout);
  const double lead = points(pango_layout_get_baseline(layout));
  double used = 0;
  do {
    if (flows && y + height > bottom() + 0.01 && !at_top()) next_page();
    PangoRectangle box;
    pango_layout_iter_get_line_extents(lines, nullptr, &box);
    const double baseline = (flows ? y : top + used) + std::min(lead, height);
    if (draws_) {
      cairo_move_to(context_, x + points(box.x), baseline);
      pango_cairo_show_layout_line(context_, pango_layout_iter_get_line_readonly(lines));
    }
    used += height;
    if (flows) y += height;
  } while (pango_layout_iter_next_line(lines));
  pango_layout_iter_free(lines);
  g_object_unref(layout);
  return used;
}

double Pen::height(const Runs& runs, const TextLook& look, double width) {
  set_layout(runs, look, width);
  return pango_layout_get_line_count(layout_) * line_height_;
}

void Pen::text(const Runs& runs, const TextLook& look, double x, double top, double width) {
  if (!draws_) return;
  set_layout(runs, look, width);
  show_lines(x, top, false);
}

void Pen::flow(const Runs& runs, const TextLook& look, double x, double width) {
  ink(Ink::Text);
  set_layout(runs, look, width);
  show_lines(x, 0, true);
}

void Pen::plain(std::string_view text, double size, double x, double baseline) {
  if (!draws_ || text.empty()) return;
  if (!in_font(text)) {
    set_layout({{.text = std::string(text)}}, {.size = size}, paper_width());
    cairo_move_to(context_, x, baseline);
    pango_cairo_show_layout_line(context_, pango_layout_get_line_readonly(layout_, 0));
    return;
  }
  cairo_set_font_face(context_, cairo_scaled_font_get_font_face(digits_));
  cairo_set_font_size(context_, size);
  cairo_move_to(context_, x, baseline);
  cairo_show_text(context_, std::string(text).c_str());
}

bool Pen::is_ascii(std::string_view text) {
  return std::ranges::all_of(text, [](char c) { return (c >= ' ' && c < '\x7F') || c == '\n'; });
}

bool Pen::is_plain(std::string_view text, double size, double width) {
  const bool one_line = text.find('\n') == std::string_view::npos;
  return one_line && is_ascii(text) && chart::text_width(text, {.size = size}) <= width;
}

// Lines and pictures.

void Pen::ink(Ink ink) {
  if (!draws_) return;
  const auto [red, green, blue] = kInks[static_cast<size_t>(ink)];
  cairo_set_source_rgb(context_, red, green, blue);
}

void Pen::rule(double x, double y_at, double length, double thickness, Ink colour) {
  bar(x, y_at - thickness / 2, thickness, length, colour);
}

void Pen::bar(double x, double y_at, double height, double thickness, Ink colour) {
  if (!draws_) return;
  ink(colour);
  cairo_rectangle(context_, x, y_at, thickness, height);
  cairo_fill(context_);
  ink(Ink::Text);
}

void Pen::picture(std::string_view svg, double x, double y_at, double width, double height) {
  if (!draws_) return;
  cairo_save(context_);
  cairo_translate(context_, x, y_at);
  draw_svg(svg, context_, width, height);
  cairo_restore(context_);
}

// Links.

void Pen::destination(const std::string& name) {
  if (!draws_) return;
  cairo_tag_begin(context_, CAIRO_TAG_DEST,
                  ("name='" + name + "' x=0 y=" + std::to_string(std::lround(y))).c_str());
  cairo_tag_end(context_, CAIRO_TAG_DEST);
}

void Pen::link(const std::string& name, const std::function<void()>& draw) {
  if (!draws_) return draw();
  cairo_tag_begin(context_, CAIRO_TAG_LINK, ("dest='" + name + "'").c_str());
  draw();
  cairo_tag_end(context_, CAIRO_TAG_LINK);
}

int Pen::outline(int parent, const std::string& title, const std::string& name) {
  if (!draws_) return 0;
  return cairo_pdf_surface_add_outline(surface_, parent, title.c_str(),
                                       ("dest='" + name + "'").c_str(),
                                       CAIRO_PDF_OUTLINE_FLAG_OPEN);
}

}  // namespace hierfit::report::pdf
