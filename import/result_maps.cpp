// The names of terms: `StringMap`.
#include "import/result_document.h"

namespace hierfit::fit {
namespace {

void write_map(size_t map,
               const std::vector<DesignTerm>& terms,
               std::string (*name_of)(size_t),
               const std::vector<Effect>& effects,
               const Variables& variables,
               XmlWriter& xml) {
  const auto string_map = xml.element("StringMap", {{"mapId", std::to_string(map)}});
  for (size_t term = 0; term < terms.size(); ++term) {
    const std::string name = name_of(term);
    const auto entry = xml.element("MapEntry", {{"name", name}});
    const auto label = xml.element("Label");
    write_term(terms[term], name, effects, variables, xml);
  }
  // The reader wants an entry in the last map.
  if (!terms.empty()) return;
  const auto entry = xml.element("MapEntry", {{"name", name_of(0)}});
  const auto label = xml.element("Label");
  write_term({}, name_of(0), effects, variables, xml);
}

}  // namespace

void write_string_maps(const Prepared& prepared, XmlWriter& xml) {
  const Fit& fit = prepared.fit;
  write_map(kFixedMap, prepared.fixed.terms, &fixed_name, fit.fixed.effects, prepared.variables,
            xml);
  for (size_t block = 0; block < fit.random.size(); ++block) {
    write_map(block + 1, prepared.random[block], &random_name, fit.random[block].effects,
              prepared.variables, xml);
  }
}

}  // namespace hierfit::fit
