#include "embedded/about/messages.h"

#include <algorithm>
#include <cctype>

#include "embedded/about/formula.h"

namespace hierfit::about {
namespace {

using output::Message;
using output::Severity;
using output::Text;

constexpr const char* kOnCovariances = "Warning ^1 on the covariance parameters ...";
constexpr const char* kOnlyTheEngineKnows = "Warning ^1 of unknown meaning ...";
constexpr const char* kWithParameters = "Warning ^1: ^2";

/// What a message of the engine stands for.
struct Meaning {
  std::string_view key;
  const char* text;  ///< of the string table; ^1: the key
  Severity severity = Severity::Warning;
};
/// The messages whose meaning a report knows; of the others it says what it was given.
constexpr Meaning kMeanings[] = {
    {"kGLMM_C8", "kGLMM_C8"},       {"kGLMM_C9", "kGLMM_C9"},
    {"kGLMM_C10", kOnCovariances},  {"kGLMM_C18", kOnCovariances},
    {"kGLMM_C19_1", "kGLMM_C19_1"}, {"kGLMM_C20", "kGLMM_C20", Severity::Note},
    {"kGLMM_C23", kOnCovariances},  {"kGLMM_C24", "kGLMM_C24"},
    {"kGLMM_C25", "kGLMM_C25"},     {"kGLMM_C26", "kGLMM_C26"},
    {"kGLMM_C28", kOnCovariances},
};

/// What engines say when the numbers of a fit are not those of a maximum; in small letters.
constexpr std::string_view kGraveWords[] = {
    "not converge",      "without convergence", "failed to converge", "convergence error",
    "false convergence", "non-convergence",     "iteration limit",    "positive definite",
    "positive-definite", "infinite or missing", "not been reached",   "did not reach",
};

/// Conditions of a fit that a fit document states, and what they say.
struct Condition {
  std::string_view name;
  const char* text;
  Severity severity;
  const char* code;
};
constexpr Condition kConditions[] = {
    {"not converged", "Not converged ...", Severity::Error, "notConverged"},
};

constexpr std::string_view kRandomTables = "CovarianceParameters";
constexpr std::string_view kResidualTables = "ResidualEffect";

/// The tables of a kind, in their order.
void collect_tables(const output::Section& section,
                    std::string_view subtype,
                    std::vector<const output::Table*>& tables) {
  for (const output::Item& item : section.items) {
    if (const auto* inner = std::get_if<std::unique_ptr<output::Section>>(&item)) {
      collect_tables(**inner, subtype, tables);
    } else if (const auto* table = std::get_if<std::unique_ptr<output::Table>>(&item)) {
      if ((*table)->subtype == subtype) tables.push_back(table->get());
    }
  }
}

/// The label of a row of a covariance table; null where the table lacks it.
const Text* row_label(const output::Table& table, size_t row) {
  const output::Dimension* rows = nullptr;
  for (const output::Dimension& dimension : table.dimensions) {
    const bool is_row = dimension.place == output::Place::Rows;
    if (is_row && (rows == nullptr || dimension.level < rows->level)) rows = &dimension;
  }
  if (rows == nullptr || row >= rows->leaves.size()) return nullptr;
  return &rows->nodes[rows->leaves[row]].label;
}

bool is_grave(std::string_view sentence) {
  std::string letters(sentence);
  std::ranges::transform(letters, letters.begin(), [](unsigned char c) { return std::tolower(c); });
  return std::ranges::any_of(kGraveWords, [&](std::string_view words) {
    return letters.find(words) != std::string::npos;
  });
}

class Messages {
 public:
  Messages(const ResultFacts& facts, const Wording& wording) : facts_(facts), wording_(wording) {}

  std::vector<Message> write(const output::Section& content) {
    if (!facts_.has_estimates) {
      add(wording_.text("No estimates ..."), Severity::Error, "noEstimates");
    }
    for (const EngineMessage& message : facts_.messages)
      add(message);
    add_zero_variances(content);
    for (const Remark& remark : facts_.remarks) {
      if (remark.name == "condition") add_condition(remark.value);
      if (remark.name == "note") add(plain(remark.value), Severity::Note, "engineNote");
    }
    sort_by_severity(messages_);
    return std::move(messages_);
  }

 private:
  void add(Text text, Severity severity, std::string code) {
    messages_.push_back({std::move(text), severity, std::move(code)});
  }

  void add(const EngineMessage& message) {
    const auto* meaning = std::ranges::find(kMeanings, message.key, &Meaning::key);
    const bool is_known = meaning != std::end(kMeanings);
    std::string parameters;
    for (const std::string& parameter : message.parameters)
      parameters += (parameters.empty() ? "" : "; ") + parameter;
    Severity severity = is_known ? meaning->severity : Severity::Warning;
    if (is_grave(parameters)) severity = Severity::Error;

    Text text;
    if (is_known) {
      text = wording_.filled(meaning->text, plain(message.key));
      if (!parameters.empty()) text = wording_.filled("^1 (^2)", text, plain(parameters));
    } else if (parameters.empty()) {
      text = wording_.filled(kOnlyTheEngineKnows, plain(message.key));
    } else {
      text = wording_.filled(kWithParameters, plain(message.key), plain(parameters));
    }
    if (message.means) text = wording_.filled("^1: ^2", block_name(*message.means), text);
    add(std::move(text), severity, message.key);
  }

  /// "Estimated marginal means 2: Species * Site", as the heading of a block calls it.
  Text block_name(size_t block) const {
    Fields factors;
    if (block < facts_.means.size()) factors = facts_.means[block].factors;
    for (std::string& name : factors.names)
      name = wording_.label_of(name);
    const Text effect = plain(joined(factors, " * "));
    return wording_.filled("EMMEANS Effect ^1 block ^2 ...", effect,
                           plain(std::to_string(block + 1)));
  }

  void add_condition(std::string_view name) {
    const auto* condition = std::ranges::find(kConditions, name, &Condition::name);
    if (condition == std::end(kConditions)) return;
    add(wording_.text(condition->text), condition->severity, condition->code);
  }

  // Variances that are exactly 0.

  void add_zero_variances(const output::Section& content) {
    std::vector<const output::Table*> random;
    std::vector<const output::Table*> residual;
    collect_tables(content, kRandomTables, random);
    collect_tables(content, kResidualTables, residual);
    for (const ZeroVariance& variance : facts_.zero_variances) {
      const std::vector<const output::Table*>& tables = variance.block ? random : residual;
      const size_t table = variance.block.value_or(0);
      if (table < tables.size()) add_zero_variance(*tables[table], variance.row);
    }
  }

  void add_zero_variance(const output::Table& table, size_t row) {
    const Text* label = row_label(table, row);
    if (label == nullptr) return;
    add(wording_.filled("^1, ^2 estimated as zero ...", table.title, *label), Severity::Warning,
        "boundary");
  }

  const ResultFacts& facts_;
  const Wording& wording_;
  std::vector<Message> messages_;
};

}  // namespace

std::vector<Message> messages_about(const ResultFacts& facts,
                                    const output::Section& content,
                                    const Wording& wording) {
  return Messages(facts, wording).write(content);
}

void sort_by_severity(std::vector<Message>& messages) {
  std::ranges::stable_sort(messages, std::ranges::greater(), &Message::severity);
}

}  // namespace hierfit::about
