// What the benchmarks of tables and of their rendering have in common.
#pragma once

#include <string>

#include "bench/documents.h"
#include "output/document.h"

namespace hierfit::bench {

/// A document whose tables have about a million cells.
struct TableSubject {
  const char* name;
  std::string (*document)();
};

inline constexpr TableSubject kTableSubjects[] = {
    {"coefficients", [] { return parameter_estimates(110'000); }},
    {"means", [] { return estimated_means(250'000); }},
    {"contrasts", [] { return pairwise_contrasts(535); }},
    {"covariances", [] { return grouped_covariances(100, 100); }},
};

inline size_t cell_count(const output::Section& section) {
  size_t count = 0;
  for (const output::Item& item : section.items) {
    if (const auto* table = std::get_if<std::unique_ptr<output::Table>>(&item)) {
      count += (*table)->cells.size();
    } else if (const auto* below = std::get_if<std::unique_ptr<output::Section>>(&item)) {
      count += cell_count(**below);
    }
  }
  return count;
}

}  // namespace hierfit::bench
