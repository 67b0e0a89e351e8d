// A fault that one operation of this host has when it is told to, and the count of all of them.
#pragma once

#include <cstdint>

namespace tiny {

/// What the operation does instead of its work: it throws, it gives nothing (null, false, an empty
/// text), or it gives what no host should (a walk that steps to null, an index beyond all).
enum class Fault { None, Throws, GivesNothing, GivesNonsense };

/// Has the `at`-th operation from here on, counted from 1, do that.
void plan(Fault fault, long at);
/// How many operations there were since the last plan.
long operations();
/// Whether the host itself runs, at the time of asking.
bool is_inside();

/// Marks what runs as the host's own.
class Inside {
 public:
  Inside();
  ~Inside();
  Inside(const Inside&) = delete;
  Inside& operator=(const Inside&) = delete;
};

/// An operation of the host while it runs. A name is counted for the comparison with another host.
class Call {
 public:
  explicit Call(const char* name = nullptr);

  bool gives_nothing() const { return fault_ == Fault::GivesNothing; }
  bool gives_nonsense() const { return fault_ == Fault::GivesNonsense; }
  /// The result of the work, unless a fault is planned for it.
  template <class Value>
  Value result(Value good, Value nothing, Value nonsense) const {
    return gives_nothing() ? nothing : gives_nonsense() ? nonsense : good;
  }

 private:
  Fault fault_;
  Inside inside_;
};

}  // namespace tiny
