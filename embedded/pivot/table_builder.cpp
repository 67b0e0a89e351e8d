#include "embedded/pivot/table_builder.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "embedded/session_state.h"
#include "embedded/strings/pattern.h"

namespace {

using namespace hierfit;
using output::kNone;

constexpr int32_t kColumns = 1;

/// One more coordinate a cell: cells that were written before the dimension came have none in it.
void widen(output::Cells& cells) {
  std::vector<uint32_t> coordinates;
  coordinates.reserve(cells.size() * (cells.dimensions + 1));
  for (size_t cell = 0; cell < cells.size(); ++cell) {
    coordinates.insert(coordinates.end(), cells.at(cell), cells.at(cell) + cells.dimensions);
    coordinates.push_back(kNone);
  }
  cells.coordinates = std::move(coordinates);
  ++cells.dimensions;
}

}  // namespace

BpPivotTable::Impl::Impl(output::Table& into,
                         const pivot::Wording& words,
                         Outputs& outputs,
                         journal::Journal* journal)
    : Receiver(journal, "BpPivotTable"),
      table(into),
      wording(words),
      outputs_(outputs),
      cell_limit_(outputs.budget.cells_of_table()) {}

BpPivotTable::Impl::~Impl() {
  outputs_.budget.spend_cells(table.cells.size());
  settle_positions();
  note("release");
}

BpGroup::Impl& BpPivotTable::Impl::add_dimension(const BpCellText::Impl& title) {
  const auto number = static_cast<uint32_t>(table.dimensions.size());
  table.dimensions.emplace_back().title = pivot::shown_text(title, wording);
  states_.emplace_back();
  widen(table.cells);
  if (table.cells.size() > 0) index_.rebuild(table.cells);
  return groups_.emplace_back(BpGroup::Impl{{journal(), "BpDimension"}, this, number, kNone});
}

void BpPivotTable::Impl::position(
    uint32_t dimension, int32_t place, int32_t level, bool hide_title, bool hide_labels) {
  output::Dimension& target = table.dimensions[dimension];
  target.place = place == kColumns ? output::Place::Columns : output::Place::Rows;
  target.level = std::max(1, level);
  target.title_shown = !hide_title;
  target.labels_shown = !hide_labels;
  states_[dimension].positioned = true;
}

/// Kind and parent stand in front of the label's identity, so that one map serves all groups of a
/// dimension. Rows ask for the same columns in the same order, so the first guess is what followed
/// the last time.
uint32_t BpPivotTable::Impl::number_of(
    DimensionState& state, char kind, uint32_t parent, const BpCellText::Impl& label, size_t next) {
  scratch_.assign(1, kind);
  scratch_.append(reinterpret_cast<const char*>(&parent), sizeof parent);
  pivot::append_identity(scratch_, label);
  if (state.made.empty()) return state.made[find_made(state, next)].number;
  Made& last = state.made[state.last];
  if (state.made[last.next].identity != scratch_) last.next = find_made(state, next);
  state.last = last.next;
  return state.made[state.last].number;
}

/// The entry of the identity in `scratch_`, a new one with the number `next` when there is none.
uint32_t BpPivotTable::Impl::find_made(DimensionState& state, size_t next) {
  const auto hash = static_cast<uint32_t>(std::hash<std::string>()(scratch_));
  const uint32_t found = state.made_by_hash.find(
      hash, [&](uint32_t made) { return state.made[made].identity == scratch_; });
  if (found != kNone) return found;
  const auto made = static_cast<uint32_t>(state.made.size());
  state.made.push_back({scratch_, static_cast<uint32_t>(next), made});
  state.made_by_hash.add(hash, made);
  return made;
}

uint32_t BpPivotTable::Impl::add_node(const BpGroup::Impl& parent,
                                      const BpCellText::Impl& label,
                                      bool is_group) {
  output::Dimension& dimension = table.dimensions[parent.dimension];
  const auto number = static_cast<uint32_t>(dimension.nodes.size());
  output::Node& node = dimension.nodes.emplace_back();
  node.label = pivot::shown_text(label, wording);
  node.parent = parent.node;
  if (is_group) return number;
  node.leaf = static_cast<uint32_t>(dimension.leaves.size());
  dimension.leaves.push_back(number);
  return number;
}

BpGroup::Impl& BpPivotTable::Impl::group(const BpGroup::Impl& parent,
                                         const BpCellText::Impl& title) {
  const uint32_t number =
      number_of(states_[parent.dimension], 'g', parent.node, title, groups_.size());
  if (number < groups_.size()) return groups_[number];
  const uint32_t node = add_node(parent, title, true);
  return groups_.emplace_back(BpGroup::Impl{{journal(), "BpGroup"}, this, parent.dimension, node});
}

