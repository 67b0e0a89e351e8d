// What tests of the chart libraries share: a session with a journal, and templates.
#pragma once

#include <sstream>
#include <string>
#include <string_view>

#include "host/chart_data.h"
#include "host/chart_document.h"

#include "embedded/session.h"
#include "output/chart.h"
#include "tests/embedded/sample_inputs.h"

namespace hierfit::test {

/// A session of the thread with its journal. The charts that are sent gather in its document.
class ChartSession {
 public:
  explicit ChartSession(bool with_journal = true)
      : session_(session_input("<StatXML/>", kModel),
                 {.language = "C",
                  .resource_directory = {},
                  .journal = with_journal ? &journal_ : nullptr}) {}

  Session::State& state() { return session_.state(); }
  std::string journal() const { return journal_.str(); }
  VELT_Variable* variable(const std::string& name);
  /// The charts so far.
  std::vector<output::Chart> take_charts();

 private:
  static const std::string kModel;
  std::ostringstream journal_;
  Session session_;
};

/// The text of a template as a writer gets it: "GLMMHistogram" is built in, a name with an ending
/// is a file. A built-in one has each role bound to a variable with this label, and where writers
/// give it a title, that title.
std::string template_text(const std::string& name, const std::string& label = "A label");

/// How often a text holds another.
int count_of(std::string_view text, std::string_view part);

/// A document with a graph that draws nothing, and these sources.
std::string document_of(const std::string& sources);

}  // namespace hierfit::test
