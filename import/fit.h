// A fitted model as a fit document carries it. docs/fit.md tells what each member means.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace hierfit::fit {

/// A number that does not exist.
inline constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();
inline bool exists(double number) { return !std::isnan(number); }

/// A value of a variable. A document gives it as a text or as a number, which are the same here.
struct Value {
  std::string text;
  bool operator==(const Value&) const = default;
  bool operator<(const Value& other) const { return text < other.text; }
};

/// Values by the name of their variable, in the order of the document.
using Levels = std::vector<std::pair<std::string, Value>>;
/// The same in the order of the names, so that two of them compare.
inline Levels in_order(Levels levels) {
  std::ranges::sort(levels);
  return levels;
}
/// Lists of values by the name of their variable.
using ValueLists = std::vector<std::pair<std::string, std::vector<Value>>>;
/// Rows of numbers; a lower triangle or all of it.
using Matrix = std::vector<std::vector<double>>;

/// The values of a variable in all records. A text is its index in `texts`.
struct Column {
  std::string name;
  std::vector<double> numbers;     ///< missing where a text stands or nothing
  std::vector<int32_t> codes;      ///< -1 where a number stands or nothing; empty: no texts
  std::vector<std::string> texts;  ///< each once, in order of appearance
  std::unordered_map<std::string, int32_t> code_of;

  size_t size() const { return numbers.size(); }
};
using Columns = std::vector<Column>;

struct Engine {
  std::string name;
  std::string version;
  std::string call;
  std::vector<std::string> warnings;
  std::vector<std::string> notes;
  std::vector<std::string> conditions;  ///< words of `kConditions`
};

struct Format {
  std::optional<int64_t> width;
  std::optional<int64_t> decimals;
};

struct Variable {
  std::string name;
  std::string label;
  std::string level;          ///< a word of `kLevels`; empty: told by the values
  std::string type;           ///< a word of `kTypes`; empty: told by the values
  std::vector<Value> values;  ///< the levels, in their order
  Levels labels;              ///< labels by value
  std::optional<Format> format;
};

struct Target {
  std::string variable;
  std::string trials;  ///< a variable; empty: none
  std::optional<int64_t> trials_constant;
  std::optional<Value> reference;
  std::vector<Value> order;  ///< the categories; empty: the variable's values
};

/// A product of fields.
struct Effect {
  std::vector<std::string> fields;
  std::vector<int64_t> powers;   ///< of each field; empty: 1
  std::vector<int64_t> nesting;  ///< the level of each field; empty: 0
};

/// A number with its uncertainty.
struct Estimate {
  double estimate = kMissing;
  double std_error = kMissing;
  double df = kMissing;
  double statistic = kMissing;
  double p_value = kMissing;
  double conf_low = kMissing;
  double conf_high = kMissing;
};

/// A column of a design: the intercept, or one combination of the levels of an effect.
struct Term {
  std::string name;               ///< what the engine calls it
  std::optional<int64_t> effect;  ///< position in the effects; none: the intercept
  Levels levels;
  Levels columns;  ///< columns of codings by the name of their factor
};

struct Coefficient : Estimate, Term {
  std::optional<Value> category;   ///< of a nominal target
  std::optional<Value> threshold;  ///< of an ordinal target: the category below it
  double exp = kMissing;
  double exp_low = kMissing;
  double exp_high = kMissing;
};

/// How a factor was turned into columns.
struct Coding {
  std::string variable;
  Matrix matrix;  ///< a row a level, a column a column
};

struct Fixed {
  std::optional<bool> intercept;  ///< none: there is one
  std::vector<Effect> effects;
  std::vector<Coding> codings;
};

/// A variance, a covariance or whatever else parametrises a covariance structure.
struct CovarianceParameter : Estimate {
  std::string parameter;
  std::optional<int64_t> effect;  ///< whose variance it is, by position
  std::vector<int64_t> terms;     ///< whose it is, by positions of terms
  Levels levels;                  ///< the group
  std::optional<bool> fixed;      ///< whether it is not estimated
};

struct GroupMatrix {
  Levels levels;
  Matrix matrix;
};