BpCategory::Impl& BpPivotTable::Impl::category(const BpGroup::Impl& parent,
                                               const BpCellText::Impl& label) {
  DimensionState& state = states_[parent.dimension];
  const uint32_t number = number_of(state, 'c', parent.node, label, categories_.size());
  if (number == categories_.size()) {
    const uint32_t node = is_cut_ ? kNone : add_node(parent, label, false);
    categories_.emplace_back(
        BpCategory::Impl{{journal(), "BpCategory"}, this, parent.dimension, node});
  }
  BpCategory::Impl& category = categories_[number];
  state.is_cut = category.node == kNone;
  state.current = state.is_cut ? kNone : newest_leaf(category);
  state.asked = ++clock_;
  if (table.dimensions[parent.dimension].place == output::Place::Rows) again_.clear();
  return category;
}

uint32_t BpPivotTable::Impl::newest_leaf(const BpCategory::Impl& category) {
  const uint32_t leaf = table.dimensions[category.dimension].nodes[category.node].leaf;
  const auto& newest = states_[category.dimension].newest;
  if (newest.empty()) return leaf;
  const auto found = newest.find(leaf);
  return found == newest.end() ? leaf : found->second;
}

output::Node& BpPivotTable::Impl::node_of(const BpCategory::Impl& category) {
  output::Dimension& dimension = table.dimensions[category.dimension];
  return dimension.nodes[dimension.leaves[newest_leaf(category)]];
}

const std::vector<uint32_t>& BpPivotTable::Impl::crossing(const BpCategory::Impl& category) {
  crossing_.clear();
  for (const DimensionState& state : states_)
    crossing_.push_back(state.current);
  crossing_[category.dimension] = node_of(category).leaf;
  return crossing_;
}

bool BpPivotTable::Impl::is_cut(const BpCategory::Impl& category) const {
  return is_cut_ &&
         (category.node == kNone || std::ranges::any_of(states_, &DimensionState::is_cut));
}

void BpPivotTable::Impl::cut() {
  if (std::exchange(is_cut_, true)) return;
  outputs_.tell(wording.strings,
                "The table above is cut: it is out of proportion to the documents.");
}

void BpPivotTable::Impl::write_cell(const BpCategory::Impl& category,
                                    const BpCellText::Impl& value) {
  output::Cells& cells = table.cells;
  if (is_cut(category)) return;
  const auto number = pivot::as_number(value);
  output::Text text;
  if (!number) text = pivot::shown_text(value, wording);
  const auto is_same = [&](const output::CellValue& old) {
    const auto* old_text = std::get_if<uint32_t>(&old);
    if (old_text != nullptr) return !number && table.texts[*old_text] == text;
    return number && std::get<output::Number>(old) == *number;
  };

  uint32_t cell = index_.find(cells, crossing(category));
  if (cell != kNone && is_same(cells.values[cell])) {
    again_.push_back(cell);
    return;
  }
  const size_t repeated = cell == kNone ? kNone : repeated_dimension(cell);
  const bool is_new = cell == kNone || repeated != kNone;
  if (is_new && cells.size() >= cell_limit_) return cut();
  if (repeated != kNone) {
    divide(repeated);
    crossing(category);
    cell = kNone;
  }
  output::CellValue kept;
  if (number) {
    kept = *number;
  } else {
    kept = static_cast<uint32_t>(table.texts.size());
    table.texts.push_back(std::move(text));
  }
  if (cell == kNone) {
    add_cell(kept);
  } else {
    cells.values[cell] = kept;
  }
}

/// At `crossing_`.
uint32_t BpPivotTable::Impl::add_cell(const output::CellValue& value) {
  const uint32_t cell = index_.find_or_add(table.cells, crossing_);
  table.cells.values[cell] = value;
  written_.resize(table.cells.size());
  written_[cell] = clock_;
  return cell;
}

size_t BpPivotTable::Impl::repeated_dimension(uint32_t cell) const {
  for (const output::Place place : {output::Place::Rows, output::Place::Columns}) {
    size_t last = kNone;
    for (size_t d = 0; d < states_.size(); ++d) {
      if (table.dimensions[d].place != place || states_[d].asked <= written_[cell]) continue;
      if (last == kNone || states_[d].asked > states_[last].asked) last = d;
    }
    if (last != kNone) return last;
  }
  return kNone;
}

