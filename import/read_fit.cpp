#include "import/read_fit.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <set>

#include "import/column.h"
#include "import/kind_of_file.h"
#include "import/member.h"
#include "import/number_text.h"

namespace hierfit::fit {
namespace {

/// A fit document nests six deep; what it does not know may nest deeper.
constexpr size_t kDeepest = 64;
constexpr size_t kMostUnknown = 100;

/// What the kinds are called in a message, in the order of `Kind`.
constexpr std::string_view kKindNames[] = {"text",
                                           "number",
                                           "whole number",
                                           "true or false",
                                           "text or number",
                                           "list of texts",
                                           "list of numbers",
                                           "list of whole numbers",
                                           "list of values",
                                           "list of lists of numbers",
                                           "object of values",
                                           "object of lists",
                                           "list of values",
                                           "object of lists",
                                           "object",
                                           "list of objects"};
static_assert(std::size(kKindNames) == static_cast<size_t>(Kind::Objects) + 1);

std::string name_of(Kind kind) {
  return std::string(kind == Kind::Flag ? "" : "no ") +
         (kind == Kind::Flag ? "neither true nor false"
                             : std::string(kKindNames[static_cast<size_t>(kind)]));
}

/// What stands in the document where no list and no object begins.
struct Scalar {
  enum class Type : uint8_t { Null, Flag, Number, Text } type = Type::Null;
  bool flag = false;
  double number = 0;
  std::string text = {};  ///< of a number, too

  bool is_null() const { return type == Type::Null; }
  bool is_number() const { return type == Type::Number; }
  bool is_text() const { return type == Type::Text; }
  bool is_whole() const {
    constexpr double kLargest = 9007199254740992.0;
    return is_number() && std::floor(number) == number && std::abs(number) <= kLargest;
  }
  std::string shown() const {
    switch (type) {
      case Type::Null:
        return "null";
      case Type::Flag:
        return flag ? "true" : "false";
      case Type::Number:
        return text;
      case Type::Text:
        break;
    }
    return in_quotes(text);
  }
};

template <typename T>
T& as(void* target) {
  return *static_cast<T*>(target);
}

/// What an open bracket or brace holds.
struct Frame {
  enum class Type : uint8_t { Object, List, Map, Unknown } type;
  void* target = nullptr;        ///< a record, a list or a map
  const Shape* shape = nullptr;  ///< of `Object`
  const Member* member =
      nullptr;               ///< of `Object`: the one whose value comes; else whose value it is
  Kind kind = Kind::Object;  ///< of `List` and `Map`
  uint64_t seen = 0;         ///< of `Object`: the members that were there
  size_t index = 0;          ///< of `List`: the items so far
  std::string key = {};      ///< the last one
};

/// Takes the events of the parser and fills records by their binding tables.
class Filler : public nlohmann::json_sax<nlohmann::json> {
 public:
  Filler(std::string_view text, Fit& fit, Problems& problems)
      : text_(text), fit_(fit), problems_(problems) {}

  bool null() override { return take({}); }
  bool boolean(bool flag) override { return take({.type = Scalar::Type::Flag, .flag = flag}); }
  bool number_integer(number_integer_t number) override {
    return take_number(static_cast<double>(number), std::to_string(number));
  }
  bool number_unsigned(number_unsigned_t number) override {
    return take_number(static_cast<double>(number), std::to_string(number));
  }
  bool number_float(number_float_t number, const string_t&) override {
    return take_number(number, number_text(number));
  }
  bool string(string_t& text) override {
    return take({.type = Scalar::Type::Text, .text = std::move(text)});
  }
  bool binary(binary_t&) override { return false; }

  bool key(string_t& key) override;
  bool start_object(size_t) override;
  bool end_object() override;
  bool start_array(size_t) override;
  bool end_array() override {
    frames_.pop_back();
    return after_value();
  }
  bool parse_error(size_t byte,
                   const std::string&,
                   const nlohmann::detail::exception& what) override;

 private:
  bool take_number(double number, std::string text) {
    return take({.type = Scalar::Type::Number, .number = number, .text = std::move(text)});
  }
  bool take(const Scalar& scalar);
  void store(const Member& member, const Scalar& scalar, void* target);
  void store_item(const Frame& frame, const Scalar& scalar);
  void store_text(const Member& member, const Scalar& scalar, std::string& target);
  void store_number(Range range, const Scalar& scalar, double& target);
  void store_count(Range range, const Scalar& scalar, int64_t& target);
  void store_value(const Scalar& scalar, Value& target);
  bool after_value();
  bool push(Frame frame);
  bool push_unknown() { return push({.type = Frame::Type::Unknown}); }
  bool refuse(const std::string& there, Kind meant);
  bool start_item_object(const Frame& frame);
  bool start_item_array(const Frame& frame);
  void find_member(const std::string& key);
  void warn_of_unknown(const Frame& frame, const std::string& key);
  void check_lacking(const Frame& frame);
  void check_keys(const Frame& frame);

