#include "import/read_fit.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>
#include <simdjson.h>

#include "import/kind_of_file.h"
#include "import/member.h"
#include "import/scalar.h"

namespace hierfit::fit {
namespace {

/// A fit document nests six deep; what it does not know may nest deeper.
constexpr size_t kDeepest = 64;
constexpr size_t kMostUnknown = 100;

template <typename T>
T& as(void* target) {
  return *static_cast<T*>(target);
}

/// What an open bracket or brace holds.
struct Frame {
  enum class Type : uint8_t { Object, List, Map, Unknown } type;
  void* target = nullptr;        ///< a record, a list or a map
  const Shape* shape = nullptr;  ///< of `Object`
  /// Of `Object` the one whose value comes, else the one whose value it is.
  const Member* member = nullptr;
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
    return take(
        {.type = Scalar::Type::Integer, .integer = number, .number = static_cast<double>(number)});
  }
  bool number_unsigned(number_unsigned_t number) override {
    const auto integer = static_cast<int64_t>(number);
    if (integer < 0) return number_float(static_cast<double>(number), {});
    return number_integer(integer);
  }
  bool number_float(number_float_t number, const string_t&) override {
    return take({.type = Scalar::Type::Number, .number = number});
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
  bool take(const Scalar& scalar);
  std::string take_into(Frame& frame, const Scalar& scalar);
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
  fail("is " + there + ", which is " + not_of(meant));
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
  names.reserve(list.size());
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
    const auto& columns = as<Columns>(frame.target);
    names.reserve(columns.size());
    for (const Column& column : columns)
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
  const std::string wrong = take_into(frames_.back(), scalar);
  if (!wrong.empty()) fail(wrong);
  return after_value();
}

/// Gives what is wrong with the scalar.
std::string Filler::take_into(Frame& frame, const Scalar& scalar) {
  switch (frame.type) {
    case Frame::Type::Unknown:
      break;
    case Frame::Type::Object:
      if (frame.member == nullptr) break;
      if (!scalar.is_null()) return store(*frame.member, scalar, frame.target);
      frame.seen &= ~(uint64_t{1} << (frame.member - frame.shape->members.data()));
      break;
    case Frame::Type::Map:
      if (frame.kind == Kind::LevelMap) {
        return store_value(scalar,
                           as<Levels>(frame.target).emplace_back(frame.key, Value()).second);
      }
      return "is " + scalar.shown() + ", which is " + not_of(Kind::Values);
    case Frame::Type::List:
      return store_item(*frame.member, frame.kind, scalar, frame.target);
  }
  return {};
}

/// The parser's sentence without its own name and number.
std::string reason_of(std::string_view what) {
  const size_t colon = what.find(": ");
  std::string_view reason = colon == std::string_view::npos ? what : what.substr(colon + 2);
  return std::string(reason.substr(0, 200));
}

/// Says what keeps the byte with that number, from 0, from being JSON, with its line and column.
void fail_at(size_t byte, const std::string& reason, std::string_view text, Problems& problems) {
  const std::string_view before = text.substr(0, byte);
  const auto line = static_cast<size_t>(std::ranges::count(before, '\n')) + 1;
  const size_t start = before.rfind('\n');
  const size_t column = before.size() - (start == std::string_view::npos ? 0 : start + 1) + 1;
  problems.fail("this is no JSON: " + reason, line, column);
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
  fail_at(byte > 0 ? byte - 1 : 0, reason_of(what.what()), text_, problems_);
  return false;
}

/// Hands a document over as the events of a parser. Gives whether the taker wants more of it.
bool tell(const simdjson::dom::element& element, Filler& filler) {
  using Type = simdjson::dom::element_type;
  switch (element.type()) {
    case Type::OBJECT:
      if (!filler.start_object(0)) return false;
      for (const simdjson::dom::key_value_pair member : simdjson::dom::object(element)) {
        std::string key(member.key);
        if (!filler.key(key) || !tell(member.value, filler)) return false;
      }
      return filler.end_object();
    case Type::ARRAY:
      if (!filler.start_array(0)) return false;
      for (const simdjson::dom::element item : simdjson::dom::array(element))
        if (!tell(item, filler)) return false;
      return filler.end_array();
    case Type::INT64:
      return filler.number_integer(int64_t(element));
    case Type::UINT64:
      return filler.number_unsigned(uint64_t(element));
    case Type::DOUBLE:
      return filler.number_float(double(element), {});
    case Type::STRING: {
      std::string text{std::string_view(element)};
      return filler.string(text);
    }
    case Type::BOOL:
      return filler.boolean(bool(element));
    case Type::NULL_VALUE:
      break;
  }
  return filler.null();
}

}  // namespace

Fit read_fit(std::string_view text, Problems& problems) {
  Fit fit;
  const std::string_view kind = kind_of_file(text);
  if (!kind.empty() && kind != kJsonDocument) {
    problems.fail("this is " + std::string(kind) + ", and no fit document");
    return fit;
  }
  const size_t nul = text.find('\0');  // the library would take it for the end
  if (nul != std::string_view::npos) {
    fail_at(nul, "a zero byte stands here", text, problems);
    return fit;
  }
  simdjson::dom::parser parser;
  simdjson::dom::element root;
  if (parser.parse(text.data(), text.size()).get(root) == simdjson::SUCCESS) {
    Filler filler(text, fit, problems);
    tell(root, filler);
    return fit;
  }
  // What the fast parser refuses the other one reads again, up to the place and the reason.
  Filler filler(text, fit, problems);
  nlohmann::json::sax_parse(text.begin(), text.end(), &filler);
  return fit;
}

}  // namespace hierfit::fit
