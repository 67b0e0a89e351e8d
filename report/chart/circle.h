// The nodes of a circle and the edges between them.
#pragma once

#include <vector>

#include "report/chart/binding.h"

namespace hierfit::report::chart {

struct ElementRow {
  const BoundElement* element;
  size_t row;
};

/// An edge between two nodes by their places.
struct CircleEdge {
  size_t from;
  size_t to;
  ElementRow of;
};

struct Circle {
  ValueIndex keys;                ///< of the nodes, in their order
  std::vector<ElementRow> nodes;  ///< a key that comes again is the same node
  std::vector<CircleEdge> edges;  ///< those with both ends
};

/// Whether an edge is drawn: where colours tell the kind of edges, one without a kind is none.
bool is_drawn(const BoundElement& edges, size_t row);

/// The circles of a graph, one a panel.
std::vector<Circle> circles_of(const Binding& binding);

/// Where a node stands, as a share of the turn from the top clockwise: two nodes lie side by side,
/// more begin at the top.
double share_of_turn(size_t node, size_t nodes);

}  // namespace hierfit::report::chart
