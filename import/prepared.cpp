#include "import/prepared.h"

#include "import/check_fit.h"
#include "import/level_rows.h"
#include "import/reckon.h"
#include "import/summaries.h"

namespace hierfit::fit {
namespace {

constexpr const char* kUsualName = "model";

void state_defaults(Fit& fit, std::vector<std::string>& reckoned) {
  if (fit.name.empty()) fit.name = kUsualName;
  if (fit.adjust.empty()) fit.adjust = "none";
  if (exists(fit.conf_level)) return;
  fit.conf_level = kUsualLevel;
  reckoned.emplace_back("conf.level taken as 0.95");
}

Fit with_values(Fit fit) {
  state_values(fit);
  return fit;
}

}  // namespace

Prepared::Prepared(Fit read, Problems& problems)
    : fit(with_values(std::move(read))), variables(fit) {
  check_fit(fit, variables, problems);
  if (problems.has_errors()) return;
  state_defaults(fit, reckoned);
  const bool is_coded = !fit.fixed.codings.empty();
  make_level_rows(fit, variables, problems);
  if (problems.has_errors()) return;
  if (is_coded) reckoned.emplace_back("rows of coded factors turned into levels");
  summarise(fit);
  for (std::string& sentence : reckon(fit))
    reckoned.push_back(std::move(sentence));
  fixed = design_of(fit, variables, problems);
  for (const Random& block : fit.random)
    random.push_back(columns_of(block, variables));
}

}  // namespace hierfit::fit
