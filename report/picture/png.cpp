#include "report/picture/png.h"

#include <cmath>
#include <zlib.h>

namespace hierfit::report {
namespace {

constexpr double kInchesPerMetre = 1 / 0.0254;
/// The signature and the header chunk, which comes first: the chunks that follow stand behind.
constexpr size_t kHeaderEnd = 8 + 4 + 4 + 13 + 4;

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

void set_resolution(std::string& png, double points_per_inch) {
  if (png.size() < kHeaderEnd) return;
  const auto points = static_cast<size_t>(std::lround(points_per_inch * kInchesPerMetre));
  std::string content;
  append_big_endian(content, points);
  append_big_endian(content, points);
  content += '\x01';  // per metre
  std::string chunk;
  append_chunk(chunk, "pHYs", content);
  png.insert(kHeaderEnd, chunk);
}

}  // namespace hierfit::report
