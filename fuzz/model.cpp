// Feeds the reader of model documents, and with it a result that uses most of its fields.
#include <cstddef>
#include <cstdint>

#include "fuzz/run.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  static const std::string results[] = {hierfit::fuzz::test_document("events.xml"),
                                        hierfit::fuzz::test_document("nominal.xml")};
  const std::string model(reinterpret_cast<const char*>(data), size);
  hierfit::fuzz::run(model, results[size % 2], {}, size);
  return 0;
}
