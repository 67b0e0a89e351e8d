// What a program needs of this host beside the interfaces in host/.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/framework.h"
#include "host/pivot.h"

namespace tiny {

/// A variable of the model document, and its metadata.
class Variable final : public VELT_Variable, public CFField {
 public:
  std::string name;
  std::string label;  ///< empty: none
  VELT_Format format;
  int32_t level = 0;

  const std::string& GetName() const override { return name; }
  const char* GetLabel() const override { return label.empty() ? nullptr : label.c_str(); }
  VELT_Format GetFormat() const override { return format; }
  int32_t GetMeasurementLevel() const override { return level; }
  const VELT_ValueLabels* GetValueLabels() const override;
  int32_t GetType() const override { return level; }
};

/// The variables of a model document: dictionary and metadata in one.
class Dictionary final : public ProcedureDataSource, public CFMetaData {
 public:
  /// Takes every `DataField`; a text that is not well-formed gives none.
  explicit Dictionary(const std::string& pmml);

  int32_t FindVarIndex(const std::string& name, int32_t flags) const override;
  VELT_Variable* GetVariable(int32_t index) const override;
  int32_t FieldCount() const override { return static_cast<int32_t>(variables_.size()); }
  const CFField* GetField(int32_t index) const override;
  int32_t GetFieldIndex(const std::string& name) const override { return FindVarIndex(name, 0); }

 private:
  Variable* at(int32_t index) const;

  std::vector<std::unique_ptr<Variable>> variables_;
  std::unordered_map<std::string, int32_t> index_;
};

/// The topmost heading of the output.
BpProcedure make_procedure();

/// Counts a call of an operation.
void count(const std::string& operation);
/// Counts a call and prints it with the first line of the text that it was about.
void print(const std::string& operation, const std::string& text = {});
/// How often each operation was called.
const std::map<std::string, int>& counts();

}  // namespace tiny
