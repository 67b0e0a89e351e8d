#include "app/complaint.h"

#include <algorithm>
#include <exception>
#include <new>

#include "app/options.h"

namespace hierfit::app {
namespace {

std::string without_controls(std::string text) {
  std::ranges::replace_if(
      text, [](unsigned char c) { return c < 0x20 || c == 0x7F; }, ' ');
  return text;
}

}  // namespace

Complaint current_complaint() {
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
    return {{}, "there is not enough memory", kNotPossible};
  } catch (const std::exception& error) {
    return {{}, std::string("the report cannot be made: ") + error.what(), kNotPossible};
  }
}

std::string complaint_line(const Complaint& complaint, bool colour) {
  std::string head = complaint.where.text();
  if (complaint.where.line == 0) head = head.empty() ? "hierfit" : "hierfit: " + head;
  head = without_controls(head) + ":";
  if (colour) head = "\033[1m" + head + "\033[0m";
  return head + " " + without_controls(complaint.sentence) + "\n";
}

}  // namespace hierfit::app
