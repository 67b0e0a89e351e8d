// The rows or the columns of a table.
#include "report/layout/axis.h"

#include <algorithm>
#include <numeric>
#include <unordered_map>

namespace hierfit::report {

using output::Dimension;
using output::kNone;
using output::Table;

namespace {

/// The order of a dimension's categories: rank 0 is "no category", the first shown has rank 1.
struct Ranks {
  std::vector<uint32_t> leaf_of_rank;
  std::vector<uint32_t> rank_of_leaf;

  explicit Ranks(const Dimension& dimension)
      : leaf_of_rank{kNone}, rank_of_leaf(dimension.leaves.size(), 0) {
    for (uint32_t leaf : leaves_in_order(dimension)) {
      rank_of_leaf[leaf] = static_cast<uint32_t>(leaf_of_rank.size());
      leaf_of_rank.push_back(leaf);
    }
  }
  uint32_t rank(uint32_t leaf) const { return leaf == kNone ? 0 : rank_of_leaf[leaf]; }
};

/// Numbers the pairs of an outer tuple and a rank, in the order in which they are met.
class PairNumbers {
 public:
  uint32_t number(uint32_t outer, uint32_t rank) {
    const uint64_t key = uint64_t{outer} << 32 | rank;
    // Cells mostly come row by row, so the pair asked for last is asked for again.
    if (key == last_key_ && !numbers_.empty()) return last_;
    last_key_ = key;
    last_ = numbers_.try_emplace(key, static_cast<uint32_t>(numbers_.size())).first->second;
    return last_;
  }

 private:
  std::unordered_map<uint64_t, uint32_t> numbers_;
  uint64_t last_key_ = 0;
  uint32_t last_ = 0;
};

std::vector<uint32_t> dimensions_of(const Table& table, output::Place place) {
  std::vector<uint32_t> found;
  for (uint32_t d = 0; d < table.dimensions.size(); ++d) {
    if (table.dimensions[d].place == place) found.push_back(d);
  }
  std::ranges::stable_sort(found, std::ranges::greater{},
                           [&](uint32_t d) { return table.dimensions[d].level; });
  return found;
}

void order_single(const Table& table, Axis& axis) {
  const uint32_t dimension = axis.dimensions[0];
  const Ranks ranks(table.dimensions[dimension]);
  bool has_blank = false;
  axis.of_cell.resize(table.cells.size());
  for (size_t cell = 0; cell < table.cells.size(); ++cell) {
    axis.of_cell[cell] = ranks.rank(table.cells.at(cell)[dimension]);
    has_blank = has_blank || axis.of_cell[cell] == 0;
  }
  axis.leaves.assign(ranks.leaf_of_rank.begin() + (has_blank ? 0 : 1), ranks.leaf_of_rank.end());
  axis.size = static_cast<uint32_t>(axis.leaves.size());
  if (has_blank) return;
  for (uint32_t& position : axis.of_cell)
    --position;
}

/// Numbers the tuples that occur, in the order in which they are met: the numbers by cell go into
/// `axis.of_cell`, the ranks of each tuple are given back one after another.
std::vector<uint32_t> number_tuples(const Table& table,
                                    const std::vector<Ranks>& ranks,
                                    Axis& axis) {
  const size_t width = axis.dimensions.size();
  std::vector<PairNumbers> pairs(width);
  std::vector<uint32_t> tuples;
  std::vector<uint32_t> tuple(width);
  axis.of_cell.resize(table.cells.size());
  for (size_t cell = 0; cell < table.cells.size(); ++cell) {
    uint32_t number = 0;
    for (size_t d = 0; d < width; ++d) {
      tuple[d] = ranks[d].rank(table.cells.at(cell)[axis.dimensions[d]]);
      number = pairs[d].number(number, tuple[d]);
    }
    axis.of_cell[cell] = number;
    if (number * width == tuples.size()) tuples.insert(tuples.end(), tuple.begin(), tuple.end());
  }
  return tuples;
}

void order_crossed(const Table& table, Axis& axis) {
  const size_t width = axis.dimensions.size();
  std::vector<Ranks> ranks;
  ranks.reserve(width);
  for (uint32_t d : axis.dimensions)
    ranks.emplace_back(table.dimensions[d]);
  const std::vector<uint32_t> tuples = number_tuples(table, ranks, axis);

  axis.size = static_cast<uint32_t>(tuples.size() / width);
  std::vector<uint32_t> order(axis.size);
  std::iota(order.begin(), order.end(), 0U);
  std::ranges::sort(order, [&](uint32_t a, uint32_t b) {
    const uint32_t* left = tuples.data() + a * width;
    const uint32_t* right = tuples.data() + b * width;
    return std::lexicographical_compare(left, left + width, right, right + width);
  });

  std::vector<uint32_t> position_of(axis.size);
  axis.leaves.reserve(tuples.size());
  for (uint32_t position = 0; position < axis.size; ++position) {
    position_of[order[position]] = position;
    for (size_t d = 0; d < width; ++d) {
      axis.leaves.push_back(ranks[d].leaf_of_rank[tuples[order[position] * width + d]]);
    }
  }
  for (uint32_t& position : axis.of_cell)
    position = position_of[position];
}

}  // namespace

std::vector<uint32_t> leaves_in_order(const Dimension& dimension) {
  // Children by parent as one list with offsets; slot 0 is the top level.
  const auto slot = [](uint32_t parent) { return parent == kNone ? 0 : size_t{parent} + 1; };
  std::vector<uint32_t> begin(dimension.nodes.size() + 2, 0);
  for (const output::Node& node : dimension.nodes)
    ++begin[slot(node.parent) + 1];
  std::partial_sum(begin.begin(), begin.end(), begin.begin());
  std::vector<uint32_t> children(dimension.nodes.size());
  std::vector<uint32_t> next = begin;
  for (uint32_t n = 0; n < dimension.nodes.size(); ++n) {
    children[next[slot(dimension.nodes[n].parent)]++] = n;
  }

  std::vector<uint32_t> leaves;
  leaves.reserve(dimension.leaves.size());
  std::vector<uint32_t> open;
  const auto open_children = [&](size_t at) {
    for (uint32_t i = begin[at + 1]; i > begin[at]; --i)
      open.push_back(children[i - 1]);
  };
  open_children(0);
  while (!open.empty()) {
    const uint32_t node = open.back();
    open.pop_back();
    if (!dimension.nodes[node].is_group()) leaves.push_back(dimension.nodes[node].leaf);
    open_children(size_t{node} + 1);
  }
  return leaves;
}

Axis order_axis(const Table& table, output::Place place) {
  Axis axis;
  axis.dimensions = dimensions_of(table, place);
  if (axis.dimensions.empty()) {
    axis.size = 1;
    axis.of_cell.assign(table.cells.size(), 0);
  } else if (axis.dimensions.size() == 1) {
    order_single(table, axis);
  } else {
    order_crossed(table, axis);
  }
  return axis;
}

}  // namespace hierfit::report
