// The host call journal: one JSON object a line for each call across the host boundary.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <unordered_map>

namespace hierfit::journal {

/// Names an object of the host: "BpPivotTable#2". Number 0 stands for the one object of a class
/// that has no number, the procedure.
struct Id {
  const char* class_name = "";
  uint32_t number = 0;
};

void append_json(std::string& out, std::string_view text);
void append_json(std::string& out, const std::string& text);
void append_json(std::string& out, const char* text);
void append_json(std::string& out, bool value);
void append_json(std::string& out, int32_t value);
void append_json(std::string& out, double value);
void append_json(std::string& out, Id id);
void append_json(std::string& out, const Id* id);
void append_json(std::string& out, std::nullptr_t);
void append_json(std::string& out, std::u16string_view text);

/// What a call gives back; it stands behind the arguments.
template <class Value>
struct Result {
  const Value& value;
};
template <class Value>
Result(const Value&) -> Result<Value>;

class Journal;

/// One line under construction. It is written when it goes, also when the call throws. A line of no
/// journal is nothing.
class Line {
 public:
  Line(Journal* journal, std::string_view call);
  ~Line();
  Line(const Line&) = delete;
  Line& operator=(const Line&) = delete;

  Line& on(Id receiver);

  /// The next arguments, and perhaps a `Result` at the end. What a type of its own looks like, its
  /// `append_json` says.
  template <class... Values>
  Line& add(const Values&... values) {
    if (journal_ != nullptr) (add_one(values), ...);
    return *this;
  }

 private:
  template <class Value>
  void add_one(const Value& value) {
    open_argument();
    append_json(text(), value);
  }
  template <class Value>
  void add_one(const Result<Value>& result) {
    open_result();
    append_json(text(), result.value);
  }
  std::string& text();
  void open_argument();
  void open_result();
  void close_arguments();

  Journal* const journal_;
  bool arguments_open_ = false;
};

/// Writes the journal and numbers the objects. Lines stand in the order of the calls.
class Journal {
 public:
  explicit Journal(std::ostream& out) : out_(out) {}

  /// The id of a new object of a class.
  Id number(const char* class_name) { return {class_name, ++counts_[class_name]}; }

 private:
  friend class Line;
  std::ostream& out_;
  std::string text_;
  std::unordered_map<std::string_view, uint32_t> counts_;
};

/// Writes the line of a call that no object receives: its arguments, and a `Result` last where it
/// gives something. One branch when there is no journal.
template <class... Values>
void note(Journal* journal, std::string_view call, const Values&... values) {
  if (journal != nullptr) Line(journal, call).add(values...);
}

/// An object that receives calls, as the journal knows it.
class Receiver {
 public:
  /// An object that has its id, or gets one by `number`. A null journal writes nothing.
  explicit Receiver(Journal* journal, Id id = {}) : journal_(journal), id_(id) {}
  /// A new object of a class.
  Receiver(Journal* journal, const char* class_name) : journal_(journal) { number(class_name); }

  Journal* journal() const { return journal_; }
  const Id& id() const { return id_; }

  /// Gives the object the next number of its class when it has none.
  void number(const char* class_name) {
    if (journal_ != nullptr && id_.number == 0) id_ = journal_->number(class_name);
  }

  /// Writes the line of a call on this object, as `journal::note` does.
  template <class... Values>
  void note(std::string_view call, const Values&... values) const {
    if (journal_ != nullptr) Line(journal_, call).on(id_).add(values...);
  }

 private:
  Journal* journal_;
  Id id_;
};

}  // namespace hierfit::journal
