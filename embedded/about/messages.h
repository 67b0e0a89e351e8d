// What is to be known about a fit before its numbers are read.
#pragma once

#include <vector>

#include "embedded/about/result_facts.h"
#include "embedded/about/wording.h"
#include "output/document.h"

namespace hierfit::about {

/// What the engine says of the fit, each of its messages in words with its parameters; what the
/// document shows of it: no estimates, variances on their boundary, as the tables of `content` name
/// them; and the notes of the engine. The most severe first: what forbids to read on is an error.
std::vector<output::Message> messages_about(const ResultFacts& facts,
                                            const output::Section& content,
                                            const Wording& wording);

/// Puts the most severe first; those of one severity stay in their order.
void sort_by_severity(std::vector<output::Message>& messages);

}  // namespace hierfit::about
