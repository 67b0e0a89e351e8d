// The command hierfit: what is thrown ends here, as one sentence and an exit status.
#include <string>
#include <unistd.h>

#include "app/complaint.h"
#include "app/environment.h"
#include "app/manual.h"
#include "app/new_file.h"
#include "app/options.h"
#include "app/run.h"
#include "app/signals.h"

namespace {

using namespace hierfit;

constexpr const char* kVersion = "hierfit " HIERFIT_VERSION "\n";

int command(const app::Options& options) {
  std::string text;
  if (options.help) {
    text = app::help_text();
  } else if (options.version) {
    text = kVersion;
  } else if (options.manual) {
    text = app::manual_page();
  } else if (!options.completion.empty()) {
    text = app::completion(options.completion);
  } else {
    return app::run(options);
  }
  app::write_standard_output(text);
  return app::kWritten;
}

}  // namespace

int main(int argument_count, char** arguments) {
  app::occupy_closed_streams();
  app::watch_signals();
  bool colour = false;
  try {
    colour = app::uses_colour("auto", STDERR_FILENO);
    app::choose_temporary_folder();
    const app::Options options = app::parse_options(argument_count, arguments);
    colour = app::uses_colour(options.colour, STDERR_FILENO);
    return command(options);
  } catch (...) {
    const app::Complaint complaint = app::current_complaint();
    app::say(complaint, colour);
    return complaint.status;
  }
}
