// Names for the files of a folder.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace hierfit::report {

/// "07-model-summary" of 7, of at most 99, and "ModelSummary": digits enough for all numbers, two
/// at least, and the words of a name that programs know. `rest` stands for a name without letters.
std::string file_name(size_t number,
                      size_t of_numbers,
                      std::string_view name,
                      std::string_view rest);

}  // namespace hierfit::report
