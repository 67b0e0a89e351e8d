// The one test binary. `--update-golden` rewrites the golden files and still fails the run.
#define DOCTEST_CONFIG_IMPLEMENT
#include <doctest/doctest.h>
#include <string_view>

#include "tests/golden.h"

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    if (std::string_view(argv[i]) == "--update-golden") hierfit::test::updating_golden() = true;
  }
  return doctest::Context(argc, argv).run();
}
