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
void append_json(std::string& out, std::nullptr_t);
void append_json(std::string& out, std::u16string_view text);

class Journal;

/// One line under construction. It is written when it goes.
class Line {
 public:
  Line(Journal& journal, std::string_view call);
  ~Line();
  Line(const Line&) = delete;
  Line& operator=(const Line&) = delete;

  Line& on(Id receiver);

  /// The next argument. What a type of its own looks like, its `append_json` says.
  template <class Value>
  Line& arg(const Value& value) {
    open_argument();
    append_json(text_, value);
    return *this;
  }

  template <class Value>
  Line& result(const Value& value) {
    close_arguments();
    text_ += ",\"result\":";
    append_json(text_, value);
    return *this;
  }

 private:
  void open_argument();
  void close_arguments();

  Journal& journal_;
  std::string& text_;
  bool arguments_open_ = false;
};

/// Writes the journal and numbers the objects. Lines stand in the order of the calls.
class Journal {
 public:
  explicit Journal(std::ostream& out) : out_(out) {}

  /// The id of a new object of a class.
  Id number(const char* class_name) { return {class_name, ++counts_[class_name]}; }
  Line line(std::string_view call) { return Line(*this, call); }

 private:
  friend class Line;
  std::ostream& out_;
  std::string text_;
  std::unordered_map<std::string_view, uint32_t> counts_;
};

}  // namespace hierfit::journal
