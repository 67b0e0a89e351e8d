// A pivot table while the module writes it.
#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "embedded/journal/journal.h"
#include "embedded/pivot/cell_index.h"
#include "embedded/pivot/cell_text.h"
#include "embedded/pivot/hash_index.h"

namespace hierfit {
struct Outputs;
}

/// What a group handle refers to: a dimension as a whole, or a group node inside it.
struct BpGroup::Impl : hierfit::journal::Receiver {
  BpPivotTable::Impl* table = nullptr;
  uint32_t dimension = 0;
  uint32_t node = hierfit::output::kNone;  ///< `kNone`: the dimension itself
};

struct BpCategory::Impl : hierfit::journal::Receiver {
  BpPivotTable::Impl* table = nullptr;
  uint32_t dimension = 0;
  uint32_t node = 0;  ///< `kNone`: the table was cut ahead of it
};

/// The state of an open table. It goes with the last handle to the table or into it, and then
/// settles where the dimensions without a place stand. Beyond its share of the budget it is cut: it
/// takes no further cells and categories.
struct BpPivotTable::Impl : hierfit::journal::Receiver {
 public:
  Impl(hierfit::output::Table& into,
       const hierfit::pivot::Wording& words,
       hierfit::Outputs& outputs,
       hierfit::journal::Journal* journal);
  ~Impl();
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  BpGroup::Impl& add_dimension(const BpCellText::Impl& title);
  void position(
      uint32_t dimension, int32_t place, int32_t level, bool hide_title, bool hide_labels);
  BpGroup::Impl& group(const BpGroup::Impl& parent, const BpCellText::Impl& title);
  /// The category of this label; the next cells of the table cross it.
  ///
  /// Two rows of a procedure may have one label. When a cell gets another value after its row was
  /// asked for anew, that is a row of its own: it gets a category with a number behind the label,
  /// so that neither value is lost, and the report warns of it.
  BpCategory::Impl& category(const BpGroup::Impl& parent, const BpCellText::Impl& label);

  void write_cell(const BpCategory::Impl& category, const BpCellText::Impl& value);
  void note_label(const BpCategory::Impl& category, const BpAnnotation::Impl& note);
  /// On the cell where the category crosses those last asked for, or, when there is none yet, on
  /// the label of its row.
  void note_cell(const BpCategory::Impl& category, const BpAnnotation::Impl& note);
  void note_table(const BpAnnotation::Impl& note);

  hierfit::output::Table& table;
  const hierfit::pivot::Wording wording;

 private:
  /// A group or category that was asked for.
  struct Made {
    std::string identity;  ///< kind, parent and label
    uint32_t number = 0;   ///< in `groups_` or `categories_`
    uint32_t next = 0;  ///< in `DimensionState::made`: what was asked for behind it the last time
  };

  /// What the output model does not keep of a dimension.
  struct DimensionState {
    bool positioned = false;
    uint32_t current = hierfit::output::kNone;  ///< leaf of the category last asked for
    bool is_cut = false;                        ///< that category was cut
    uint32_t asked = 0;  ///< when a category was asked for the last time, by the clock
    /// By leaf: the last of the categories that share its label; only where there are several.
    std::unordered_map<uint32_t, uint32_t> newest;
    std::unordered_map<uint32_t, size_t> divided;  ///< likewise: how many they are
    std::deque<Made> made;
    hierfit::pivot::HashIndex made_by_hash;
    uint32_t last = 0;  ///< in `made`: what was asked for last
  };

  /// The number of what is asked for; `next`, the number that it then gets, when it is new.
  uint32_t number_of(DimensionState& state,
                     char kind,
                     uint32_t parent,
                     const BpCellText::Impl& label,
                     size_t next);
  uint32_t find_made(DimensionState& state, size_t next);
  uint32_t add_node(const BpGroup::Impl& parent, const BpCellText::Impl& label, bool is_group);
  const std::vector<uint32_t>& crossing(const BpCategory::Impl& category);
  bool is_cut(const BpCategory::Impl& category) const;
  void cut();
  void add_note(std::vector<uint32_t>& notes, const BpAnnotation::Impl& note);
  uint32_t note_number(const BpAnnotation::Impl& note);
  hierfit::output::Node& row_label(const BpCategory::Impl& category);
  hierfit::output::Node& node_of(const BpCategory::Impl& category);
  uint32_t newest_leaf(const BpCategory::Impl& category);
  /// The dimension whose category was asked for anew since the cell was written, or `kNone`: of the
  /// rows the one asked last, else that of the columns.
  size_t repeated_dimension(uint32_t cell) const;
  void divide(size_t dimension);
  void warn_of(const hierfit::output::Text& label);
  uint32_t add_cell(const hierfit::output::CellValue& value);
  void settle_positions();
  bool is_taken(hierfit::output::Place place, int level, size_t end) const;
  int free_level(hierfit::output::Place place, int from) const;

  hierfit::Outputs& outputs_;
  const size_t cell_limit_;
  bool is_cut_ = false;
  std::deque<DimensionState> states_;
  std::deque<BpGroup::Impl> groups_;
  std::deque<BpCategory::Impl> categories_;
  std::unordered_map<std::string, uint32_t> notes_;
  hierfit::pivot::CellIndex index_;
  uint32_t clock_ = 0;             ///< counts the categories that were asked for
  std::vector<uint32_t> written_;  ///< by cell: when it was written
  std::vector<uint32_t> again_;    ///< cells that got the value they had since rows were asked last
  std::string scratch_;
  std::vector<uint32_t> crossing_;
};
