// A read-only tree over the text of an XML document.
//
// Nodes are the elements in document order; a subtree is a run of them. Names are local names. The
// tree owns what it hands out and does not refer to the text that it was made from.
#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "embedded/error.h"
#include "embedded/xml/block_vector.h"
#include "embedded/xml/name_table.h"

namespace hierfit::xml {

/// The deepest nesting of elements that a document may have.
inline constexpr size_t kMaxDepth = 512;

using NodeId = uint32_t;
inline constexpr NodeId kNoNode = std::numeric_limits<NodeId>::max();

class Tree {
 public:
  static constexpr NodeId kRoot = 0;

  /// Reads a whole document into this tree, which is fresh. Gives why the text is refused, and then
  /// the tree is empty.
  std::optional<ReadFailure> parse(std::string_view text);

  bool empty() const { return nodes_.size() == 0; }
  /// The number that an element or attribute name has in this document, `kNoName` when it has none.
  uint32_t name_number(std::string_view name) const { return names_.find(name); }
  std::string_view name(NodeId node) const { return names_.name(nodes_[node].name); }
  uint32_t line(NodeId node) const { return nodes_[node].line; }

  /// Whether `node` lies below `ancestor`, at any depth.
  bool is_below(NodeId node, NodeId ancestor) const {
    return ancestor < node && node < nodes_[ancestor].end;
  }
  NodeId first_child(NodeId node) const { return child_at(node + 1, nodes_[node].end); }
  /// The element behind `node` under `parent`, or `kNoNode`.
  NodeId next_child(NodeId parent, NodeId node) const {
    return child_at(nodes_[node].end, nodes_[parent].end);
  }
  /// The first child with this name number behind `after` (or at all, for `kNoNode`), or `kNoNode`.
  NodeId next_child_named(NodeId parent, NodeId after, uint32_t name) const;
  /// The first child of this name, or `kNoNode`.
  NodeId child(NodeId parent, std::string_view name) const;

  /// The attribute's value, which ends with a 0 byte, or null when the element lacks it.
  const char* attribute(NodeId node, std::string_view name) const;
  /// The same, with the empty text for an attribute that is not there.
  std::string_view attribute_text(NodeId node, std::string_view name) const;
  /// The text directly in the element; a stretch of blanks between two tags may be left out.
  std::string text(NodeId node) const;
  /// The same without a copy where it stands in one piece, else in `storage`.
  std::string_view text(NodeId node, std::string& storage) const;

 private:
  friend class TreeBuilder;

  struct Node {
    uint32_t name;
    uint32_t line;
    NodeId end;  ///< one past the subtree
    uint32_t first_attribute;
  };
  struct Attribute {
    uint32_t name;
    uint32_t value;  ///< in `characters_`
  };
  /// A stretch of text between two tags.
  struct TextRun {
    NodeId node;
    uint32_t begin;
    uint32_t length;
  };

  static NodeId child_at(NodeId node, NodeId end) { return node < end ? node : kNoNode; }
  size_t attributes_end(NodeId node) const {
    return node + 1 < nodes_.size() ? nodes_[node + 1].first_attribute : attributes_.size();
  }

  NameTable names_;
  BlockVector<Node> nodes_;
  BlockVector<Attribute> attributes_;
  std::vector<TextRun> runs_;  ///< by node, those of one node in document order
  std::unique_ptr<char[]> characters_;
};

}  // namespace hierfit::xml