struct Random {
  std::vector<std::string> subjects;
  std::vector<int64_t> nesting;
  std::vector<std::string> groups;
  std::string structure;
  std::optional<int64_t> band;
  std::optional<bool> intercept;  ///< none: there is one
  std::vector<Effect> effects;
  std::vector<Term> terms;  ///< the columns; empty: all combinations of levels
  std::vector<CovarianceParameter> parameters;
  std::vector<GroupMatrix> covariances;
};

struct Residual {
  std::vector<std::string> subjects;
  std::vector<int64_t> nesting;
  std::vector<std::string> groups;
  std::string structure;
  std::optional<int64_t> band;
  std::vector<std::string> repeated;
  std::vector<CovarianceParameter> parameters;
};

struct FTest {
  double statistic = kMissing;
  double num_df = kMissing;
  double den_df = kMissing;
  double p_value = kMissing;
};

struct EffectTest : FTest {
  std::optional<int64_t> effect;
};

struct Tests {
  std::string type;
  std::optional<FTest> model;
  std::vector<EffectTest> effects;
};

struct Statistics {
  double aicc = kMissing;
  double bic = kMissing;
  double log_likelihood = kMissing;
  double accuracy = kMissing;
};

struct Counts {
  std::optional<int64_t> residual_parameters;
  std::optional<int64_t> random_parameters;
  std::optional<int64_t> fixed_columns;
  std::optional<int64_t> random_columns;
  std::optional<int64_t> common_subjects;
};

struct Mean : Estimate {
  Levels levels;
};

struct Contrast : Estimate {
  Levels levels;  ///< of the other factors
  std::optional<Value> level;
  std::optional<Value> against;  ///< none: the mean of all
  double adjusted_p_value = kMissing;
};

struct OverallTest : FTest {
  Levels levels;
};

struct Contrasts {
  std::string compare;
  std::string type;
  std::optional<Value> reference;
  double significance_level = kMissing;
  std::vector<Contrast> rows;
  Matrix covariance;
};

struct Means {
  std::vector<std::string> fields;
  Levels at;
  std::string scale;
  std::vector<Mean> rows;
  std::optional<Contrasts> contrasts;
  std::vector<OverallTest> tests;
  std::vector<std::string> conditions;  ///< words of `kMeansConditions`
};

/// Means of one effect, for its chart.
struct EffectMeans {
  std::vector<std::string> fields;
  std::vector<Mean> rows;
};

struct Distribution {
  double mean = kMissing;
  double deviation = kMissing;
  double shape = kMissing;
  double rate = kMissing;
  double r = kMissing;
  double p = kMissing;
  std::vector<double> bins;
  std::vector<double> counts;
};

struct Pairs {
  std::vector<double> observed;
  std::vector<double> predicted;
  std::vector<double> counts;
};

struct FirstSubject {
  Levels subject;
  std::optional<int64_t> records;
  ValueLists repeated;
  std::vector<Value> target;
  std::vector<Value> trials;
};

struct Summaries {
  std::optional<int64_t> records;
  std::optional<Distribution> target;
  std::optional<Pairs> predicted;
  Matrix classification;
  std::optional<FirstSubject> first_subject;
};

/// The records themselves; they go no further than into summaries.
struct Data {
  Columns columns;
  Column predicted;
  std::string hash;
};

struct Fit {
  std::string format;
  Engine engine;
  std::string name;
  std::string title;
  std::string formula;
  std::vector<Variable> variables;
  Target target;
  std::string distribution;
  std::string link;
  double link_parameter = kMissing;
  Fixed fixed;
  std::vector<Random> random;
  Residual residual;
  std::vector<Coefficient> coefficients;
  Matrix covariance;  ///< of the coefficients, in their order
  Tests tests;
  Statistics statistics;
  std::optional<Estimate> grand_mean;
  Counts counts;
  double conf_level = kMissing;
  std::string df_method;
  std::string adjust;
  std::vector<EffectMeans> effect_means;
  std::vector<Means> means;
  Data data;
  Summaries summaries;
};

}  // namespace hierfit::fit
