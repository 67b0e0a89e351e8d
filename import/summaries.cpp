#include "import/summaries.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <unordered_set>

#include "import/column.h"
#include "import/common_subjects.h"
#include "import/histogram.h"
#include "import/pairs_of_values.h"
#include "import/variables.h"
#include "import/words.h"

namespace hierfit::fit {
namespace {

/// The first subject's records that are shown.
constexpr size_t kShownRecords = 10;

/// Mean and variance, in the precision that the numbers of others have.
struct Moments {
  double mean = kMissing;
  double variance = kMissing;
};

Moments moments_of(const std::vector<double>& numbers) {
  if (numbers.empty()) return {};
  const auto count = static_cast<long double>(numbers.size());
  long double sum = 0;
  for (const double number : numbers)
    sum += number;
  long double mean = sum / count;
  long double rest = 0;
  for (const double number : numbers)
    rest += number - mean;
  mean += rest / count;
  long double squares = 0;
  for (const double number : numbers)
    squares += (number - mean) * (number - mean);
  const bool has_variance = numbers.size() > 1;
  return {static_cast<double>(mean),
          has_variance ? static_cast<double>(squares / (count - 1)) : kMissing};
}

class Summariser {
 public:
  explicit Summariser(Fit& fit) : fit_(fit), summaries_(fit.summaries) {
    target_ = find_column(fit.data, fit.target.variable);
    if (!fit.target.trials.empty()) trials_ = find_column(fit.data, fit.target.trials);
    distribution_ = written(kDistributions, fit.distribution);
    const Variables variables(fit);
    const Variable* target = variables.find(fit.target.variable);
    if (target == nullptr || !is_factor(*target)) return;
    categories_ = fit.target.order.empty() ? target->values : fit.target.order;
  }

  void run() {
    if (target_ == nullptr) return;
    read_target();
    if (!summaries_.records) summaries_.records = static_cast<int64_t>(observed_.size());
    if (!summaries_.target) summarise_target();
    if (fit_.data.predicted.size() > 0) summarise_predicted();
    summarise_subjects();
  }

 private:
  bool is_categorical() const { return !categories_.empty(); }
  bool counts_events() const { return !fit_.target.trials.empty() || fit_.target.trials_constant; }
  bool has_trials() const { return trials_ != nullptr || fit_.target.trials_constant; }

  void read_target() {
    numbers_ = target_->numbers;
    if (is_categorical()) {
      const std::vector<int32_t> positions = positions_in(categories_, *target_);
      for (size_t at = 0; at < positions.size(); ++at)
        numbers_[at] = positions[at] < 0 ? kMissing : positions[at] + 1;
    }
    for (const double number : numbers_)
      if (exists(number)) observed_.push_back(number);
  }

  void summarise_target() {
    Distribution& target = summaries_.target.emplace();
    const Moments moments = moments_of(observed_);
    target.mean = moments.mean;
    target.deviation = std::sqrt(moments.variance);
    fit_parameters(moments, target);
    Bins bins = bins_of_target();
    target.bins = std::move(bins.middles);
    target.counts = std::move(bins.counts);
  }

  /// The parameters that have these moments.
  void fit_parameters(const Moments& moments, Distribution& target) const {
    const double surplus = moments.variance - moments.mean;
    if (distribution_ == "GAMMA" && moments.variance > 0) {
      target.shape = moments.mean * moments.mean / moments.variance;
      target.rate = moments.mean / moments.variance;
    } else if (distribution_ == "NEGBIN" && surplus > 0) {
      target.r = moments.mean * moments.mean / surplus;
      target.p = target.r / (target.r + moments.mean);
    }
  }

  Bins bins_of_target() const {
    Bins bins;
    if (is_categorical()) {
      for (size_t category = 1; category <= categories_.size(); ++category)
        bins.middles.push_back(static_cast<double>(category));
      bins.counts.assign(categories_.size(), 0);
      for (const double position : observed_)
        ++bins.counts[static_cast<size_t>(position) - 1];
      return bins;
    }
    const bool counts = distribution_ == "POISSON" || distribution_ == "NEGBIN" || counts_events();
    if (counts) bins = count_bins(observed_);
    return bins.counts.empty() ? round_bins(observed_) : bins;
  }

  void summarise_predicted() {
    const Column& predicted = fit_.data.predicted;
    if (is_categorical()) {
      if (summaries_.classification.empty()) classify(positions_in(categories_, predicted));
    } else {
      if (!summaries_.predicted) summaries_.predicted = pairs_of(numbers_, predicted.numbers);
      if (has_trials() && summaries_.classification.empty()) classify_events(predicted.numbers);
    }
    if (!exists(fit_.statistics.accuracy)) fit_.statistics.accuracy = accuracy();
  }

  void classify(const std::vector<int32_t>& predicted) {
    Matrix& classes = start_classification(categories_.size());
    for (size_t at = 0; at < predicted.size(); ++at) {
      if (predicted[at] < 0 || !exists(numbers_[at])) continue;
      ++classes[static_cast<size_t>(numbers_[at]) - 1][static_cast<size_t>(predicted[at])];
    }
  }

