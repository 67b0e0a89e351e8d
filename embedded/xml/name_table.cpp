#include "embedded/xml/name_table.h"

#include <functional>

namespace hierfit::xml {

namespace {
constexpr size_t kFirstSlots = 256;  // a power of two, as all sizes of the slots are
}

NameTable::NameTable() : begins_{0}, slots_(kFirstSlots, kNoName) {}

uint32_t NameTable::intern(std::string_view name) {
  const size_t slot = slot_of(name);
  if (slots_[slot] != kNoName) return slots_[slot];
  const auto number = static_cast<uint32_t>(begins_.size() - 1);
  slots_[slot] = number;
  characters_ += name;
  begins_.push_back(static_cast<uint32_t>(characters_.size()));
  if (begins_.size() * 2 > slots_.size()) grow();
  return number;
}

std::string_view NameTable::name(uint32_t number) const {
  return std::string_view(characters_)
      .substr(begins_[number], begins_[number + 1] - begins_[number]);
}

size_t NameTable::slot_of(std::string_view name) const {
  const size_t mask = slots_.size() - 1;
  size_t slot = std::hash<std::string_view>{}(name)&mask;
  while (slots_[slot] != kNoName && this->name(slots_[slot]) != name) {
    slot = (slot + 1) & mask;
  }
  return slot;
}

void NameTable::grow() {
  slots_.assign(slots_.size() * 2, kNoName);
  for (uint32_t number = 0; number + 1 < begins_.size(); ++number) {
    slots_[slot_of(name(number))] = number;
  }
}

}  // namespace hierfit::xml
