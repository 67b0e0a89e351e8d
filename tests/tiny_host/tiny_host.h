// What a program needs of this host beside the interfaces in host/.
#pragma once

#include <deque>
#include <map>
#include <string>

#include "host/framework.h"
#include "host/pivot.h"
#include "host/pmml.h"

struct VELT_ValueLabels {
  std::map<std::string, std::string> by_value;
};

namespace tiny {

/// A field of the model document: a variable of the dictionary, its metadata, and a variable of the
/// model.
class Field final : public VELT_Variable, public CFField, public IMCVariable {
 public:
  explicit Field(SDOMXMLWrapper& element);

  const std::string& GetName() const override { return name_; }
  const char* GetLabel() const override;
  VELT_Format GetFormat() const override;
  int32_t GetMeasurementLevel() const override;
  const VELT_ValueLabels* GetValueLabels() const override;
  int32_t GetType() const override { return GetMeasurementLevel(); }
  int32_t MeasureCode() const override;
  void FieldName(std::string& name) const override;
  int32_t LevelCount() const override;

 private:
  std::string name_;
  std::string label_;
  VELT_ValueLabels labels_;
  VELT_Format format_;
  int32_t level_ = 0;
  int32_t level_count_ = 0;
};

/// The `DataField` elements of a model document; a text that is not well-formed has none.
std::deque<Field> fields_of(const std::string& pmml);

/// Dictionary and metadata in one.
class Dictionary final : public ProcedureDataSource, public CFMetaData {
 public:
  explicit Dictionary(const std::string& pmml) : fields_(fields_of(pmml)) {}

  int32_t FindVarIndex(const std::string& name, int32_t flags) const override;
  VELT_Variable* GetVariable(int32_t index) const override { return at(index); }
  int32_t FieldCount() const override;
  const CFField* GetField(int32_t index) const override { return at(index); }
  int32_t GetFieldIndex(const std::string& name) const override { return FindVarIndex(name, 0); }

 private:
  Field* at(int32_t index) const;

  mutable std::deque<Field> fields_;
};

/// The topmost heading of the output.
BpProcedure make_procedure();

/// Whether pivot calls are printed.
extern bool prints;
/// Counts a call of an operation.
void count(const char* operation);
/// How often each operation was called.
std::map<std::string, int>& counts();

}  // namespace tiny
