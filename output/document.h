// The output document: the ordered headings, tables, charts and messages that one run leaves.
//
// It is plain data. The embedded host fills it; `report/` renders it and knows nothing else of the
// run. Texts are UTF-8, already in the output language.
#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

#include "output/chart.h"
#include "output/number_format.h"

namespace hierfit::output {

/// A number inside a text: where its digits stand, in bytes, and what it is. A renderer that writes
/// numbers its own way (true minus, another decimal mark) replaces that stretch.
struct NumberSpan {
  uint32_t begin = 0;
  uint32_t length = 0;
  Number number;

  bool operator==(const NumberSpan&) const = default;
};

/// A text to show. May hold line feeds, which separate lines.
struct Text {
  std::string shown;
  std::vector<NumberSpan> numbers;  ///< in the order of `begin`, not overlapping
  bool symbol = false;              ///< a statistical symbol, which typeset forms set in italics
  std::string_view key{};  ///< of the string table, if it was made from one: of `Document::keys`

  bool operator==(const Text&) const = default;
};

inline constexpr uint32_t kNone = std::numeric_limits<uint32_t>::max();

enum class Place : uint8_t { Rows, Columns };

/// A group or a category of a dimension.
struct Node {
  Text label;
  uint32_t parent = kNone;      ///< index into `Dimension::nodes`; `kNone` at the top level
  uint32_t leaf = kNone;        ///< of a category: its number among the categories, by creation
  std::vector<uint32_t> notes;  ///< indices into `Table::notes`
  bool is_group() const { return leaf == kNone; }
};

/// A dimension: a forest of groups and categories. Siblings show in the order in which they stand
/// in `nodes`; a parent stands ahead of its children.
struct Dimension {
  Text title;
  Place place = Place::Rows;
  int level = 1;  ///< 1 is the innermost of its place; unique within a place
  bool title_shown = true;
  bool labels_shown = true;
  std::vector<Node> nodes;
  std::vector<uint32_t> leaves;  ///< node index of each category, by leaf number
};

/// What a cell holds: a number, or an index into `Table::texts`.
using CellValue = std::variant<Number, uint32_t>;

/// The cells of a table, sparse, in the order of their first writing. Cell `i` stands where the
/// categories `coordinates[i * dimensions + d]` cross, a leaf number for each dimension `d`, or
/// `kNone` for a dimension that had no category when the cell was written.
struct Cells {
  uint32_t dimensions = 0;
  std::vector<uint32_t> coordinates;
  std::vector<CellValue> values;
  std::unordered_map<uint32_t, std::vector<uint32_t>>
      notes;  ///< by cell: indices into `Table::notes`

  size_t size() const { return values.size(); }
  const uint32_t* at(size_t cell) const { return coordinates.data() + cell * dimensions; }
};

/// A pivot table.
struct Table {
  Text title;
  std::string subtype;                ///< names the kind of table for programs, "ModelSummary"
  std::vector<Dimension> dimensions;  ///< in the order of their making
  Cells cells;
  std::vector<Text> texts;            ///< what text cells show
  std::vector<Text> notes;            ///< the footnotes, each once, in the order of first use
  std::vector<uint32_t> table_notes;  ///< indices into `notes` of those on the table as a whole
  std::optional<Text> caption;
  int min_data_column_width = 0;  ///< points; 0 when none is asked for
};

enum class Severity : uint8_t { Note, Warning, Error };

/// A message of the run, in its place among the output.
struct Message {
  Text text;
  Severity severity = Severity::Warning;
  std::string code = {};  ///< names what it is about for programs, "noEstimates"; may be empty
};

/// A fact about a result: what programs know it by, what it is called, what it is. Each value is a
/// text of its own; there is at least one.
struct Fact {
  std::string_view key;  ///< "target"; never translated, of static life
  Text label;
  std::vector<Text> values;
};

/// What a report says ahead of its results: what they are results of, and what is to be known
/// before they are read.
struct About {
  Text title;
  std::vector<Fact> facts;
  std::vector<Message> messages;  ///< the most severe first

  bool empty() const { return facts.empty() && messages.empty(); }
};

struct Section;
/// Owned by pointer, so that a table under construction does not move.
using Item = std::variant<std::unique_ptr<Section>,
                          std::unique_ptr<Table>,
                          std::unique_ptr<Chart>,
                          std::unique_ptr<Message>>;

/// A heading and what lies under it, in order. The topmost section has no title.
struct Section {
  Text title;
  std::vector<Item> items;
};

/// What one run leaves.
struct Document {
  std::string title;            ///< of the report as a whole
  std::string language = "en";  ///< BCP 47 tag of the texts
  bool right_to_left = false;
  NumberStyle numbers;  ///< the language's way to write numbers
  About about;
  Section content;
  /// The report's own words ("Contents", "missing", ...) in the document's language, by their
  /// English key; a key that is not here stands for itself.
  std::map<std::string, std::string, std::less<>> words;
  std::set<std::string, std::less<>> keys;  ///< that texts were made from

  /// The document's own copy of a key.
  std::string_view own_key(std::string_view key) {
    auto found = keys.find(key);
    return found != keys.end() ? *found : *keys.emplace(key).first;
  }

  std::string_view word(std::string_view key) const {
    auto found = words.find(key);
    return found == words.end() ? key : std::string_view(found->second);
  }
};

}  // namespace hierfit::output
