// The report's own short texts.
#include "report/wording.h"

namespace hierfit::report {

std::string filled(std::string_view pattern, std::string_view argument) {
  std::string text;
  size_t at = 0;
  for (size_t hole; (hole = pattern.find("^1", at)) != std::string_view::npos; at = hole + 2) {
    text.append(pattern.substr(at, hole - at)).append(argument);
  }
  return text.append(pattern.substr(at));
}

std::string mark_letters(uint32_t number) {
  std::string letters;
  for (uint64_t rest = uint64_t{number} + 1; rest > 0; rest = (rest - 1) / 26) {
    letters.insert(letters.begin(), static_cast<char>('a' + (rest - 1) % 26));
  }
  return letters;
}

}  // namespace hierfit::report
