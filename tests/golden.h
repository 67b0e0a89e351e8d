// Compares whole outputs with the files in tests/golden/.
#pragma once

#include <string>
#include <string_view>

namespace hierfit::test {

/// Whether the run was started with `--update-golden`. Set once, by `main`.
bool& updating_golden();

/// Compares an output with the golden file of that name ("report/sample.html"). Empty when they are
/// equal. Otherwise the first line that differs; the output then stands under the same name in the
/// folder "golden" of the build, or, when golden files are being updated, in place of the old file.
/// To be used as `CHECK(golden_difference(name, text) == "")`, so that an update fails the run,
/// too.
std::string golden_difference(const std::string& name, std::string_view text);

}  // namespace hierfit::test
