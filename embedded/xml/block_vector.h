// A list that grows without moving what it holds and without room to spare.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace hierfit::xml {

/// Items in blocks of equal size. Memory is what the items need, rounded up to one block; growth
/// copies nothing.
template <class Item>
class BlockVector {
 public:
  size_t size() const { return size_; }
  Item& operator[](size_t index) { return blocks_[index / kBlock][index % kBlock]; }
  const Item& operator[](size_t index) const { return blocks_[index / kBlock][index % kBlock]; }

  void push_back(const Item& item) {
    if (size_ == blocks_.size() * kBlock) {
      blocks_.push_back(std::make_unique_for_overwrite<Item[]>(kBlock));
    }
    (*this)[size_++] = item;
  }

 private:
  static constexpr size_t kBlock = 4096;

  std::vector<std::unique_ptr<Item[]>> blocks_;
  size_t size_ = 0;
};

}  // namespace hierfit::xml
