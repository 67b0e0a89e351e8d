// What goes wrong, as one sentence and an exit status.
#pragma once

#include <string>
#include <string_view>

#include "app/memory.h"
#include "embedded/error.h"

namespace hierfit::app {

/// Exit statuses.
inline constexpr int kWritten = 0;
inline constexpr int kNotReadable = 1;
inline constexpr int kNotPossible = 2;

/// A failure or a warning: where, what, and the exit status that it stands for.
struct Complaint {
  Location where;
  std::string sentence;  ///< empty: there is not enough memory, so that saying so needs none
  int status = kNotPossible;
  bool is_warning = false;

  std::string_view text() const { return sentence.empty() ? kNoMemory : sentence; }
};

/// What the exception that is being handled says; memory when that ran out on the way to it. `file`
/// stands for the place of one that knows none.
Complaint current_complaint(std::string_view file = {}) noexcept;

/// "file:line:column: sentence", as editors read it; "hierfit: ..." for what has no line. Text of
/// others, such as a file name, has no say over the terminal and a bounded share of the line.
std::string complaint_line(const Complaint& complaint, bool colour);

/// Writes the line to standard error.
void say(const Complaint& complaint, bool colour) noexcept;

}  // namespace hierfit::app
