// Chart data as bytes, both ways.
#include <algorithm>
#include <bit>
#include <optional>

#include "embedded/chart/chart_data.h"

namespace hierfit::chart {

using output::ChartColumn;
using output::ChartSource;
using output::ChartVariable;

namespace {

constexpr std::string_view kMagic = "HFCD";
constexpr uint32_t kVersion = 1;

template <class Integer>
void put(std::string& out, Integer value) {
  for (size_t i = 0; i < sizeof(Integer); ++i) {
    out += static_cast<char>((value >> (8 * i)) & 0xFF);
  }
}

void put_count(std::string& out, size_t count) { put(out, static_cast<uint32_t>(count)); }

void put_text(std::string& out, std::string_view text) {
  put_count(out, text.size());
  out += text;
}

void put_row(std::string& out, const ChartColumn& column, size_t row) {
  const ChartColumn::Kind kind = column.kind(row);
  out += static_cast<char>(kind);
  if (kind == ChartColumn::Kind::Number) put(out, std::bit_cast<uint64_t>(column.number(row)));
  if (kind == ChartColumn::Kind::Text) put_text(out, column.text(row));
}

/// Takes values off the front of a stream. Once one was not there, nothing more is.
class Reader {
 public:
  explicit Reader(std::string_view bytes) : rest_(bytes) {}

  bool good() const { return good_; }
  bool at_end() const { return rest_.empty(); }
  size_t left() const { return rest_.size(); }

  std::string_view bytes(size_t count) {
    if (count > rest_.size()) good_ = false;
    if (!good_) return {};
    const std::string_view taken = rest_.substr(0, count);
    rest_.remove_prefix(count);
    return taken;
  }

  template <class Integer>
  Integer integer() {
    Integer value = 0;
    int shift = 0;
    for (const char byte : bytes(sizeof(Integer))) {
      value |=
          static_cast<Integer>(static_cast<Integer>(static_cast<unsigned char>(byte)) << shift);
      shift += 8;
    }
    return value;
  }

  uint32_t count() { return integer<uint32_t>(); }
  std::string_view text() { return bytes(count()); }
  double number() { return std::bit_cast<double>(integer<uint64_t>()); }
  void fail() { good_ = false; }

 private:
  std::string_view rest_;
  bool good_ = true;
};

void read_row(Reader& reader, ChartColumn& column, size_t row) {
  switch (static_cast<ChartColumn::Kind>(reader.integer<uint8_t>())) {
    case ChartColumn::Kind::Unset:
      return;
    case ChartColumn::Kind::Number:
      return column.set(row, reader.number());
    case ChartColumn::Kind::Text:
      return column.set(row, reader.text());
  }
  reader.fail();
}

ChartVariable read_variable(Reader& reader) {
  ChartVariable variable;
  variable.name = reader.text();
  variable.role = variable.name;
  const uint32_t rows = reader.count();
  for (uint32_t row = 0; row < rows && reader.good(); ++row) {
    read_row(reader, variable.values, row);
  }
  return variable;
}

ChartSource read_source(Reader& reader) {
  ChartSource source;
  source.name = reader.text();
  source.rows = std::min<size_t>(reader.count(), kMaxRows);
  const uint32_t variables = reader.count();
  for (uint32_t i = 0; i < variables && reader.good(); ++i) {
    source.variables.push_back(read_variable(reader));
  }
  return source;
}

}  // namespace

std::string write_data_stream(const std::vector<ChartSource>& sources) {
  std::string out(kMagic);
  put(out, kVersion);
  put_count(out, sources.size());
  for (const ChartSource& source : sources) {
    put_text(out, source.name);
    put_count(out, source.rows);
    put_count(out, source.variables.size());
    for (const ChartVariable& variable : source.variables) {
      put_text(out, variable.name);
      put_count(out, variable.values.rows());
      for (size_t row = 0; row < variable.values.rows(); ++row) {
        put_row(out, variable.values, row);
      }
    }
  }
  return out;
}

std::vector<ChartSource> read_data_stream(std::string_view bytes) {
  Reader reader(bytes);
  if (reader.bytes(kMagic.size()) != kMagic || reader.count() != kVersion) return {};
  std::vector<ChartSource> sources;
  const uint32_t count = reader.count();
  for (uint32_t i = 0; i < count && reader.good(); ++i) {
    sources.push_back(read_source(reader));
  }
  if (!reader.good() || !reader.at_end()) sources.clear();
  return sources;
}

}  // namespace hierfit::chart
