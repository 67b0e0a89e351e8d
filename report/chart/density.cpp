#include "report/chart/density.h"

#include <algorithm>
#include <cmath>
#include <zlib.h>

namespace hierfit::report::chart {
namespace {

constexpr double kFaintest = 0.3;  ///< the share of white of a cell that holds one point

void append_big_endian(std::string& out, size_t value) {
  for (int bits = 24; bits >= 0; bits -= 8)
    out += static_cast<char>((value >> bits) & 0xFF);
}

void append_chunk(std::string& out, std::string_view type, std::string_view content) {
  append_big_endian(out, content.size());
  const size_t begin = out.size();
  out.append(type).append(content);
  const auto* bytes = reinterpret_cast<const Bytef*>(out.data() + begin);
  append_big_endian(out, crc32(0, bytes, static_cast<uInt>(out.size() - begin)));
}

std::string deflated(const std::string& content) {
  uLongf size = compressBound(static_cast<uLong>(content.size()));
  std::string packed(size, '\0');
  const int status = compress2(reinterpret_cast<Bytef*>(packed.data()), &size,
                               reinterpret_cast<const Bytef*>(content.data()),
                               static_cast<uLong>(content.size()), Z_BEST_COMPRESSION);
  packed.resize(status == Z_OK ? size : 0);
  return packed;
}

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

std::string DensityRaster::png() const {
  const double most = std::log1p(*std::ranges::max_element(cells_));
  std::vector<unsigned char> pixels(cells_.size());
  for (size_t i = 0; i < cells_.size(); ++i) {
    if (!(cells_[i] > 0) || !(most > 0)) continue;
    const double share = std::min(std::log1p(cells_[i]) / most, 1.0);
    pixels[i] = static_cast<unsigned char>(255 * (kFaintest + (1 - kFaintest) * share));
  }
  return grey_png(columns_, rows_, pixels);
}

std::string grey_png(size_t width, size_t height, const std::vector<unsigned char>& pixels) {
  std::string header;
  append_big_endian(header, width);
  append_big_endian(header, height);
  header.append("\x08\x00\x00\x00\x00", 5);  // eight bits of grey, no interlace
  std::string rows;
  rows.reserve((width + 1) * height);
  for (size_t row = 0; row < height; ++row) {
    rows += '\0';  // not filtered
    rows.append(reinterpret_cast<const char*>(pixels.data()) + row * width, width);
  }
  std::string png = "\x89PNG\r\n\x1A\n";
  append_chunk(png, "IHDR", header);
  append_chunk(png, "IDAT", deflated(rows));
  append_chunk(png, "IEND", "");
  return png;
}

}  // namespace hierfit::report::chart
