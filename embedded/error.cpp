#include "embedded/error.h"

namespace hierfit {

std::string Location::text() const {
  std::string text = file;
  for (const uint32_t number : {line, column}) {
    if (number == 0) break;
    if (!text.empty()) text += ':';
    text += std::to_string(number);
  }
  return text;
}

}  // namespace hierfit
