// The distinct names of one document.
#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace hierfit::xml {

inline constexpr uint32_t kNoName = std::numeric_limits<uint32_t>::max();

/// Names and their numbers, which count from 0. Compact also when every name is another one.
class NameTable {
 public:
  NameTable();

  /// The number of a name, a new one for a name that is not known yet.
  uint32_t intern(std::string_view name);
  /// The number of a name, or `kNoName` when the document does not have it.
  uint32_t find(std::string_view name) const { return slots_[slot_of(name)]; }
  std::string_view name(uint32_t number) const;

 private:
  size_t slot_of(std::string_view name) const;
  void grow();

  std::string characters_;
  std::vector<uint32_t> begins_;  ///< of each name in `characters_`, and the end of the last
  std::vector<uint32_t> slots_;   ///< open addressing: a number, or `kNoName`
};

}  // namespace hierfit::xml
