// Pictures and pages made from SVG by librsvg and cairo.
#pragma once

#include <string>
#include <string_view>

struct _cairo;

namespace hierfit::report {

/// An SVG as a PNG with `scale` picture points for each of its pixels (1 is 96 an inch), fewer
/// where the picture would have more than 64 million points; the PNG says how many. Throws
/// `std::runtime_error` when it is no SVG.
std::string png_of_svg(std::string_view svg, double scale);

/// A size in pixels of 1/96 inch.
struct PictureSize {
  double width = 0;
  double height = 0;
};

/// How large an SVG is. Throws as `png_of_svg`.
PictureSize size_of_svg(std::string_view svg);

/// Draws an SVG with its corner at the origin of `context`, in this size. Throws as `png_of_svg`.
void draw_svg(std::string_view svg, _cairo* context, double width, double height);

/// An SVG as a PDF of one page of its size, with text as text and lines as lines. Throws as
/// `png_of_svg`.
std::string pdf_of_svg(std::string_view svg);

}  // namespace hierfit::report
