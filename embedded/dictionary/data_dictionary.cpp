#include "embedded/dictionary/data_dictionary.h"

namespace hierfit {

int32_t DataDictionary::FindVarIndex(const std::string& name, int32_t) const {
  const auto found = index_.find(name);
  return found == index_.end() ? -1 : found->second;
}

VELT_Variable* DataDictionary::GetVariable(int32_t index) const { return at(index); }

Variable& DataDictionary::add(std::string name) {
  index_.try_emplace(name, FieldCount());
  return *variables_.emplace_back(std::make_unique<Variable>(std::move(name)));
}

Variable* DataDictionary::find(std::string_view name) const {
  const auto found = index_.find(name);
  return found == index_.end() ? nullptr : at(found->second);
}

Variable* DataDictionary::at(int32_t index) const {
  if (index < 0 || index >= FieldCount()) return nullptr;
  return variables_[static_cast<size_t>(index)].get();
}

}  // namespace hierfit
