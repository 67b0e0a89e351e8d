// A run on the embedded host, and all text forms of what it leaves.
#pragma once

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "backend/hierfit/frame/HFITProcCustom.h"
#include "embedded/session.h"
#include "report/preset.h"
#include "report/report.h"
#include "report/words.h"

namespace hierfit::fuzz {

inline std::string text_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// A document of the tests.
inline std::string test_document(const std::string& name) {
  return text_of(HIERFIT_SOURCE_DIR "/tests/documents/" + name);
}

/// Renders the forms that are text. `choice` chooses the house style and how the text is set.
inline void render_text_forms(output::Document& document, size_t choice) {
  report::apply(report::kPresets[choice % std::size(report::kPresets)], document);
  report::Options options;
  options.width = choice % 3 * 60;
  options.chart_width = choice % 2 == 0 ? 720 : 300;
  for (const std::string_view name :
       {"html", "text", "json", "csv", "markdown", "latex", "svg", "vl.json"}) {
    const report::Form* form = report::form_by_name(name);
    if (form == nullptr || form->render(document, options).empty()) std::abort();
  }
}

/// Whether the pair was read; what a run leaves goes through the forms.
inline bool run(std::string model,
                std::string result,
                std::optional<std::string> dictionary,
                size_t choice = 0) {
  constexpr std::string_view kLanguages[] = {"en", "de", "fr", "ja", "C"};
  try {
    Session session({.pmml_name = "model",
                     .pmml = std::move(model),
                     .statxml_name = "result",
                     .statxml = std::move(result),
                     .dictionary_name = "dictionary",
                     .dictionary = std::move(dictionary)},
                    {.language = std::string(kLanguages[choice % std::size(kLanguages)]),
                     .resource_directory = HIERFIT_BINARY_DIR "/share/hierfit",
                     .journal = nullptr,
                     .words = report::kWords});
    HFITProcCustom procedure;
    session.run(procedure);
    output::Document document = session.take_document();
    render_text_forms(document, choice);
    return true;
  } catch (const Error&) {
    return false;  // documents that cannot be read are the usual case here
  }
}

}  // namespace hierfit::fuzz
