// Feeds the import of fit documents and, for a fit that it takes, the module and the forms: what
// the import makes, the module reads.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>

#include "fuzz/run.h"
#include "import/import.h"
#include "import/pair_check.h"

namespace {

void run(const hierfit::fit::Documents& documents) {
  hierfit::SessionInput input = {.pmml_name = "model",
                                 .pmml = documents.model,
                                 .statxml_name = "result",
                                 .statxml = documents.result,
                                 .dictionary_name = "dictionary",
                                 .dictionary = {}};
  if (!documents.dictionary.empty()) input.dictionary = documents.dictionary;
  hierfit::Session session(std::move(input),
                           {.language = "en",
                            .resource_directory = HIERFIT_BINARY_DIR "/share/hierfit",
                            .journal = nullptr,
                            .words = hierfit::report::kWords});
  HFITProcCustom procedure;
  session.run(procedure);
  hierfit::output::Document document = session.take_document();
  hierfit::fuzz::render_text_forms(document, documents.result.size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  hierfit::fit::Problems problems;
  const auto documents = hierfit::fit::import_fit(text, problems);
  if (!documents) {
    if (!problems.has_errors()) std::abort();  // refused without a word
    return 0;
  }
  try {
    run(*documents);
  } catch (const hierfit::Error& error) {
    std::cerr << error.where().text() << ": " << error.what() << "\n" << documents->result;
    std::abort();
  }
  hierfit::fit::Problems of_model;
  hierfit::fit::Problems of_result;
  hierfit::fit::check_pair(documents->model, documents->result, documents->dictionary, of_model,
                           of_result);
  return 0;
}
