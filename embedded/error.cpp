#include "embedded/error.h"

#include <new>

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

void fail_for_memory() {
  if (const std::new_handler handler = std::get_new_handler()) handler();
  throw std::bad_alloc();
}

}  // namespace hierfit
