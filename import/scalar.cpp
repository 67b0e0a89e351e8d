#include "import/scalar.h"

#include <cmath>

#include "import/column.h"
#include "import/number_text.h"
#include "import/problem.h"

namespace hierfit::fit {
namespace {

/// What is not of a kind is, in the order of `Kind`.
// clang-format off
constexpr std::string_view kNotOf[] = {
    "no text", "no number", "no whole number", "neither true nor false", "no text or number",
    "no list of texts", "no list of numbers", "no list of whole numbers", "no list of values",
    "no list of lists of numbers", "no object of values", "no object of lists",
    "no list of values", "no object of lists", "no object", "no list of objects"};
// clang-format on
static_assert(std::size(kNotOf) == static_cast<size_t>(Kind::Objects) + 1);

template <typename T>
T& as(void* target) {
  return *static_cast<T*>(target);
}

std::string range_text(Range range) {
  const std::string least = number_text(range.least);
  if (range.most > 1e300) return " of " + least + " or more";
  const std::string most = number_text(range.most);
  return range.open ? " between " + least + " and " + most : " from " + least + " to " + most;
}

std::string refused(const Scalar& scalar, Kind kind, Range range = kAny) {
  return "is " + scalar.shown() + ", which is " + not_of(kind) +
         (range.is_bounded() ? range_text(range) : "");
}

std::string store_text(const Member& member, const Scalar& scalar, std::string& target) {
  if (!scalar.is_text()) return refused(scalar, Kind::Text);
  if (member.words.empty() || find_word(member.words, scalar.text) != nullptr) {
    target = scalar.text;
    return {};
  }
  const auto names = names_of(member.words);
  const std::string wanted =
      names.size() == 1 ? "not " + std::string(names[0]) : "none of " + listed(names);
  return "is " + scalar.shown() + ", which is " + wanted + suggestion(scalar.text, names);
}

std::string store_number(Range range, const Scalar& scalar, double& target) {
  if (!scalar.is_number()) return refused(scalar, Kind::Number);
  if (!range.holds(scalar.number)) return refused(scalar, Kind::Number, range);
  target = scalar.number;
  return {};
}

std::string store_count(Range range, const Scalar& scalar, int64_t& target) {
  if (!scalar.is_whole()) return refused(scalar, Kind::Count);
  if (!range.holds(scalar.number)) return refused(scalar, Kind::Count, range);
  target = static_cast<int64_t>(scalar.number);
  return {};
}

std::string store_flag(const Scalar& scalar, std::optional<bool>& target) {
  if (scalar.type != Scalar::Type::Flag) return refused(scalar, Kind::Flag);
  target = scalar.flag;
  return {};
}

std::string store_record(const Scalar& scalar, Column& column) {
  if (scalar.is_text()) {
    add_text(column, scalar.text);
  } else if (scalar.is_number() || scalar.is_null()) {
    add_number(column, scalar.is_null() ? kMissing : scalar.number);
  } else {
    return refused(scalar, Kind::Value);
  }
  return {};
}

}  // namespace

bool Scalar::is_whole() const {
  constexpr double kLargest = 9007199254740992.0;
  return is_number() && std::floor(number) == number && std::abs(number) <= kLargest;
}

std::string Scalar::value_text() const {
  if (type == Type::Integer) return std::to_string(integer);
  return type == Type::Number ? number_text(number) : text;
}

std::string Scalar::shown() const {
  if (is_null()) return "null";
  if (type == Type::Flag) return flag ? "true" : "false";
  return is_text() ? in_quotes(text) : value_text();
}

std::string not_of(Kind kind) { return std::string(kNotOf[static_cast<size_t>(kind)]); }

std::string store(const Member& member, const Scalar& scalar, void* record) {
  switch (member.kind) {
    case Kind::Text:
      return store_text(member, scalar, as<std::string>(member.place(record)));
    case Kind::Number:
      return store_number(member.range, scalar, as<double>(member.place(record)));
    case Kind::Count:
      return store_count(member.range, scalar,
                         as<std::optional<int64_t>>(member.place(record)).emplace());
    case Kind::Value:
      return store_value(scalar, as<std::optional<Value>>(member.place(record)).emplace());
    case Kind::Flag:
      return store_flag(scalar, as<std::optional<bool>>(member.place(record)));
    default:
      return refused(scalar, member.kind);
  }
}

std::string store_item(const Member& member, Kind kind, const Scalar& scalar, void* list) {
  switch (kind) {
    case Kind::Texts:
      return store_text(member, scalar, as<std::vector<std::string>>(list).emplace_back());
    case Kind::Values:
      return store_value(scalar, as<std::vector<Value>>(list).emplace_back());
    case Kind::Counts:
      return store_count(member.range, scalar, as<std::vector<int64_t>>(list).emplace_back());
    case Kind::Numbers: {
      double& number = as<std::vector<double>>(list).emplace_back(kMissing);
      return scalar.is_null() ? "" : store_number(member.range, scalar, number);
    }
    case Kind::Column:
      return store_record(scalar, as<Column>(list));
    case Kind::MatrixRows:
      return refused(scalar, Kind::Numbers);
    default:
      return refused(scalar, Kind::Object);
  }
}

std::string store_value(const Scalar& scalar, Value& value) {
  if (!scalar.is_number() && !scalar.is_text()) return refused(scalar, Kind::Value);
  value.text = scalar.value_text();
  return {};
}

}  // namespace hierfit::fit
