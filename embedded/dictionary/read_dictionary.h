// Fills a data dictionary: from the model document, then from a Table Schema laid over it.
#pragma once

#include <string>
#include <string_view>

#include "embedded/dictionary/data_dictionary.h"
#include "embedded/pmml/model_document.h"

namespace hierfit {

/// Adds a variable for each field of the model document, in its order.
void add_model_fields(DataDictionary& dictionary, const ModelDocument& document);

/// Lays a Table Schema, or the schema of a Data Package's first resource that has one, over the
/// dictionary. A field changes what it states of the variable of its name, or is a further
/// variable. Throws `FileError` with the place of a syntax error, or with the path of the value
/// that is wrong ("fields[2].type").
void overlay_table_schema(DataDictionary& dictionary,
                          std::string_view text,
                          const std::string& file);

}  // namespace hierfit
