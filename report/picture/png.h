// Parts of PNG files.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace hierfit::report {

/// A picture of 8-bit grey values, row by row, in PNG.
std::string grey_png(size_t width, size_t height, const std::vector<unsigned char>& pixels);

/// Says in a PNG how many of its points lie on an inch, so that programs show it in its true size.
void set_resolution(std::string& png, double points_per_inch);

}  // namespace hierfit::report
