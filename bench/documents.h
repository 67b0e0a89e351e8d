// Documents of any size for the benchmarks.
#pragma once

#include <cstddef>
#include <string>

namespace hierfit::bench {

/// A model document with a continuous target "y", the categorical "a" and "b" of a thousand levels
/// each, and a covariate "x".
std::string model_document();

/// Result documents, each of which reads. What grows is in the name.
std::string settings_and_tests(size_t bytes);  ///< effects and their tests, about this long
std::string parameter_estimates(size_t count);
std::string estimated_means(size_t cells);  ///< four statistics a cell, two factors
std::string pairwise_contrasts(size_t levels);
std::string observed_by_predicted(size_t points);
std::string grouped_covariances(size_t groups, size_t effects);

}  // namespace hierfit::bench
