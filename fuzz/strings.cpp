// Feeds catalogues, and patterns with their arguments. The first byte says which.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <unistd.h>

#include "embedded/error.h"
#include "embedded/strings/pattern.h"
#include "embedded/strings/string_table.h"
#include "fuzz/run.h"

namespace {

using namespace hierfit;

void read_catalogue(std::string_view bytes) {
  static const std::string file = std::filesystem::temp_directory_path() /
                                  ("hierfit-fuzz-" + std::to_string(::getpid()) + ".mo");
  std::ofstream(file, std::ios::binary | std::ios::trunc) << bytes;
  try {
    const StringTable table(file);
    for (const char* key : {"", "Target ^1", "Model Summary", "kGLMM_C9"})
      static_cast<void>(table.text(key));
    static_cast<void>(table.marks());
  } catch (const Error&) {
    // No catalogue, which is the usual case here.
  }
}

/// The lines behind the first one are arguments; one that begins with "l" is a list.
void fill(std::string_view text) {
  const size_t end = std::min(text.find('\n'), text.size());
  std::vector<PatternArgument> arguments;
  for (size_t at = end; at < text.size() && arguments.size() < 5;) {
    const size_t next = std::min(text.find('\n', at + 1), text.size());
    output::Text item;
    item.shown = std::string(text.substr(at + 1, next - at - 1));
    if (item.shown.starts_with('l')) {
      arguments.emplace_back(std::vector<output::Text>(text.size() % 4, item));
    } else {
      arguments.emplace_back(item);
    }
    at = next;
  }
  const output::Text filled = fill_pattern(text.substr(0, end), arguments);
  if (filled.shown.size() > kMaxFilledBytes) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
  if (data[0] == 'c') {
    read_catalogue(text);
  } else {
    fill(text);
  }
  return 0;
}