  std::string path(size_t depth) const;
  std::string path() const { return path(frames_.size()); }
  /// The path of the innermost open object.
  std::string place() const;
  void fail(const std::string& what) { problems_.fail(path() + " " + what); }

  std::string_view text_;
  Fit& fit_;
  Problems& problems_;
  std::vector<Frame> frames_;
  std::set<std::pair<const Shape*, std::string>> unknown_;
};

std::string Filler::path(size_t depth) const {
  std::string text;
  for (size_t at = 0; at < depth; ++at) {
    const Frame& frame = frames_[at];
    if (frame.type == Frame::Type::List) {
      text += '[' + std::to_string(frame.index) + ']';
    } else {
      text += (text.empty() ? "" : ".") + frame.key;
    }
  }
  return text.empty() ? "the document" : text;
}

std::string Filler::place() const {
  return frames_.size() < 2 ? "the document" : path(frames_.size() - 1);
}

bool Filler::push(Frame frame) {
  frames_.push_back(std::move(frame));
  if (frames_.size() <= kDeepest) return true;
  problems_.fail("the document nests deeper than " + std::to_string(kDeepest) + " levels");
  return false;
}

bool Filler::refuse(const std::string& there, Kind meant) {
  fail("is " + there + ", which is " + name_of(meant));
  return push_unknown();
}

bool Filler::key(string_t& key) {
  Frame& frame = frames_.back();
  frame.key = key;
  if (frame.type == Frame::Type::Object) find_member(key);
  return true;
}

void Filler::find_member(const std::string& key) {
  Frame& frame = frames_.back();
  const auto members = frame.shape->members;
  const auto found = std::ranges::find(members, key, &Member::name);
  frame.member = found == members.end() ? nullptr : &*found;
  if (frame.member == nullptr) {
    warn_of_unknown(frame, key);
    return;
  }
  const uint64_t bit = uint64_t{1} << (found - members.begin());
  if ((frame.seen & bit) != 0) {
    problems_.fail(place() + " has the member " + key + " twice");
  }
  frame.seen |= bit;
}

void Filler::warn_of_unknown(const Frame& frame, const std::string& key) {
  if (unknown_.size() >= kMostUnknown || !unknown_.insert({frame.shape, key}).second) return;
  std::vector<std::string_view> names;
  for (const Member& member : frame.shape->members)
    names.push_back(member.name);
  problems_.warn(place() + " has a member " + in_quotes(key) + " that is not known" +
                 suggestion(key, names));
}

void Filler::check_lacking(const Frame& frame) {
  for (size_t at = 0; at < frame.shape->members.size(); ++at) {
    const Member& member = frame.shape->members[at];
    const bool lacks = (frame.seen >> at & 1) == 0;
    if (lacks && member.need == Need::Required) {
      problems_.fail(place() + " lacks the member " + std::string(member.name));
    }
  }
}

bool Filler::start_object(size_t) {
  if (frames_.empty()) {
    return push({.type = Frame::Type::Object, .target = &fit_, .shape = &shape_of<Fit>()});
  }
  const Frame& frame = frames_.back();
  if (frame.type == Frame::Type::List) return start_item_object(frame);
  if (frame.type == Frame::Type::Map) return refuse("an object", Kind::Values);
  const Member* member = frame.member;
  if (frame.type == Frame::Type::Unknown || member == nullptr) return push_unknown();
  switch (member->kind) {
    case Kind::Object:
      return push({.type = Frame::Type::Object,
                   .target = member->place(frame.target),
                   .shape = &member->shape()});
    case Kind::LevelMap:
    case Kind::ColumnMap:
    case Kind::ListMap:
      return push({.type = Frame::Type::Map,
                   .target = member->place(frame.target),
                   .member = member,
                   .kind = member->kind});
    default:
      return refuse("an object", member->kind);
  }
}

bool Filler::start_item_object(const Frame& frame) {
  if (frame.kind != Kind::Objects) return refuse("an object", Kind::Value);
  const Shape& shape = frame.member->shape();
  return push(
      {.type = Frame::Type::Object, .target = frame.member->append(frame.target), .shape = &shape});
}

bool Filler::end_object() {
  const Frame frame = std::move(frames_.back());
  if (frame.type == Frame::Type::Object) check_lacking(frames_.back() = frame);
  if (frame.type == Frame::Type::Map) check_keys(frames_.back() = frame);
  frames_.pop_back();
  return after_value();
}

template <typename List>
std::vector<std::string_view> sorted_names(const List& list) {
  std::vector<std::string_view> names;
  for (const auto& [name, value] : list)
    names.push_back(name);
  std::ranges::sort(names);
  return names;
}

void Filler::check_keys(const Frame& frame) {
  std::vector<std::string_view> names;
  if (frame.kind == Kind::LevelMap) names = sorted_names(as<Levels>(frame.target));
  if (frame.kind == Kind::ListMap) names = sorted_names(as<ValueLists>(frame.target));
  if (frame.kind == Kind::ColumnMap) {
    for (const Column& column : as<Columns>(frame.target))
      names.push_back(column.name);
    std::ranges::sort(names);
  }
  const auto twice = std::ranges::adjacent_find(names);
  if (twice == names.end()) return;
  problems_.fail(place() + " has the member " + std::string(*twice) + " twice");
}

bool Filler::start_array(size_t) {
  if (frames_.empty()) {
    problems_.fail("the document is a list, where an object is meant");
    return false;
  }
  const Frame& frame = frames_.back();
  if (frame.type == Frame::Type::List || frame.type == Frame::Type::Map) {
    return start_item_array(frame);
  }
  const Member* member = frame.member;
  if (frame.type == Frame::Type::Unknown || member == nullptr) return push_unknown();
  switch (member->kind) {
    case Kind::Texts:
    case Kind::Numbers:
    case Kind::Counts:
    case Kind::Values:
    case Kind::MatrixRows:
    case Kind::Column:
    case Kind::Objects:
      return push({.type = Frame::Type::List,
                   .target = member->place(frame.target),
                   .member = member,
                   .kind = member->kind});
    default:
      return refuse("a list", member->kind);
  }
}

bool Filler::start_item_array(const Frame& frame) {
  Frame inner = {.type = Frame::Type::List, .member = frame.member};
  if (frame.kind == Kind::MatrixRows) {
    inner.kind = Kind::Numbers;
    inner.target = &as<Matrix>(frame.target).emplace_back();
  } else if (frame.kind == Kind::ColumnMap) {
    inner.kind = Kind::Column;
    Column& column = as<Columns>(frame.target).emplace_back();
    column.name = frame.key;
    inner.target = &column;
  } else if (frame.kind == Kind::ListMap) {
    inner.kind = Kind::Values;
    inner.target =
        &as<ValueLists>(frame.target).emplace_back(frame.key, std::vector<Value>()).second;
  } else {
    return refuse("a list", frame.kind == Kind::Objects ? Kind::Object : Kind::Value);
  }
  return push(std::move(inner));
}

/// The value of a list's item or of a member has come to its end.
bool Filler::after_value() {
  if (!frames_.empty()) ++frames_.back().index;
  return !problems_.is_full();
}

bool Filler::take(const Scalar& scalar) {
  if (frames_.empty()) {
    problems_.fail("the document is " + scalar.shown() + ", which is no object");
    return false;
  }
  const Frame& frame = frames_.back();
  switch (frame.type) {
    case Frame::Type::Unknown:
      break;
    case Frame::Type::Object:
      if (frame.member == nullptr) break;
      if (scalar.is_null()) {
        const auto at = frame.member - frame.shape->members.data();
        frames_.back().seen &= ~(uint64_t{1} << at);
        break;
      }
      store(*frame.member, scalar, frame.target);
      break;
    case Frame::Type::Map:
      if (frame.kind == Kind::LevelMap) {
        store_value(scalar, as<Levels>(frame.target).emplace_back(frame.key, Value()).second);
      } else {
        fail("is " + scalar.shown() + ", which is no list");
      }
      break;
    case Frame::Type::List:
      store_item(frame, scalar);
      break;
  }
  return after_value();
}

void Filler::store(const Member& member, const Scalar& scalar, void* record) {
  const auto field = [&] { return member.place(record); };
  switch (member.kind) {
    case Kind::Text:
      return store_text(member, scalar, as<std::string>(field()));
    case Kind::Number:
      return store_number(member.range, scalar, as<double>(field()));
    case Kind::Count:
      return store_count(member.range, scalar, as<std::optional<int64_t>>(field()).emplace());
    case Kind::Value:
      return store_value(scalar, as<std::optional<Value>>(field()).emplace());
    case Kind::Flag:
      if (scalar.type == Scalar::Type::Flag) {
        as<std::optional<bool>>(field()) = scalar.flag;
        return;
      }
      break;
    default:
      break;
  }
  fail("is " + scalar.shown() + ", which is " + name_of(member.kind));
}

void Filler::store_item(const Frame& frame, const Scalar& scalar) {
  const Range range = frame.member->range;
  switch (frame.kind) {
    case Kind::Texts:
      return store_text(*frame.member, scalar,
                        as<std::vector<std::string>>(frame.target).emplace_back());
    case Kind::Values:
      return store_value(scalar, as<std::vector<Value>>(frame.target).emplace_back());
    case Kind::Counts:
      return store_count(range, scalar, as<std::vector<int64_t>>(frame.target).emplace_back());
    case Kind::Numbers: {
      double& number = as<std::vector<double>>(frame.target).emplace_back(kMissing);
      if (!scalar.is_null()) store_number(range, scalar, number);
      return;
    }
    case Kind::Column:
      if (scalar.type == Scalar::Type::Flag) break;
      return scalar.is_text() ? add_text(as<Column>(frame.target), scalar.text)
                              : add_number(as<Column>(frame.target),
                                           scalar.is_null() ? kMissing : scalar.number);
    case Kind::MatrixRows:
      return fail("is " + scalar.shown() + ", which is no list of numbers");
    case Kind::Objects:
      return fail("is " + scalar.shown() + ", which is no object");
    default:
      break;
  }
  fail("is " + scalar.shown() + ", which is no text or number");
}

void Filler::store_text(const Member& member, const Scalar& scalar, std::string& target) {
  if (!scalar.is_text()) {
    fail("is " + scalar.shown() + ", which is no text");
    return;
  }
  if (!member.words.empty() && find_word(member.words, scalar.text) == nullptr) {
    const auto names = names_of(member.words);
    const std::string wanted =
        names.size() == 1 ? "not " + std::string(names[0]) : "none of " + listed(names);
    fail("is " + scalar.shown() + ", which is " + wanted + suggestion(scalar.text, names));
    return;
  }
  target = scalar.text;
}

std::string range_text(Range range) {
  const std::string ends =
      range.most > 1e300 ? " of " + number_text(range.least) + " or more"
                         : " from " + number_text(range.least) + " to " + number_text(range.most);
  return range.open ? " between " + number_text(range.least) + " and " + number_text(range.most)
                    : ends;
}

void Filler::store_number(Range range, const Scalar& scalar, double& target) {
  if (!scalar.is_number()) {
    fail("is " + scalar.shown() + ", which is no number");
  } else if (!range.holds(scalar.number)) {
    fail("is " + scalar.shown() + ", which is no number" + range_text(range));
  } else {
    target = scalar.number;
  }
}

void Filler::store_count(Range range, const Scalar& scalar, int64_t& target) {
  if (!scalar.is_whole()) {
    fail("is " + scalar.shown() + ", which is no whole number");
  } else if (!range.holds(scalar.number)) {
    fail("is " + scalar.shown() + ", which is no whole number" + range_text(range));
  } else {
    target = static_cast<int64_t>(scalar.number);
  }
}

void Filler::store_value(const Scalar& scalar, Value& target) {
  if (scalar.is_number() || scalar.is_text()) {
    target.text = scalar.text;
  } else {
    fail("is " + scalar.shown() + ", which is no text or number");
  }
}

/// The parser's sentence without its own name and number.
std::string reason_of(std::string_view what) {
  const size_t colon = what.find(": ");
  std::string_view reason = colon == std::string_view::npos ? what : what.substr(colon + 2);
  return std::string(reason.substr(0, 200));
}

bool Filler::parse_error(size_t byte,
                         const std::string& token,
                         const nlohmann::detail::exception& what) {
  constexpr int kOutOfRange = 406;
  if (what.id == kOutOfRange) {
    problems_.fail(path() + " is " + in_quotes(token) +
                   ", which is beyond the numbers of a double");
    return false;
  }
  const std::string_view before = text_.substr(0, byte > 0 ? byte - 1 : 0);
  const auto line = static_cast<size_t>(std::ranges::count(before, '\n')) + 1;
  const size_t start = before.rfind('\n');
  const size_t column = before.size() - (start == std::string_view::npos ? 0 : start + 1) + 1;
  problems_.fail("this is no JSON: " + reason_of(what.what()), line, column);
  return false;
}

}  // namespace

Fit read_fit(std::string_view text, Problems& problems) {
  Fit fit;
  const std::string_view kind = kind_of_file(text);
  if (!kind.empty() && kind != kJsonDocument) {
    problems.fail("this is " + std::string(kind) + ", and no fit document");
    return fit;
  }
  Filler filler(text, fit, problems);
  nlohmann::json::sax_parse(text.begin(), text.end(), &filler);
  return fit;
}

}  // namespace hierfit::fit
