// One variable of the dictionary with its value labels.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "host/dictionary.h"
#include "host/framework.h"

/// The value labels of one variable, found by hash. Labels are never removed one by one, so a
/// label's text stays where it is.
struct VELT_ValueLabels {
  struct TextHash {
    using is_transparent = void;
    size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
  };

  bool of_strings = false;  ///< the variable holds strings; else `by_number` has the labels
  std::unordered_map<double, std::string> by_number;
  std::unordered_map<std::string, std::string, TextHash, std::equal_to<>> by_text;
};

namespace hierfit {

/// Codes of a measurement level, as `VELT_Variable::GetMeasurementLevel` gives them.
enum class MeasurementLevel : int32_t { Unknown = 0, Categorical = 1, Ordinal = 2, Continuous = 3 };

/// The bytes of a label, at most; a longer one is cut. A label stands in each row of some tables
/// and charts, so without a bound those would outgrow every document.
inline constexpr size_t kLongestLabel = size_t{32} * 1024;

/// A variable, which is the metadata field of the same index, too.
class Variable final : public VELT_Variable, public CFField {
 public:
  explicit Variable(std::string name) : name_(std::move(name)) {}

  const std::string& GetName() const override { return name_; }
  const char* GetLabel() const override { return label_.empty() ? nullptr : label_.c_str(); }
  VELT_Format GetFormat() const override { return format_; }
  int32_t GetMeasurementLevel() const override { return static_cast<int32_t>(level_); }
  const VELT_ValueLabels* GetValueLabels() const override { return &labels_; }
  int32_t GetType() const override { return GetMeasurementLevel(); }

  bool holds_strings() const { return format_.type == kStringFormatType; }

  /// An empty label is none.
  void set_label(std::string label);
  void set_level(MeasurementLevel level) { level_ = level; }
  /// A change of the kind, string or number, carries the value labels over where their values can
  /// be read as the new kind.
  void set_format(VELT_Format format);
  /// Labels a value, given as text; the last label of a value holds. False, with nothing changed,
  /// when the variable is numeric and the text is no number.
  bool set_value_label(std::string_view value, std::string label);
  void clear_value_labels();

 private:
  std::string name_;
  std::string label_;
  VELT_Format format_;
  MeasurementLevel level_ = MeasurementLevel::Unknown;
  VELT_ValueLabels labels_;
};

}  // namespace hierfit
