// Feeds the result reader and, for a result that reads, all writers and the forms that are text.
#include <cstddef>
#include <cstdint>

#include "fuzz/run.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  static const std::string model = hierfit::fuzz::test_document("model.pmml");
  hierfit::fuzz::run(model, std::string(reinterpret_cast<const char*>(data), size), {}, size);
  return 0;
}
