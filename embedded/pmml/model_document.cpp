#include "embedded/pmml/model_document.h"

#include <algorithm>
#include <unordered_map>

#include "embedded/xml/tree.h"

namespace hierfit {
namespace {

using xml::kNoNode;
using xml::NodeId;
using xml::Tree;

constexpr std::string_view kNoModels[] = {"Header", "MiningBuildTask", "DataDictionary",
                                          "TransformationDictionary", "Extension"};

/// Reads one document; its members are what all steps need.
class Reader {
 public:
  Reader(const Tree& tree, const std::string& file) : tree_(tree), file_(file) {}

  ModelDocument read() {
    read_header();
    read_fields();
    read_variables(mining_schema());
    document_.model_name = attribute(model(), "modelName");
    return std::move(document_);
  }

 private:
  template <class Visit>
  void each_child(NodeId parent, std::string_view name, Visit visit) {
    const uint32_t number = tree_.name_number(name);
    NodeId node = tree_.next_child_named(parent, kNoNode, number);
    for (; node != kNoNode; node = tree_.next_child_named(parent, node, number)) {
      visit(node);
    }
  }

  std::string attribute(NodeId node, std::string_view name) const {
    return std::string(tree_.attribute_text(node, name));
  }

  [[noreturn]] void refuse(NodeId node, const std::string& sentence) const {
    throw DocumentError({file_, tree_.line(node), 0}, sentence);
  }

  void read_header() {
    const NodeId header = tree_.child(Tree::kRoot, "Header");
    if (header == kNoNode) return;
    document_.description = attribute(header, "description");
    const NodeId application = tree_.child(header, "Application");
    if (application == kNoNode) return;
    document_.application = attribute(application, "name");
    document_.application_version = attribute(application, "version");
  }

  void read_fields() {
    const NodeId dictionary = tree_.child(Tree::kRoot, "DataDictionary");
    if (dictionary == kNoNode) return;
    each_child(dictionary, "DataField", [&](NodeId node) {
      const auto index = static_cast<uint32_t>(document_.fields.size());
      const DataField& field = document_.fields.emplace_back(read_field(node));
      index_.try_emplace(field.name, index);
    });
  }

  DataField read_field(NodeId node) {
    DataField field{attribute(node, "name"),
                    attribute(node, "displayName"),
                    attribute(node, "optype"),
                    attribute(node, "dataType"),
                    {}};
    each_child(node, "Value", [&](NodeId value) {
      const char* property = tree_.attribute(value, "property");
      field.values.push_back({attribute(value, "value"), attribute(value, "displayValue"),
                              property == nullptr || property == std::string_view("valid")});
    });
    return field;
  }

  NodeId model() const {
    NodeId node = tree_.first_child(Tree::kRoot);
    while (node != kNoNode &&
           std::ranges::find(kNoModels, tree_.name(node)) != std::end(kNoModels)) {
      node = tree_.next_child(Tree::kRoot, node);
    }
    if (node == kNoNode) {
      refuse(Tree::kRoot, "the document has no model: its root element " +
                              std::string(tree_.name(Tree::kRoot)) + " holds none");
    }
    return node;
  }

  NodeId mining_schema() const {
    const NodeId owner = model();
    const NodeId schema = tree_.child(owner, "MiningSchema");
    if (schema == kNoNode) {
      refuse(owner, "the model, element " + std::string(tree_.name(owner)) +
                        ", lacks the element MiningSchema");
    }
    return schema;
  }

  void read_variables(NodeId schema) {
    each_child(schema, "MiningField", [&](NodeId node) {
      const std::string name = attribute(node, "name");
      const auto found = index_.find(name);
      if (found == index_.end()) {
        refuse(node, "the MiningField \"" + name + "\" is no DataField of the document");
      }
      document_.variables.push_back(found->second);
      std::string optype = attribute(node, "optype");
      if (!optype.empty()) document_.fields[found->second].optype = std::move(optype);
    });
  }

  const Tree& tree_;
  const std::string& file_;
  ModelDocument document_;
  std::unordered_map<std::string, uint32_t> index_;
};

}  // namespace

ModelDocument read_model_document(std::string_view text, const std::string& file) {
  if (text.empty()) throw DocumentError({file, 1, 1}, "the document is empty");
  Tree tree;
  if (const auto failure = tree.parse(text)) {
    throw DocumentError({file, failure->line, failure->column}, failure->sentence);
  }
  return Reader(tree, file).read();
}

}  // namespace hierfit
