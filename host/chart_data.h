// The chart data library: named sources of named variables with values by row.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

/// A caller's local record of one variable, filled by `AddVariable`.
struct _varinfo {  // NOLINT(bugprone-reserved-identifier): the name that callers know
  int32_t source = -1;
  int32_t variable = -1;
};

/// The data stream of one chart. Rows count from 0. One variable may hold numbers in some rows and
/// strings in others, and rows may stay unset.
class VarDataProcessor {
 public:
  VarDataProcessor();
  ~VarDataProcessor();
  VarDataProcessor(const VarDataProcessor&) = delete;
  VarDataProcessor& operator=(const VarDataProcessor&) = delete;

  /// A new source; with a row count of 0 the rows grow as they are set.
  void AddDataSource(const std::string& source, int32_t rowCount);
  /// A new variable of a source. `handle`, when given, is the record for the calls below.
  void AddVariable(const std::string& source, const std::string& variable, _varinfo* handle);

  void SetVariableValue(const _varinfo* handle, int32_t row, double value);
  void SetVariableValue(const std::string& source,
                        const std::string& variable,
                        int32_t row,
                        double value);
  /// Texts are UTF-8.
  void SetStringVariableValue(const _varinfo* handle, int32_t row, const std::string& value);
  void SetStringVariableValue(const std::string& source,
                              const std::string& variable,
                              int32_t row,
                              const std::string& value);

  /// The data as bytes, for the headless editor. The caller owns the buffer and frees it with
  /// `delete[]`; `length` is its size in bytes.
  char* GetDataStream(int32_t& length);

  struct Impl;
  /// For the host: the data.
  const Impl& impl() const { return *impl_; }
  Impl& impl() { return *impl_; }

 private:
  std::unique_ptr<Impl> impl_;
};
