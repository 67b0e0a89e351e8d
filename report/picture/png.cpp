#include "report/picture/png.h"

#include <algorithm>
#include <cmath>
#include <csetjmp>
#include <png.h>
#include <stdexcept>
#include <vector>

namespace hierfit::report {
namespace {

constexpr double kInchesPerMetre = 1 / 0.0254;
constexpr int kBestLevel = 9;            ///< of packing
constexpr size_t kPieceBytes = 1 << 20;  ///< of the packed points

void append(png_structp png, png_bytep data, size_t length) {
  static_cast<std::string*>(png_get_io_ptr(png))
      ->append(reinterpret_cast<const char*>(data), length);
}

void flush(png_structp /*png*/) {}

bool is_grey(const Points& points) {
  for (size_t row = 0; row < points.height; ++row) {
    const unsigned char* point = points.bytes + row * points.stride;
    for (size_t column = 0; column < points.width; ++column, point += 4) {
      if (point[0] != point[1] || point[1] != point[2]) return false;
    }
  }
  return true;
}

/// One byte of each point.
std::vector<unsigned char> greys_of(const Points& points) {
  std::vector<unsigned char> greys;
  greys.reserve(points.width * points.height);
  for (size_t row = 0; row < points.height; ++row) {
    const unsigned char* point = points.bytes + row * points.stride;
    for (size_t column = 0; column < points.width; ++column, point += 4)
      greys.push_back(*point);
  }
  return greys;
}

void set_up(png_structp png, png_infop info, const Points& points, double points_per_inch) {
  const bool grey = points.kind == Points::Kind::Grey;
  png_set_IHDR(png, info, static_cast<png_uint_32>(points.width),
               static_cast<png_uint_32>(points.height), 8,
               grey ? PNG_COLOR_TYPE_GRAY : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_set_compression_buffer_size(png, kPieceBytes);
  if (grey) {
    // Counts pack best as they are.
    png_set_compression_level(png, kBestLevel);
    png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_NONE);
  }
  if (points_per_inch > 0) {
    const auto density = static_cast<png_uint_32>(std::lround(points_per_inch * kInchesPerMetre));
    png_set_pHYs(png, info, density, density, PNG_RESOLUTION_METER);
  }
  png_write_info(png, info);
  if (!grey) {
    png_set_bgr(png);
    png_set_filler(png, 0, PNG_FILLER_AFTER);
  }
}

/// False when the library fails, which leaves by a jump: nothing here has a destructor.
bool write(png_structp png, png_infop info, const Points& points, double points_per_inch) {
  if (setjmp(png_jmpbuf(png)) != 0) return false;
  set_up(png, info, points, points_per_inch);
  for (size_t row = 0; row < points.height; ++row)
    png_write_row(png, points.bytes + row * points.stride);
  png_write_end(png, nullptr);
  return true;
}

}  // namespace

std::string png_of(const Points& points, double points_per_inch) {
  if (points.kind == Points::Kind::Bgrx && is_grey(points)) {
    const std::vector<unsigned char> greys = greys_of(points);
    return png_of({.width = points.width,
                   .height = points.height,
                   .stride = points.width,
                   .bytes = greys.data()},
                  points_per_inch);
  }
  std::string file;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png == nullptr ? nullptr : png_create_info_struct(png);
  bool done = false;
  if (info != nullptr) {
    png_set_write_fn(png, &file, &append, &flush);
    done = write(png, info, points, points_per_inch);
  }
  png_destroy_write_struct(&png, &info);
  if (!done) throw std::runtime_error("a picture cannot be written");
  return file;
}

double resolution_of(std::string_view png) {
  constexpr size_t kHeaderEnd = 33;  // the signature and the first chunk
  constexpr size_t kBytes = 4;       // of a number, and of a type
  const std::string_view chunk = png.substr(std::min(kHeaderEnd, png.size()));
  if (chunk.size() < 3 * kBytes || chunk.substr(kBytes, kBytes) != "pHYs") return 0;
  double points = 0;
  for (const char byte : chunk.substr(2 * kBytes, kBytes))
    points = points * 256 + static_cast<unsigned char>(byte);
  return points / kInchesPerMetre;
}

}  // namespace hierfit::report
