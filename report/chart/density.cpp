#include "report/chart/density.h"

#include <algorithm>
#include <cmath>

#include "report/picture/png.h"

namespace hierfit::report::chart {
namespace {

constexpr double kFaintest = 0.3;  ///< the strength of a cell that holds next to nothing

}  // namespace

DensityRaster::DensityRaster(double width, double height)
    : columns_(static_cast<size_t>(std::ceil(std::clamp(width, 2.0, 4000.0) / kCell))),
      rows_(static_cast<size_t>(std::ceil(std::clamp(height, 2.0, 4000.0) / kCell))),
      cells_(columns_ * rows_) {}

void DensityRaster::add(double x, double y, double weight) {
  const double column = std::clamp(x / kCell, 0.0, static_cast<double>(columns_ - 1));
  const double row = std::clamp(y / kCell, 0.0, static_cast<double>(rows_ - 1));
  cells_[static_cast<size_t>(row) * columns_ + static_cast<size_t>(column)] +=
      std::max(weight, 0.0);
}

double DensityRaster::most() const { return *std::ranges::max_element(cells_); }

double DensityRaster::strength_of(double weight, double densest) {
  if (!(weight > 0) || !(densest > 0)) return 0;
  return kFaintest + (1 - kFaintest) * std::min(std::log1p(weight) / std::log1p(densest), 1.0);
}

std::string DensityRaster::png(double densest) const {
  std::vector<unsigned char> pixels(cells_.size());
  for (size_t i = 0; i < cells_.size(); ++i)
    pixels[i] = static_cast<unsigned char>(255 * strength_of(cells_[i], densest));
  return png_of({.width = columns_, .height = rows_, .stride = columns_, .bytes = pixels.data()});
}

}  // namespace hierfit::report::chart
