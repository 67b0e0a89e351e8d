// The data of a Vega-Lite chart: one list of rows for all that it draws.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "report/chart/binding.h"
#include "report/chart/scale.h"

namespace hierfit::report::vega {

/// Writes rows as JSON objects, a line each. A row says in "part" which layer draws it.
class Rows {
 public:
  void begin(std::string_view part);
  void number(std::string_view name, double value);
  void text(std::string_view name, std::string_view value);
  void end() { out_ += '}'; }

  bool empty() const { return out_.empty(); }
  std::string take() { return std::move(out_); }

 private:
  std::string out_;
};

/// What the layers of a chart have to know of its rows.
struct DataFacts {
  bool dodged = false;  ///< several colours stand at one category
  bool guides = false;  ///< there are lines across ("guide")
  bool levels = false;  ///< there are horizontal lines ("level")
  std::optional<chart::Range> sizes;
  std::map<double, std::string> size_labels;  ///< of sizes that have some
  std::optional<chart::Range> frequencies;
};

/// "interval 1" of the second element.
std::string part_of(const chart::Binding& binding, const chart::BoundElement& element);

/// What a category along x is called; a blank stands for the empty name.
std::string category_name(const chart::ValueIndex::Entry& category);

/// "panel 3", or its titles where they tell it from the others.
std::string panel_name(const chart::Binding& binding, uint32_t panel);

/// The rows of the elements and guides of a graph. Nodes on a circle get their places here: x to
/// the right and y up, from -1 to 1.
DataFacts append_rows(Rows& rows, const chart::Binding& binding);

/// What a histogram has rows for. Categories have bars alone.
struct HistogramFacts {
  bool bars = false;
  bool categories = false;
  bool curve = false;
};

/// The bars ("bin") and the curve ("curve") of a histogram.
HistogramFacts append_histogram(Rows& rows,
                                const chart::Binding& binding,
                                const chart::Embedded& embedded);

}  // namespace hierfit::report::vega
