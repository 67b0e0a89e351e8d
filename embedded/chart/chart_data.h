// The data of a chart under construction, and their form as bytes.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/chart_data.h"

#include "embedded/journal/journal.h"
#include "output/chart.h"

namespace hierfit::chart {

/// Rows of one source, at most. Values of rows beyond it, or of negative rows, are dropped.
inline constexpr int32_t kMaxRows = 1 << 26;

/// What a text is cut to, in bytes, where the budget of the charts' texts is spent.
inline constexpr size_t kShortText = 240;

/// The sources as bytes, for `read_data_stream`; all numbers have their low byte first. A text is
/// its length in bytes (u32) and its bytes.
///
///   "HFCD", version (u32: 1), number of sources (u32), then for each source
///     name (text), rows (u32), number of variables (u32), then for each variable
///       name (text), rows (u32), then for each row
///         0 (u8): unset | 1 (u8), number (double) | 2 (u8), text
std::string write_data_stream(const std::vector<output::ChartSource>& sources);

/// The sources of a stream: names, rows and values. Empty for bytes that are no such stream.
std::vector<output::ChartSource> read_data_stream(std::string_view bytes);

}  // namespace hierfit::chart

/// The sources with their variables, found by name through hashes.
struct VarDataProcessor::Impl : hierfit::journal::Receiver {
  using Index = std::unordered_map<std::string, int32_t>;
  using Receiver::Receiver;

  /// The column of a handle, or of names; null when there is none.
  hierfit::output::ChartColumn* column(const _varinfo& handle);
  hierfit::output::ChartColumn* column(const std::string& source, const std::string& variable);
  _varinfo find(const std::string& source, const std::string& variable) const;
  _varinfo add(const std::string& source, const std::string& variable);
  /// Sets the text of a row; null is no column.
  void set_text(hierfit::output::ChartColumn* column, int32_t row, const std::string& text);
  /// Hands the data over; the processor holds no source then.
  std::vector<hierfit::output::ChartSource> take_sources();

  std::vector<hierfit::output::ChartSource> sources;
  Index source_index;
  std::vector<Index> variable_index;  ///< by source
  bool is_cut = false;                ///< a text was
};
