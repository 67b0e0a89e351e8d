// What a result document says about the model and its fit, beside the numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "embedded/xml/tree.h"

namespace hierfit::about {

/// The fields of an effect or of a subject specification, and by field how deep it is nested: a
/// field that is nested deeper lies within those ahead of it. A field to a power stands repeatedly.
struct Fields {
  std::vector<std::string> names;
  std::vector<int> nesting;  ///< may be shorter than the names; 0 then

  bool operator==(const Fields&) const = default;
};

/// A block of random effects as it was specified.
struct RandomBlock {
  bool intercept = false;
  std::vector<Fields> effects;
  Fields subjects;
  std::vector<std::string> groups;
};

/// A block of estimated means as it was asked for.
struct MeansRequest {
  Fields factors;
  bool has_contrasts = false;
};

/// A message of the engine.
struct EngineMessage {
  std::string key;  ///< "kGLMM_C11"
  std::vector<std::string> parameters;
  std::optional<size_t> means;  ///< of a block of means: its number, from 0

  bool operator==(const EngineMessage&) const = default;
};

/// A variance that is estimated as exactly 0: the one at a place, from 0, among the parameters of a
/// block of random effects, or of the residual effect.
struct ZeroVariance {
  std::optional<size_t> block;  ///< none: the residual effect
  size_t row = 0;

  bool operator==(const ZeroVariance&) const = default;
};

/// What a program that wrote the document adds to it: an `Extension` element.
struct Remark {
  std::string name;
  std::string value;
};

/// Texts are as they stand; an empty one is absent.
struct ResultFacts {
  std::string model_name;
  std::string target;
  bool uses_trials = false;
  std::string trials;  ///< the field that counts them, else a number
  bool intercept = false;
  std::vector<Fields> effects;
  std::vector<RandomBlock> random;
  Fields residual_subjects;
  std::vector<MeansRequest> means;
  std::optional<double> confidence;  ///< between 0 and 1
  std::string adjustment;            ///< a word, "SEQBONFERRONI"
  std::optional<double> records;
  std::optional<double> common_subjects;
  bool has_estimates = false;
  std::vector<ZeroVariance> zero_variances;  ///< each once
  std::vector<Remark> remarks;
  std::vector<EngineMessage> messages;  ///< each once, in the order of the document

  /// The value of the first remark of that name; empty for none.
  std::string_view remark(std::string_view name) const;
};

/// What a document says; nothing when it is no result document.
std::optional<ResultFacts> read_result_facts(const xml::Tree& tree);

}  // namespace hierfit::about