/// The current category of the dimension gets another one of its label, which is current then. What
/// was written again since its row was asked for belongs to both.
void BpPivotTable::Impl::divide(size_t dimension) {
  DimensionState& state = states_[dimension];
  output::Dimension& target = table.dimensions[dimension];
  const uint32_t old_leaf = state.current;
  uint32_t first = old_leaf;
  size_t count = 2;
  for (const auto& [leaf, newest] : state.newest)
    if (newest == old_leaf) first = leaf;
  if (first != old_leaf) count = state.divided[first] + 1;
  state.divided[first] = count;

  output::Node node = target.nodes[target.leaves[first]];
  if (count == 2) warn_of(node.label);
  node.label.shown += " (" + std::to_string(count) + ")";
  node.leaf = static_cast<uint32_t>(target.leaves.size());
  node.notes.clear();
  target.leaves.push_back(static_cast<uint32_t>(target.nodes.size()));
  target.nodes.push_back(std::move(node));
  state.newest[first] = state.current = target.nodes.back().leaf;

  for (const uint32_t cell : std::exchange(again_, {})) {
    const uint32_t* at = table.cells.at(cell);
    if (at[dimension] != old_leaf) continue;
    crossing_.assign(at, at + table.cells.dimensions);
    crossing_[dimension] = state.current;
    const output::CellValue value = table.cells.values[cell];
    add_cell(value);
  }
}

void BpPivotTable::Impl::warn_of(const output::Text& label) {
  const PatternArgument arguments[] = {label, table.title};
  wording.document.about.messages.push_back(
      {fill_pattern(wording.strings.text("Rows of one label ^1 in ^2 ..."), arguments),
       output::Severity::Warning, "sameLabels"});
}

uint32_t BpPivotTable::Impl::note_number(const BpAnnotation::Impl& note) {
  output::Text text =
      note.text != nullptr ? pivot::shown_text(*note.text, wording) : output::Text();
  const auto [entry, is_new] =
      notes_.try_emplace(text.shown, static_cast<uint32_t>(table.notes.size()));
  if (is_new) table.notes.push_back(std::move(text));
  return entry->second;
}

void BpPivotTable::Impl::add_note(std::vector<uint32_t>& notes, const BpAnnotation::Impl& note) {
  const uint32_t number = note_number(note);
  if (std::ranges::find(notes, number) == notes.end()) notes.push_back(number);
}

void BpPivotTable::Impl::note_label(const BpCategory::Impl& category,
                                    const BpAnnotation::Impl& note) {
  if (category.node != kNone) add_note(node_of(category).notes, note);
}

void BpPivotTable::Impl::note_cell(const BpCategory::Impl& category,
                                   const BpAnnotation::Impl& note) {
  if (is_cut(category)) return;
  const uint32_t cell = index_.find(table.cells, crossing(category));
  if (cell == kNone) return add_note(row_label(category).notes, note);
  add_note(table.cells.notes[cell], note);
}

void BpPivotTable::Impl::note_table(const BpAnnotation::Impl& note) {
  add_note(table.table_notes, note);
}

output::Node& BpPivotTable::Impl::row_label(const BpCategory::Impl& category) {
  const auto is_row = [](const output::Dimension& d) { return d.place == output::Place::Rows; };
  if (is_row(table.dimensions[category.dimension])) return node_of(category);
  size_t innermost = kNone;
  for (size_t d = 0; d < states_.size(); ++d) {
    if (!is_row(table.dimensions[d]) || states_[d].current == kNone) continue;
    if (innermost == kNone || table.dimensions[d].level < table.dimensions[innermost].level) {
      innermost = d;
    }
  }
  if (innermost == kNone) return node_of(category);
  output::Dimension& dimension = table.dimensions[innermost];
  return dimension.nodes[dimension.leaves[states_[innermost].current]];
}

/// Whether one of the dimensions ahead of `end` stands at this level of this place.
bool BpPivotTable::Impl::is_taken(output::Place place, int level, size_t end) const {
  for (size_t d = 0; d < end; ++d) {
    const output::Dimension& other = table.dimensions[d];
    if (states_[d].positioned && other.place == place && other.level == level) return true;
  }
  return false;
}

int BpPivotTable::Impl::free_level(output::Place place, int from) const {
  int level = from;
  while (is_taken(place, level, states_.size()))
    ++level;
  return level;
}

/// Of two dimensions that were sent to one level, the later one moves outwards; then a dimension
/// without a place takes the innermost free level of the rows.
void BpPivotTable::Impl::settle_positions() {
  for (size_t d = 0; d < states_.size(); ++d) {
    output::Dimension& dimension = table.dimensions[d];
    if (states_[d].positioned && is_taken(dimension.place, dimension.level, d)) {
      dimension.level = free_level(dimension.place, dimension.level);
    }
  }
  for (size_t d = 0; d < states_.size(); ++d) {
    if (states_[d].positioned) continue;
    table.dimensions[d].level = free_level(output::Place::Rows, 1);
    states_[d].positioned = true;
  }
}
