// The data dictionary library: variables, their print formats, values and value labels.
#pragma once

#include <cstdint>
#include <string>

/// Print format of a variable, four bytes.
struct VELT_Format {
  uint16_t width = 0;    ///< characters
  uint8_t type = 0;      ///< 1 marks a string variable, 5 a plain decimal number
  uint8_t decimals = 0;  ///< digits behind the decimal mark

  bool operator==(const VELT_Format&) const = default;
};
static_assert(sizeof(VELT_Format) == 4);

/// Type code of `VELT_Format::type` that marks a string variable.
inline constexpr uint8_t kStringFormatType = 1;

/// The value of one cell of the data. A numeric value has its number in the first eight bytes; a
/// string value has its text behind them and the system-missing number in front, so that a reader
/// who takes a string for a number reads a missing one.
struct OBS {
  double number = -1.7976931348623157e+308;  ///< system-missing unless the value is numeric
  bool isString = false;
  std::string text;  ///< UTF-8, of a string value only
};

/// The value labels of one variable as its dictionary keeps them; each host defines its own.
struct VELT_ValueLabels;

/// A variable of the data dictionary. The dictionary owns it; it outlives the run.
class VELT_Variable {
 public:
  virtual const std::string& GetName() const = 0;
  /// The label, or null when the variable has none. Valid as long as the variable.
  virtual const char* GetLabel() const = 0;
  virtual VELT_Format GetFormat() const = 0;
  /// Measurement level: 1 categorical (nominal), 2 ordinal, 3 continuous (scale), 0 unknown.
  virtual int32_t GetMeasurementLevel() const = 0;
  /// The value labels, never null; empty when the variable has none.
  virtual const VELT_ValueLabels* GetValueLabels() const = 0;

 protected:
  ~VELT_Variable() = default;
};

/// Look-up in the value labels of one variable. Refers to them, copies nothing.
class VELT_ValueLabelMap {
 public:
  explicit VELT_ValueLabelMap(const VELT_ValueLabels* labels) : labels_(labels) {}

  /// The value's label, or null when it has none. Valid as long as the variable. A null value, or a
  /// value of the other kind (string under a numeric variable), has no label.
  const char* GetLabel(double value) const;
  const char* GetLabel(const std::string& value) const;
  const char* GetLabel(const OBS* value) const;

 private:
  const VELT_ValueLabels* labels_;
};

/// The variables of a data set. The host owns it; it outlives the run.
class VELT_DataSource {
 public:
  /// Index of the variable of exactly this name, from 0; negative when there is none. The index is
  /// that of the metadata field of the same name, too. The second argument is always 0.
  virtual int32_t FindVarIndex(const std::string& name, int32_t flags) const = 0;
  /// The variable at an index, or null when the index is outside the dictionary.
  virtual VELT_Variable* GetVariable(int32_t index) const = 0;

 protected:
  ~VELT_DataSource() = default;
};

/// The data source of a running procedure.
class ProcedureDataSource : public VELT_DataSource {
 protected:
  ~ProcedureDataSource() = default;
};

/// The value as text: a number in fixed notation with the decimals of the format and no blanks
/// around it, the system-missing number as ".", a string without its trailing blanks. A null value
/// gives the empty text.
std::string ToString(const OBS* value, VELT_Format format);
