#include "report/picture/picture.h"

#include <algorithm>
#include <cairo-pdf.h>
#include <cairo.h>
#include <cmath>
#include <librsvg/rsvg.h>
#include <memory>
#include <stdexcept>

#include "report/picture/png.h"

namespace hierfit::report {
namespace {

/// The pixels of a CSS inch, and the points of one.
constexpr double kPixelsPerInch = 96;
constexpr double kPointsPerInch = 72;

/// What a grid of points may measure: the library's longest side, and a quarter of a gigabyte.
constexpr double kLongestSide = 32000;
constexpr double kMostPoints = 64e6;

/// The same document gives the same file at any time.
constexpr const char* kCreated = "1970-01-01T00:00:00Z";

struct Release {
  void operator()(RsvgHandle* handle) const { g_object_unref(handle); }
  void operator()(GError* error) const { g_error_free(error); }
  void operator()(cairo_t* context) const { cairo_destroy(context); }
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};

template <typename Type>
using Owned = std::unique_ptr<Type, Release>;

[[noreturn]] void fail(GError* error) {
  const Owned<GError> owned(error);
  throw std::runtime_error(std::string("a chart cannot be drawn: ") +
                           (error == nullptr ? "unknown reason" : error->message));
}

void require(cairo_status_t status) {
  if (status == CAIRO_STATUS_SUCCESS) return;
  throw std::runtime_error(std::string("a chart cannot be drawn: ") +
                           cairo_status_to_string(status));
}

/// A loaded SVG and its size in pixels.
struct Picture {
  Owned<RsvgHandle> handle;
  double width = 0;
  double height = 0;
};

Picture load(std::string_view svg) {
  GError* error = nullptr;
  Picture picture;
  picture.handle.reset(
      rsvg_handle_new_from_data(reinterpret_cast<const guint8*>(svg.data()), svg.size(), &error));
  if (picture.handle == nullptr) fail(error);
  rsvg_handle_set_dpi(picture.handle.get(), kPixelsPerInch);
  if (!rsvg_handle_get_intrinsic_size_in_pixels(picture.handle.get(), &picture.width,
                                                &picture.height)) {
    throw std::runtime_error("a chart cannot be drawn: it has no size");
  }
  return picture;
}

void draw(const Picture& picture, cairo_t* context, double width, double height) {
  GError* error = nullptr;
  const RsvgRectangle place = {0, 0, width, height};
  if (!rsvg_handle_render_document(picture.handle.get(), context, &place, &error)) fail(error);
  require(cairo_status(context));
}

/// The scale, less where the grid would be too large.
double fitting_scale(const Picture& picture, double scale) {
  const double longest = std::max(picture.width, picture.height);
  const double area = picture.width * picture.height;
  return std::min({scale, kLongestSide / longest, std::sqrt(kMostPoints / area)});
}

cairo_status_t append(void* text, const unsigned char* data, unsigned int length) {
  static_cast<std::string*>(text)->append(reinterpret_cast<const char*>(data), length);
  return CAIRO_STATUS_SUCCESS;
}

}  // namespace

std::string png_of_svg(std::string_view svg, double scale) {
  const Picture picture = load(svg);
  scale = fitting_scale(picture, scale);
  const double width = std::ceil(picture.width * scale);
  const double height = std::ceil(picture.height * scale);
  const Owned<cairo_surface_t> surface(cairo_image_surface_create(
      CAIRO_FORMAT_RGB24, static_cast<int>(width), static_cast<int>(height)));
  require(cairo_surface_status(surface.get()));
  const Owned<cairo_t> context(cairo_create(surface.get()));
  cairo_set_source_rgb(context.get(), 1, 1, 1);
  cairo_paint(context.get());
  draw(picture, context.get(), width, height);
  cairo_surface_flush(surface.get());
  return png_of({.kind = Points::Kind::Bgrx,
                 .width = static_cast<size_t>(width),
                 .height = static_cast<size_t>(height),
                 .stride = static_cast<size_t>(cairo_image_surface_get_stride(surface.get())),
                 .bytes = cairo_image_surface_get_data(surface.get())},
                scale * kPixelsPerInch);
}

PictureSize size_of_svg(std::string_view svg) {
  const Picture picture = load(svg);
  return {picture.width, picture.height};
}

void draw_svg(std::string_view svg, cairo_t* context, double width, double height) {
  draw(load(svg), context, width, height);
}

std::string pdf_of_svg(std::string_view svg) {
  const Picture picture = load(svg);
  const double width = picture.width * kPointsPerInch / kPixelsPerInch;
  const double height = picture.height * kPointsPerInch / kPixelsPerInch;
  std::string pdf;
  {
    const Owned<cairo_surface_t> surface(
        cairo_pdf_surface_create_for_stream(&append, &pdf, width, height));
    cairo_pdf_surface_set_metadata(surface.get(), CAIRO_PDF_METADATA_CREATE_DATE, kCreated);
    const Owned<cairo_t> context(cairo_create(surface.get()));
    draw(picture, context.get(), width, height);
    cairo_surface_finish(surface.get());
    require(cairo_surface_status(surface.get()));
  }
  return pdf;
}

}  // namespace hierfit::report
