// Fit documents of any size for the benchmarks.
#pragma once

#include <cstddef>
#include <string>

namespace hierfit::bench {

/// So many coefficients of a factor, and half as many levels again that are redundant.
std::string fit_of_coefficients(size_t count);
/// So many records of a target, a factor and a subject, with predicted values.
std::string fit_of_records(size_t count);
/// So many observed by predicted pairs, ready made.
std::string fit_of_pairs(size_t count);

}  // namespace hierfit::bench
