// The one test binary. `--update-golden` rewrites the golden files and still fails the run.
#define DOCTEST_CONFIG_IMPLEMENT_WITH_MAIN
#include <doctest/doctest.h>
