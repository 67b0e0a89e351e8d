#include "import/nearest.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace hierfit::fit {
namespace {

/// The optimal string alignment distance, row by row.
size_t edits(std::string_view from, std::string_view to) {
  std::vector<std::vector<size_t>> cost(from.size() + 1, std::vector<size_t>(to.size() + 1));
  for (size_t i = 0; i <= from.size(); ++i) {
    for (size_t j = 0; j <= to.size(); ++j) {
      size_t& here = cost[i][j];
      here = std::max(i, j);
      if (i == 0 || j == 0) continue;
      here = std::min({cost[i - 1][j] + 1, cost[i][j - 1] + 1,
                       cost[i - 1][j - 1] + (from[i - 1] == to[j - 1] ? 0 : 1)});
      const bool swapped = i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1];
      if (swapped) here = std::min(here, cost[i - 2][j - 2] + 1);
    }
  }
  return cost[from.size()][to.size()];
}

}  // namespace

std::string_view nearest(std::string_view word, std::span<const std::string_view> known) {
  constexpr size_t kLongestWord = 64;
  std::string_view best;
  size_t fewest = kLongestWord;
  if (word.size() > kLongestWord) return best;
  for (const std::string_view candidate : known) {
    const size_t count = edits(word, candidate);
    if (count * 3 > candidate.size() || count >= fewest) continue;
    fewest = count;
    best = candidate;
  }
  return best;
}

}  // namespace hierfit::fit
