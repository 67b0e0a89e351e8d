// Feeds the overlay of a dictionary: names, labels, formats and value labels of a pair that reads.
#include <cstddef>
#include <cstdint>

#include "fuzz/run.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  static const std::string model = hierfit::fuzz::test_document("model.pmml");
  static const std::string result = hierfit::fuzz::test_document("grouped.xml");
  hierfit::fuzz::run(model, result, std::string(reinterpret_cast<const char*>(data), size), size);
  return 0;
}
