// Documents for tests of the host's input side.
#pragma once

#include <string>

#include "embedded/session.h"

namespace hierfit::test {

/// A model document with these `DataField` elements and these `MiningField` elements.
inline std::string pmml(const std::string& data_fields, const std::string& mining_fields) {
  return "<PMML><DataDictionary>" + data_fields + "</DataDictionary><GeneralRegressionModel>" +
         "<MiningSchema>" + mining_fields + "</MiningSchema></GeneralRegressionModel></PMML>";
}

inline const std::string kPlainModel = pmml(
    R"(<DataField name="y" optype="continuous" dataType="double"/>
       <DataField name="g" optype="categorical" dataType="string"/>)",
    R"(<MiningField name="y"/><MiningField name="g"/>)");

/// The input of a session, for tests that are not about its model document.
inline SessionInput session_input(std::string statxml = "<StatXML/>",
                                  std::string model = kPlainModel) {
  return {.pmml_name = "model.pmml",
          .pmml = std::move(model),
          .statxml_name = "result.xml",
          .statxml = std::move(statxml),
          .dictionary_name = "fields.json",
          .dictionary = {}};
}

/// The options of a session in the language whose texts are the keys.
inline SessionOptions plain_options() {
  return {.language = "C", .resource_directory = {}, .journal = nullptr};
}

}  // namespace hierfit::test
