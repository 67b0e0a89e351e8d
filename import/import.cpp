#include "import/import.h"

#include "import/model_document.h"
#include "import/prepared.h"
#include "import/read_fit.h"
#include "import/result_document.h"

namespace hierfit::fit {

std::optional<Documents> import_fit(std::string_view text, Problems& problems) {
  Fit fit = read_fit(text, problems);
  if (problems.has_errors()) return {};
  const Prepared prepared(std::move(fit), problems);
  if (problems.has_errors()) return {};
  return Documents{model_document(prepared), result_document(prepared),
                   dictionary_document(prepared.fit)};
}

void check_fit_document(std::string_view text, Problems& problems) {
  Fit fit = read_fit(text, problems);
  if (!problems.has_errors()) const Prepared prepared(std::move(fit), problems);
}

}  // namespace hierfit::fit
