// What a report says of its result ahead of the numbers.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "embedded/about/result_facts.h"
#include "embedded/about/wording.h"
#include "embedded/pmml/model_document.h"
#include "output/document.h"

namespace hierfit::about {

/// What the model document says beside its variables. Texts may be empty.
struct ModelFacts {
  std::string title;
  std::string engine;
  std::string engine_version;
  std::string name;
  std::unordered_map<std::string, uint32_t> levels;  ///< by field: the valid values that it lists
};

ModelFacts model_facts(const ModelDocument& document);

/// The title of a report: what the model document calls the result, else the name of the model,
/// else what the procedure is called.
std::string title_of(const ModelFacts& model, const StringTable& strings);

/// The facts and messages about a result whose tables are in `document`. `files` are the names of
/// what it was read from.
output::About about(const ModelFacts& model,
                    const ResultFacts& result,
                    const std::vector<std::string>& files,
                    const output::Document& document,
                    const Wording& wording);

/// Adds what a reader needs to the tables themselves: a note that estimated means are proportions
/// where the target is events out of trials, whose label reads like a count.
void add_notes(const ResultFacts& result, output::Section& content, const Wording& wording);

}  // namespace hierfit::about
