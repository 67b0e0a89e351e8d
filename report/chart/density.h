// Many points as a picture: the more of them in a place, the stronger its colour.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace hierfit::report::chart {

/// Counts points in cells of two pixels.
class DensityRaster {
 public:
  /// Room for `width` by `height` pixels.
  DensityRaster(double width, double height);

  void add(double x, double y, double weight);
  double width() const { return static_cast<double>(columns_) * kCell; }
  double height() const { return static_cast<double>(rows_) * kCell; }

  /// A grey picture: black where nothing lies, white where most does, in between by the logarithm.
  std::string png() const;

 private:
  static constexpr double kCell = 2;

  size_t columns_;
  size_t rows_;
  std::vector<double> cells_;
};

}  // namespace hierfit::report::chart
