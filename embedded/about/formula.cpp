#include "embedded/about/formula.h"

#include <algorithm>

namespace hierfit::about {
namespace {

constexpr std::string_view kJoint = ":";

int level_of(const Fields& fields, size_t at) {
  return at < fields.nesting.size() ? fields.nesting[at] : 0;
}

/// A field and how often it stands in a row, "x^2"; moves behind them.
std::string power_at(const Fields& fields, size_t& at) {
  const size_t begin = at;
  while (at < fields.names.size() && fields.names[at] == fields.names[begin] &&
         level_of(fields, at) == level_of(fields, begin))
    ++at;
  const std::string& name = fields.names[begin];
  return at - begin > 1 ? name + "^" + std::to_string(at - begin) : name;
}

std::string sum_of(bool intercept, const std::vector<Fields>& effects) {
  std::string sum = intercept ? "1" : "0";
  for (const Fields& effect : effects)
    sum += " + " + joined(effect, kJoint);
  return sum;
}

std::string random_term(const RandomBlock& block) {
  std::string term = "(" + sum_of(block.intercept, block.effects) + " | ";
  term += block.subjects.names.empty() ? "1" : joined(block.subjects, kJoint);
  for (const std::string& group : block.groups)
    term += ", by " + group;
  return term + ")";
}

}  // namespace

std::string joined(const Fields& fields, std::string_view joint) {
  std::string text;
  int depth = 0;
  size_t open = 0;
  for (size_t at = 0; at < fields.names.size();) {
    const int level = level_of(fields, at);
    if (at > 0 && level > depth) {
      text += "(";
      depth = level;
      ++open;
    } else if (at > 0) {
      text += joint;
    }
    text += power_at(fields, at);
  }
  return text.append(open, ')');
}

std::string formula_of(const ResultFacts& facts) {
  if (facts.target.empty()) return {};
  std::string formula = facts.target;
  if (facts.uses_trials && !facts.trials.empty()) formula += "/" + facts.trials;
  formula += " ~ " + sum_of(facts.intercept, facts.effects);
  for (const RandomBlock& block : facts.random)
    formula += " + " + random_term(block);
  return formula;
}

}  // namespace hierfit::about
