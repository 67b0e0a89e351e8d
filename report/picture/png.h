// Pictures as PNG files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace hierfit::report {

/// A grid of points, row by row.
struct Points {
  enum class Kind : uint8_t {
    Grey,  ///< a byte a point
    Bgrx,  ///< blue, green, red and a byte that says nothing
  };

  Kind kind = Kind::Grey;
  size_t width = 0;
  size_t height = 0;
  size_t stride = 0;  ///< bytes from one row to the next
  const unsigned char* bytes = nullptr;
};

/// The points as a file; one of greys alone where they have no colour. With `points_per_inch` it
/// says how many lie on an inch, so that programs show it in its true size. Throws
/// `std::runtime_error` when the library fails.
std::string png_of(const Points& points, double points_per_inch = 0);

/// What a PNG says of that; 0 when it says nothing.
double resolution_of(std::string_view png);

}  // namespace hierfit::report
