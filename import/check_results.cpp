// Contradictions between the model, its tests, its means and the records.
#include <algorithm>

#include "import/check_fit.h"
#include "import/column.h"
#include "import/references.h"
#include "import/words.h"

namespace hierfit::fit {
namespace {

class ResultCheck {
 public:
  ResultCheck(const Fit& fit, const Variables& variables, Problems& problems)
      : fit_(fit), variables_(variables), refer_(variables, problems) {}

  void run() {
    for (size_t at = 0; at < fit_.tests.effects.size(); ++at) {
      refer_.position(item("tests.effects", at) + ".effect",
                      fit_.tests.effects[at].effect.value_or(0), fit_.fixed.effects.size(),
                      "effects");
    }
    warn_of_tests();
    for (size_t at = 0; at < fit_.effect_means.size(); ++at) {
      const std::string path = item("effect.means", at);
      refer_.fields(path + ".fields", fit_.effect_means[at].fields);
      check_rows(path, fit_.effect_means[at].fields, fit_.effect_means[at].rows);
    }
    for (size_t at = 0; at < fit_.means.size(); ++at)
      check_means(item("means", at), fit_.means[at]);
    check_data();
    check_summaries();
  }

 private:
  void warn_of_tests() {
    const size_t tests = fit_.tests.effects.size();
    const size_t effects = fit_.fixed.effects.size();
    if (tests == effects || tests == 0) return;
    refer_.warn("tests.effects has " + std::to_string(tests) + " tests for " +
                std::to_string(effects) + " effects; their table stays away");
  }

  void check_rows(const std::string& path,
                  const std::vector<std::string>& fields,
                  const std::vector<Mean>& rows) {
    for (size_t at = 0; at < rows.size(); ++at)
      check_levels(item(path + ".rows", at) + ".levels", fields, rows[at].levels);
  }

  /// Every one of the fields needs a level, and nothing else has one.
  void check_levels(const std::string& path,
                    const std::vector<std::string>& fields,
                    const Levels& levels) {
    refer_.levels(path, levels, fields);
    for (const std::string& field : fields) {
      const bool has = std::ranges::find(levels, field, &Levels::value_type::first) != levels.end();
      if (!has) refer_.fail(path + " lacks the level of " + in_quotes(field));
    }
  }

  void check_means(const std::string& path, const Means& means) {
    if (means.fields.empty()) refer_.fail(path + ".fields is empty; means are of a field or more");
    refer_.fields(path + ".fields", means.fields);
    for (const auto& [name, value] : means.at)
      refer_.field(path + ".at", name);
    check_rows(path, means.fields, means.rows);
    if (means.contrasts) {
      check_contrasts(path + ".contrasts", means.fields, *means.contrasts);
    } else if (!means.tests.empty()) {
      refer_.fail(path + ".tests stands without contrasts, which it tests");
    }
    const std::vector<std::string> others = others_of(means);
    for (size_t at = 0; at < means.tests.size(); ++at)
      check_levels(item(path + ".tests", at) + ".levels", others, means.tests[at].levels);
  }

  static std::vector<std::string> others_of(const Means& means) {
    std::vector<std::string> others = means.fields;
    if (means.contrasts) std::erase(others, means.contrasts->compare);
    return others;
  }

  void check_contrasts(const std::string& path,
                       const std::vector<std::string>& fields,
                       const Contrasts& contrasts) {
    if (std::ranges::find(fields, contrasts.compare) == fields.end()) {
      refer_.fail(path + ".compare is " + in_quotes(contrasts.compare) +
                  ", which is none of the fields of the means");
      return;
    }
    const Variable* compare = refer_.factor(path + ".compare", contrasts.compare);
    if (compare == nullptr) return;
    if (contrasts.reference) refer_.value(path + ".reference", *compare, *contrasts.reference);
    std::vector<std::string> others = fields;
    std::erase(others, contrasts.compare);
    for (size_t at = 0; at < contrasts.rows.size(); ++at) {
      const std::string here = item(path + ".rows", at);
      const Contrast& row = contrasts.rows[at];
      check_levels(here + ".levels", others, row.levels);
      if (row.level) refer_.value(here + ".level", *compare, *row.level);
      if (row.against) refer_.value(here + ".against", *compare, *row.against);
      if (!row.against && contrasts.type != "deviation") {
        refer_.fail(here + " lacks against, the level that it is compared with");
      }
    }
    if (!contrasts.covariance.empty()) {
      refer_.matrix(path + ".vcov", contrasts.covariance, contrasts.rows.size(), "contrasts");
    }
  }

