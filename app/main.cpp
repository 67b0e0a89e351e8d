// The command hierfit: what is thrown ends here, as one sentence and an exit status.
#include <algorithm>
#include <csignal>
#include <cstring>
#include <exception>
#include <iostream>
#include <new>
#include <string>
#include <string_view>
#include <unistd.h>

#include "app/environment.h"
#include "app/new_file.h"
#include "app/options.h"
#include "app/run.h"
#include "embedded/error.h"

namespace {

using namespace hierfit;

enum ExitStatus { kWritten = 0, kNotReadable = 1, kNotPossible = 2 };

constexpr const char* kVersion = "hierfit " HIERFIT_VERSION "\n";

/// Text of others, such as a file name, has no say over the terminal.
std::string without_controls(std::string text) {
  std::ranges::replace_if(
      text, [](unsigned char c) { return c < 0x20 || c == 0x7F; }, ' ');
  return text;
}

/// "file:line:column: sentence", as editors read it; "hierfit: ..." for what has no line.
int complain(const Location& where, const std::string& sentence, int status, bool colour) {
  std::string head = where.text();
  if (where.line == 0) head = head.empty() ? "hierfit" : "hierfit: " + head;
  head = without_controls(head) + ":";
  if (colour) head = "\033[1m" + head + "\033[0m";
  std::cerr << head << " " << without_controls(sentence) << "\n";
  return status;
}

int command(const app::Options& options) {
  if (options.help) {
    app::write_standard_output(app::help_text());
  } else if (options.version) {
    app::write_standard_output(kVersion);
  } else {
    app::run(options);
  }
  return kWritten;
}

}  // namespace

int main(int argument_count, char** arguments) {
  // A reader that leaves early shows as an error of the write.
  std::signal(SIGPIPE, SIG_IGN);
  bool colour = app::uses_colour("auto", STDERR_FILENO);
  try {
    const app::Options options = app::parse_options(argument_count, arguments);
    colour = app::uses_colour(options.colour, STDERR_FILENO);
    return command(options);
  } catch (const app::UsageError& error) {
    return complain({}, std::string(error.what()) + ". Try 'hierfit --help'", kNotPossible, colour);
  } catch (const DocumentError& error) {
    return complain(error.where(), error.what(), kNotReadable, colour);
  } catch (const Error& error) {
    return complain(error.where(), error.what(), kNotPossible, colour);
  } catch (const std::bad_alloc&) {
    return complain({}, "there is not enough memory", kNotPossible, colour);
  } catch (const std::exception& error) {
    return complain({}, std::string("the report cannot be made: ") + error.what(), kNotPossible,
                    colour);
  }
}
