// What a PMML document says about its fields and the variables of its first model.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "embedded/error.h"

namespace hierfit {

/// One value that the document lists for a field.
struct FieldValue {
  std::string value;
  std::string label;     ///< `displayValue`; empty: none
  bool is_valid = true;  ///< `property` absent or "valid"
};

/// A `DataField`.
struct DataField {
  std::string name;
  std::string label;         ///< `displayName`; empty: none
  std::string optype;        ///< that of its `MiningField`, where that has one
  std::string storage_type;  ///< `dataType`
  std::vector<FieldValue> values;
};

/// The document's fields, and which of them are the model's variables; and what it says of itself.
/// Texts may be empty.
struct ModelDocument {
  std::string description;  ///< of its `Header`
  std::string application;  ///< what made it: name and version of the header's `Application`
  std::string application_version;  ///< likewise
  std::string model_name;
  std::vector<DataField> fields;    ///< in the order of the `DataDictionary`
  std::vector<uint32_t> variables;  ///< of each `MiningField`, in order: index into `fields`
};

/// Reads a PMML document. Throws `DocumentError`, with `file` and the place, for a text that is not
/// well-formed, has no model or no `MiningSchema`, or has a `MiningField` that is no `DataField`.
ModelDocument read_model_document(std::string_view text, const std::string& file);

}  // namespace hierfit
