// Binding tables: the members of the objects of a fit document, and the fields that they fill.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string_view>
#include <type_traits>
#include <utility>

#include "import/fit.h"
#include "import/words.h"

namespace hierfit::fit {

/// What stands in a member.
enum class Kind : uint8_t {
  Text,
  Number,
  Count,  ///< a whole number
  Flag,   ///< true or false
  Value,  ///< a text or a number
  Texts,  ///< lists of these
  Numbers,
  Counts,
  Values,
  MatrixRows,  ///< a list of lists of numbers
  LevelMap,    ///< an object of values by variable
  ColumnMap,   ///< an object of lists of values by variable
  Column,      ///< a list of values
  ListMap,     ///< the same, as texts
  Object,
  Objects,
};

struct Member;

/// An object: its members.
struct Shape {
  std::span<const Member> members;
};

/// What the range of numbers is, both ends included unless `open`.
struct Range {
  double least = -std::numeric_limits<double>::max();
  double most = std::numeric_limits<double>::max();
  bool open = false;

  bool holds(double number) const {
    return open ? number > least && number < most : number >= least && number <= most;
  }
  bool is_bounded() const { return least > -1e300 || most < 1e300; }
};

inline constexpr Range kAny;
inline constexpr Range kNotNegative = {0};
inline constexpr Range kProbability = {0, 1};
inline constexpr Range kInsideProbability = {0, 1, true};

enum class Need : bool { Optional, Required };

/// One member of an object.
struct Member {
  std::string_view name;
  Kind kind;
  /// The field in its record; the record of an object, which it makes if need be.
  void* (*place)(void* record);
  void* (*append)(void* list) = nullptr;  ///< of `Objects`: a new record
  const Shape& (*shape)() = nullptr;      ///< of `Object` and `Objects`
  Range range = kAny;
  std::span<const Word> words = {};  ///< of `Text` and `Texts`: all that may stand there
  Need need = Need::Optional;

  constexpr Member required() const {
    Member member = *this;
    member.need = Need::Required;
    return member;
  }
  constexpr Member in(Range wanted) const {
    Member member = *this;
    member.range = wanted;
    return member;
  }
  constexpr Member of(std::span<const Word> wanted) const {
    Member member = *this;
    member.words = wanted;
    return member;
  }
};

/// The members of a record; each record of a fit document has its own.
template <typename Record>
const Shape& shape_of();
template <>
const Shape& shape_of<Fit>();

namespace member_detail {

template <typename T>
struct Element {};
template <typename T>
struct Element<std::vector<T>> {
  using Type = T;
};
template <typename T>
struct Element<std::optional<T>> {
  using Type = T;
};

template <typename T>
inline constexpr bool kIsVector = false;
template <typename T>
inline constexpr bool kIsVector<std::vector<T>> = true;
template <typename T>
inline constexpr bool kIsOptional = false;
template <typename T>
inline constexpr bool kIsOptional<std::optional<T>> = true;

template <typename T>
constexpr Kind kind_of() {
  if constexpr (std::is_same_v<T, std::string>) return Kind::Text;
  if constexpr (std::is_same_v<T, double>) return Kind::Number;
  if constexpr (std::is_same_v<T, std::optional<int64_t>>) return Kind::Count;
  if constexpr (std::is_same_v<T, std::optional<bool>>) return Kind::Flag;
  if constexpr (std::is_same_v<T, std::optional<Value>>) return Kind::Value;
  if constexpr (std::is_same_v<T, std::vector<std::string>>) return Kind::Texts;
  if constexpr (std::is_same_v<T, std::vector<double>>) return Kind::Numbers;
  if constexpr (std::is_same_v<T, std::vector<int64_t>>) return Kind::Counts;
  if constexpr (std::is_same_v<T, std::vector<Value>>) return Kind::Values;
  if constexpr (std::is_same_v<T, Matrix>) return Kind::MatrixRows;
  if constexpr (std::is_same_v<T, Levels>) return Kind::LevelMap;
  if constexpr (std::is_same_v<T, Columns>) return Kind::ColumnMap;
  if constexpr (std::is_same_v<T, Column>) return Kind::Column;
  if constexpr (std::is_same_v<T, ValueLists>) {
    return Kind::ListMap;
  }
  return kIsVector<T> ? Kind::Objects : Kind::Object;
}

}  // namespace member_detail

/// Makes the members of a record from its fields; the kind is told by the field's type.
template <typename Record>
struct MembersOf {
  template <auto Field>
  static constexpr Member make(std::string_view name) {
    using namespace member_detail;
    using T = std::remove_cvref_t<decltype(std::declval<Record&>().*Field)>;
    constexpr Kind kKind = kind_of<T>();
    Member member = {.name = name, .kind = kKind, .place = &place<Field>};
    if constexpr (kKind == Kind::Objects) {
      member.append = &append<T>;
      member.shape = &shape_of<typename Element<T>::Type>;
    } else if constexpr (kKind == Kind::Object && kIsOptional<T>) {
      member.shape = &shape_of<typename Element<T>::Type>;
    } else if constexpr (kKind == Kind::Object) {
      member.shape = &shape_of<T>;
    }
    return member;
  }

 private:
  template <auto Field>
  static void* place(void* record) {
    using namespace member_detail;
    auto& field = static_cast<Record*>(record)->*Field;
    using T = std::remove_cvref_t<decltype(field)>;
    if constexpr (kIsOptional<T> && kind_of<T>() == Kind::Object) return &field.emplace();
    return &field;
  }

  template <typename List>
  static void* append(void* list) {
    return &static_cast<List*>(list)->emplace_back();
  }
};

/// Several lists of members as one.
template <size_t A, size_t B>
constexpr std::array<Member, A + B> operator+(const std::array<Member, A>& a,
                                              const std::array<Member, B>& b) {
  std::array<Member, A + B> all{};
  for (size_t at = 0; at < A; ++at)
    all[at] = a[at];
  for (size_t at = 0; at < B; ++at)
    all[A + at] = b[at];
  return all;
}

}  // namespace hierfit::fit