  /// Events are predicted where more than half of the trials are.
  void classify_events(const std::vector<double>& predicted) {
    Matrix& classes = start_classification(2);
    for (size_t at = 0; at < numbers_.size(); ++at) {
      const double trials = trials_ == nullptr ? static_cast<double>(*fit_.target.trials_constant)
                                               : trials_->numbers[at];
      if (!exists(trials) || !exists(numbers_[at]) || !exists(predicted[at])) continue;
      const size_t column = predicted[at] > trials / 2 ? 1 : 0;
      classes[0][column] += trials - numbers_[at];
      classes[1][column] += numbers_[at];
    }
  }

  Matrix& start_classification(size_t size) {
    summaries_.classification.assign(size, std::vector<double>(size, 0));
    return summaries_.classification;
  }

  double accuracy() const {
    double right = 0;
    double all = 0;
    for (size_t row = 0; row < summaries_.classification.size(); ++row) {
      for (size_t column = 0; column < summaries_.classification[row].size(); ++column) {
        all += summaries_.classification[row][column];
        if (row == column) right += summaries_.classification[row][column];
      }
    }
    return all > 0 ? right / all : kMissing;
  }

  void summarise_subjects() {
    std::vector<const Column*> fields;
    for (const std::string& name : common_subjects(fit_)) {
      const Column* column = find_column(fit_.data, name);
      if (column == nullptr) return;
      fields.push_back(column);
    }
    if (!fit_.counts.common_subjects) count_subjects(fields);
    const bool has_subjects = !fit_.random.empty() || !fit_.residual.subjects.empty();
    if (has_subjects && !summaries_.first_subject) take_first_subject(fields);
  }

  static std::string key_of(const std::vector<const Column*>& fields, size_t record) {
    std::string key;
    for (const Column* field : fields)
      (key += text_at(*field, record)) += '\n';
    return key;
  }

  void count_subjects(const std::vector<const Column*>& fields) {
    std::unordered_set<std::string> subjects;
    for (size_t record = 0; record < numbers_.size(); ++record)
      if (exists(numbers_[record])) subjects.insert(key_of(fields, record));
    fit_.counts.common_subjects = static_cast<int64_t>(subjects.size());
  }

  /// The columns that the first subject shows.
  std::vector<const Column*> shown_columns(std::vector<const Column*> subjects) const {
    if (trials_ != nullptr) subjects.push_back(trials_);
    for (const std::string& name : fit_.residual.repeated) {
      const Column* column = find_column(fit_.data, name);
      if (column != nullptr) subjects.push_back(column);
    }
    return subjects;
  }

  /// The records that have all that is shown.
  std::vector<size_t> whole_records(const std::vector<const Column*>& columns) const {
    std::vector<size_t> records;
    for (size_t record = 0; record < numbers_.size(); ++record) {
      const bool is_whole =
          exists(numbers_[record]) && std::ranges::none_of(columns, [&](const Column* column) {
            return text_at(*column, record).empty();
          });
      if (is_whole) records.push_back(record);
    }
    return records;
  }

  void take_first_subject(const std::vector<const Column*>& fields) {
    std::vector<size_t> records = whole_records(shown_columns(fields));
    if (records.empty()) return;
    const std::string key = key_of(fields, records[0]);
    std::erase_if(records, [&](size_t record) { return key_of(fields, record) != key; });

    FirstSubject& first = summaries_.first_subject.emplace();
    for (const Column* field : fields)
      first.subject.emplace_back(field->name, Value{text_at(*field, records[0])});
    first.records = static_cast<int64_t>(records.size());
    records.resize(std::min(records.size(), kShownRecords));
    first.target = values_at(*target_, records);
    if (trials_ != nullptr) first.trials = values_at(*trials_, records);
    for (const std::string& name : fit_.residual.repeated) {
      const Column* column = find_column(fit_.data, name);
      if (column != nullptr) first.repeated.emplace_back(name, values_at(*column, records));
    }
  }

  static std::vector<Value> values_at(const Column& column, const std::vector<size_t>& records) {
    std::vector<Value> values;
    values.reserve(records.size());
    for (const size_t record : records)
      values.push_back({text_at(column, record)});
    return values;
  }

  Fit& fit_;
  Summaries& summaries_;
  const Column* target_ = nullptr;
  const Column* trials_ = nullptr;
  std::string_view distribution_;
  std::vector<Value> categories_;  ///< of a categorical target
  std::vector<double> numbers_;    ///< the target of each record; of a category its position from 1
  std::vector<double> observed_;   ///< those that are not missing
};

}  // namespace

void state_values(Fit& fit) {
  for (Variable& variable : fit.variables) {
    if (!variable.values.empty()) continue;
    const Column* column = find_column(fit.data, variable.name);
    if (column == nullptr || variable.level == "scale" || variable.level == "continuous") continue;
    if (!variable.level.empty() || holds_texts_only(*column)) {
      variable.values = distinct_values(*column);
    }
  }
}

void summarise(Fit& fit) {
  Summariser(fit).run();
  fit.data.columns = {};
  fit.data.predicted = {};
}

}  // namespace hierfit::fit
