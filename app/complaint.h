// What goes wrong, as one sentence and an exit status.
#pragma once

#include <string>

#include "embedded/error.h"

namespace hierfit::app {

/// Exit statuses.
inline constexpr int kWritten = 0;
inline constexpr int kNotReadable = 1;
inline constexpr int kNotPossible = 2;

/// A failure: where, what, and the exit status that it stands for.
struct Complaint {
  Location where;
  std::string sentence;
  int status = kNotPossible;
};

/// What the exception that is being handled says.
Complaint current_complaint();

/// "file:line:column: sentence", as editors read it; "hierfit: ..." for what has no line. Text of
/// others, such as a file name, has no say over the terminal.
std::string complaint_line(const Complaint& complaint, bool colour);

}  // namespace hierfit::app
