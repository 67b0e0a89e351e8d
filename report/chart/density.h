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

  /// The largest sum of weights in a cell.
  double most() const;

  /// A grey picture: black where nothing lies, in between by `strength_of`.
  std::string png(double densest) const;

  /// How strong a cell is painted: from nothing, 0, by the logarithm to 1 for the densest cell.
  static double strength_of(double weight, double densest);

 private:
  static constexpr double kCell = 2;

  size_t columns_;
  size_t rows_;
  std::vector<double> cells_;
};

}  // namespace hierfit::report::chart
