#include "import/common_subjects.h"

#include <algorithm>

namespace hierfit::fit {

std::vector<std::string> common_subjects(const Fit& fit) {
  std::vector<std::vector<std::string>> lists;
  for (const Random& block : fit.random)
    lists.push_back(block.subjects);
  if (!fit.residual.subjects.empty()) lists.push_back(fit.residual.subjects);
  if (lists.empty()) return {};
  std::vector<std::string> common = lists[0];
  for (const std::vector<std::string>& list : lists) {
    std::erase_if(common, [&](const std::string& field) {
      return std::ranges::find(list, field) == list.end();
    });
  }
  return common;
}

}  // namespace hierfit::fit
