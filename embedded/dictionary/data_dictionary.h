// The data dictionary of a session: its variables, as the data source and as the metadata that a
// procedure sees.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/framework.h"

#include "embedded/dictionary/variable.h"

namespace hierfit {

/// Variables in the order of their indices. A variable never moves once it is added.
class DataDictionary final : public ProcedureDataSource, public CFMetaData {
 public:
  int32_t FindVarIndex(const std::string& name, int32_t flags) const override;
  VELT_Variable* GetVariable(int32_t index) const override;

  int32_t FieldCount() const override { return static_cast<int32_t>(variables_.size()); }
  const CFField* GetField(int32_t index) const override { return at(index); }
  int32_t GetFieldIndex(const std::string& name) const override { return FindVarIndex(name, 0); }

  /// A new variable behind the others. The first variable of a name is the one found by it.
  Variable& add(std::string name);
  /// The variable of this name, or null.
  Variable* find(std::string_view name) const;
  /// The variable at an index, or null outside the dictionary.
  Variable* at(int32_t index) const;

 private:
  struct NameHash {
    using is_transparent = void;
    size_t operator()(std::string_view name) const { return std::hash<std::string_view>{}(name); }
  };

  std::vector<std::unique_ptr<Variable>> variables_;
  std::unordered_map<std::string, int32_t, NameHash, std::equal_to<>> index_;
};

}  // namespace hierfit
