// Builds tables of an output document by hand.
#include "tests/report/table_builder.h"

#include <algorithm>

namespace hierfit::test {

using output::kNone;

output::Text text_with(std::string pattern, output::Number number) {
  const size_t hole = pattern.find("^1");
  const std::string shown = output::shown(number, {});
  pattern.replace(hole, 2, shown);
  const output::NumberSpan span{.begin = static_cast<uint32_t>(hole),
                                .length = static_cast<uint32_t>(shown.size()),
                                .number = number};
  return {.shown = std::move(pattern), .numbers = {span}};
}

TableBuilder::TableBuilder(std::string title, std::string subtype)
    : table_(std::make_unique<output::Table>()) {
  table_->title.shown = std::move(title);
  table_->subtype = std::move(subtype);
}

TableBuilder& TableBuilder::dimension(std::string title, output::Place place, int level) {
  output::Dimension& made = table_->dimensions.emplace_back();
  made.title.shown = std::move(title);
  made.place = place;
  made.level = level;
  table_->cells.dimensions = static_cast<uint32_t>(table_->dimensions.size());
  nodes_.emplace_back();
  return *this;
}

TableBuilder& TableBuilder::rows(std::string title, int level) {
  return dimension(std::move(title), output::Place::Rows, level);
}

TableBuilder& TableBuilder::columns(std::string title, int level) {
  return dimension(std::move(title), output::Place::Columns, level);
}

TableBuilder& TableBuilder::hide_title() {
  table_->dimensions.back().title_shown = false;
  return *this;
}

TableBuilder& TableBuilder::hide_labels() {
  table_->dimensions.back().labels_shown = false;
  return *this;
}

uint32_t TableBuilder::node(size_t dimension, const Path& path) {
  output::Dimension& of = table_->dimensions[dimension];
  uint32_t parent = kNone;
  for (size_t depth = 0; depth < path.size(); ++depth) {
    const auto next = static_cast<uint32_t>(of.nodes.size());
    auto [found, fresh] = nodes_[dimension].try_emplace({parent, path[depth]}, next);
    if (fresh) {
      output::Node& made = of.nodes.emplace_back();
      made.label.shown = path[depth];
      made.parent = parent;
      if (depth + 1 == path.size()) {
        made.leaf = static_cast<uint32_t>(of.leaves.size());
        of.leaves.push_back(next);
      }
    }
    parent = found->second;
  }
  return parent;
}

TableBuilder& TableBuilder::category(size_t dimension, const Path& path) {
  node(dimension, path);
  return *this;
}

void TableBuilder::place(const std::vector<Path>& paths) {
  for (size_t d = 0; d < paths.size(); ++d) {
    const uint32_t at = node(d, paths[d]);
    table_->cells.coordinates.push_back(at == kNone ? kNone : table_->dimensions[d].nodes[at].leaf);
  }
}

TableBuilder& TableBuilder::cell(const std::vector<Path>& paths, output::Number number) {
  place(paths);
  table_->cells.values.emplace_back(number);
  return *this;
}

TableBuilder& TableBuilder::cell(const std::vector<Path>& paths, std::string text) {
  place(paths);
  table_->cells.values.emplace_back(static_cast<uint32_t>(table_->texts.size()));
  table_->texts.push_back({.shown = std::move(text), .numbers = {}});
  return *this;
}

uint32_t TableBuilder::note(std::string text) {
  auto found = std::ranges::find(table_->notes, text, &output::Text::shown);
  const auto index = static_cast<uint32_t>(found - table_->notes.begin());
  if (found == table_->notes.end()) table_->notes.push_back({std::move(text), {}});
  return index;
}

TableBuilder& TableBuilder::table_note(std::string text) {
  table_->table_notes.push_back(note(std::move(text)));
  return *this;
}

TableBuilder& TableBuilder::cell_note(std::string text) {
  const auto last = static_cast<uint32_t>(table_->cells.size() - 1);
  table_->cells.notes[last].push_back(note(std::move(text)));
  return *this;
}

TableBuilder& TableBuilder::label_note(size_t dimension, const Path& path, std::string text) {
  const uint32_t at = node(dimension, path);
  table_->dimensions[dimension].nodes[at].notes.push_back(note(std::move(text)));
  return *this;
}

TableBuilder& TableBuilder::caption(output::Text text) {
  table_->caption = std::move(text);
  return *this;
}

TableBuilder& TableBuilder::column_width(int points) {
  table_->min_data_column_width = points;
  return *this;
}

}  // namespace hierfit::test
