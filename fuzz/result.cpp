// Feeds the result reader and, for a result that reads, all writers.
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>

#include "backend/hierfit/frame/HFITProcCustom.h"
#include "embedded/session.h"

namespace {

const std::string& model() {
  static const std::string text = [] {
    std::ifstream file(HIERFIT_SOURCE_DIR "/tests/documents/model.pmml", std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
  }();
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  hierfit::Session session({.pmml_name = "model",
                            .pmml = model(),
                            .statxml_name = "result",
                            .statxml = std::string(reinterpret_cast<const char*>(data), size),
                            .dictionary_name = {},
                            .dictionary = {}},
                           {.language = "en",
                            .resource_directory = HIERFIT_BINARY_DIR "/share/hierfit",
                            .journal = nullptr});
  HFITProcCustom procedure;
  try {
    session.run(procedure);
  } catch (const hierfit::DocumentError&) {
    // A result that does not read is the usual case here.
  }
  return 0;
}