  void check_data() {
    const Data& data = fit_.data;
    if (data.columns.empty()) return;
    const Column& first = data.columns[0];
    for (const Column& column : data.columns) {
      if (variables_.find(column.name) == nullptr) {
        refer_.warn("data.columns." + column.name + " is no variable" +
                    suggestion(column.name, variables_.names()));
      }
      check_length("data.columns." + column.name, column.size(), first);
      check_values(column);
    }
    if (data.predicted.size() > 0) check_length("data.predicted", data.predicted.size(), first);
  }

  /// A factor has values of its own, any other variable has numbers. Finds the first that is
  /// neither.
  void check_values(const Column& column) {
    const Variable* variable = variables_.find(column.name);
    if (variable == nullptr) return;
    const std::string path = "data.columns." + column.name;
    const bool has_values = is_factor(*variable) && !variable->values.empty();
    if (!has_values && type_of(*variable) == "string") return;
    const std::vector<int32_t> positions = positions_in(variable->values, column);
    for (size_t record = 0; record < column.size(); ++record) {
      const bool is_text = !column.codes.empty() && column.codes[record] >= 0;
      const bool is_missing = !is_text && !exists(column.numbers[record]);
      if (is_missing || (has_values ? positions[record] >= 0 : !is_text)) continue;
      const Value value = {text_at(column, record)};
      if (has_values) return refer_.value(item(path, record), *variable, value);
      return refer_.fail(item(path, record) + " is " + in_quotes(value.text) +
                         ", which is no number");
    }
  }

  void check_length(const std::string& path, size_t length, const Column& first) {
    if (length == first.size()) return;
    refer_.fail(path + " has " + std::to_string(length) + " values, and data.columns." +
                first.name + " has " + std::to_string(first.size()));
  }

  void check_summaries() {
    const Summaries& summaries = fit_.summaries;
    if (summaries.target) {
      check_equal("summaries.target.counts", summaries.target->counts.size(), "bins",
                  summaries.target->bins.size());
    }
    if (summaries.predicted) {
      const Pairs& pairs = *summaries.predicted;
      check_equal("summaries.predicted.predicted", pairs.predicted.size(), "observed",
                  pairs.observed.size());
      if (!pairs.counts.empty()) {
        check_equal("summaries.predicted.counts", pairs.counts.size(), "observed",
                    pairs.observed.size());
      }
    }
    const Matrix& classes = summaries.classification;
    for (size_t at = 0; at < classes.size(); ++at) {
      if (classes[at].size() == classes.size()) continue;
      refer_.fail(item("summaries.classification", at) + " has " +
                  std::to_string(classes[at].size()) + " numbers for " +
                  std::to_string(classes.size()) + " categories");
      break;
    }
    if (summaries.first_subject) check_first_subject(*summaries.first_subject);
  }

  void check_equal(const std::string& path, size_t length, const char* other, size_t wanted) {
    if (length == wanted) return;
    refer_.fail(path + " has " + std::to_string(length) + " numbers, and " + other + " has " +
                std::to_string(wanted));
  }

  void check_first_subject(const FirstSubject& first) {
    const std::string path = "summaries.first.subject";
    for (const auto& [name, value] : first.subject) {
      const std::string here = inside(path + ".subject", name);
      const Variable* variable = refer_.factor(here, name);
      if (variable != nullptr) refer_.value(here, *variable, value);
    }
    for (const auto& [name, values] : first.repeated) {
      refer_.field(path + ".repeated", name);
      check_equal(inside(path + ".repeated", name), values.size(), "target", first.target.size());
    }
    if (!first.trials.empty()) {
      check_equal(path + ".trials", first.trials.size(), "target", first.target.size());
    }
  }

  const Fit& fit_;
  const Variables& variables_;
  References refer_;
};

}  // namespace

void check_results(const Fit& fit, const Variables& variables, Problems& problems) {
  ResultCheck(fit, variables, problems).run();
}

}  // namespace hierfit::fit
