// Compares whole outputs with the files in tests/golden/.
#include "tests/golden.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace hierfit::test {

namespace {

namespace fs = std::filesystem;

std::string content_of(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void write(const fs::path& path, std::string_view text) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary)
      .write(text.data(), static_cast<std::streamsize>(text.size()));
}

std::string first_difference(const std::string& golden, const std::string& text) {
  std::istringstream expected(golden);
  std::istringstream actual(text);
  for (int number = 1;; ++number) {
    std::string wanted;
    std::string got;
    const bool more = static_cast<bool>(std::getline(expected, wanted)) |
                      static_cast<bool>(std::getline(actual, got));
    if (!more) return "the files differ in their last line feed";
    if (wanted != got) {
      return "line " + std::to_string(number) + "\n  golden: " + wanted + "\n  output: " + got;
    }
  }
}

}  // namespace

bool& updating_golden() {
  static bool updating = false;
  return updating;
}

std::string golden_difference(const std::string& name, std::string_view text) {
  const fs::path golden = fs::path(HIERFIT_SOURCE_DIR) / "tests" / "golden" / name;
  const std::string old = content_of(golden);
  if (fs::exists(golden) && old == text) return "";
  const std::string difference = name + ", " + first_difference(old, std::string(text));
  const bool update = updating_golden();
  write(update ? golden : fs::path(HIERFIT_BINARY_DIR) / "golden" / name, text);
  return (update ? "rewritten: " : "") + difference;
}

}  // namespace hierfit::test
