#include "app/complaint.h"

#include <algorithm>
#include <exception>
#include <iostream>
#include <new>

#include "app/options.h"
#include "report/text/display_text.h"

namespace hierfit::app {
namespace {

/// The bytes of a sentence or a path that a message shows of its head and of its end; paths that
/// the system takes are never longer.
constexpr size_t kShownHead = 3072;
constexpr size_t kShownEnd = 1024;

bool is_inside_character(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

/// A text of any length without its middle.
std::string bounded(std::string_view text) {
  if (text.size() <= kShownHead + kShownEnd) return std::string(text);
  size_t head = kShownHead;
  size_t end = text.size() - kShownEnd;
  while (head > 0 && is_inside_character(text[head]))
    --head;
  while (end < text.size() && is_inside_character(text[end]))
    ++end;
  return std::string(text.substr(0, head)) + "\u2026" + std::string(text.substr(end));
}

/// The text on one line.
std::string shown(std::string_view text) {
  std::string line = bounded(text);
  std::ranges::replace(line, '\n', ' ');
  return report::text::printable(line);
}

Complaint complaint_of_exception() {
  try {
    throw;
  } catch (const UsageError& error) {
    std::string sentence = error.what();
    if (!sentence.ends_with('?')) sentence += '.';
    return {{}, sentence + " Try 'hierfit --help'", kNotPossible};
  } catch (const DocumentError& error) {
    return {error.where(), error.what(), kNotReadable};
  } catch (const Error& error) {
    return {error.where(), error.what(), kNotPossible};
  } catch (const std::bad_alloc&) {
    return {};
  } catch (const std::exception& error) {
    return {{}, std::string("the report cannot be made: ") + error.what(), kNotPossible};
  }
}

}  // namespace

Complaint current_complaint(std::string_view file) noexcept {
  Complaint complaint;
  try {
    if (!memory_ran_out()) complaint = complaint_of_exception();
    if (complaint.where.file.empty()) complaint.where.file = file;
  } catch (const std::bad_alloc&) {
    // Without a place, then.
  }
  return complaint;
}

std::string complaint_line(const Complaint& complaint, bool colour) {
  Location where = complaint.where;
  where.file = shown(where.file);
  std::string head = where.text();
  if (where.line == 0) head = head.empty() ? "hierfit" : "hierfit: " + head;
  head += ":";
  if (colour) head = "\033[1m" + head + "\033[0m";
  if (complaint.is_warning) head += " warning:";
  return head + " " + shown(complaint.text()) + "\n";
}

void say(const Complaint& complaint, bool colour) noexcept {
  try {
    std::cerr << complaint_line(complaint, colour);
  } catch (const std::bad_alloc&) {
    complain_of_memory();
  }
}

}  // namespace hierfit::app
