// A data variable of a chart document.
#pragma once

#include "host/chart_document.h"

#include "embedded/chart/parse_markup.h"
#include "embedded/journal/journal.h"
#include "output/chart.h"

namespace hierfit::chart {

/// What a `variable` element says. Its `values` are read, too.
output::ChartVariable read_variable(Element& element);

/// The sources of a `data` element; null gives none.
std::vector<output::ChartSource> read_sources(Element* data);

/// Writes a label of one value as a child of a `variable` element.
void add_relabel(Element& variable, double value, std::string_view text);
void add_relabel(Element& variable, std::string_view value, std::string_view text);

void set_format(Element& variable, const VELT_Format& format);

/// A text that is a number in any notation, or none.
std::optional<double> number_of(std::string_view text);

/// A variable as the module holds it, which has its number from the first time that it is asked
/// for. Changes gather here and go into the element at `store`.
class Variable final : public XVariable, public journal::Receiver {
 public:
  Variable(Element& element, journal::Journal* journal);

  void setLabel(const ChartString& label) override;
  void setFormat(const VELT_Format& format) override;
  void setCategorical(bool categorical) override;
  void setVELTVariable(VELT_Variable* variable) override;
  void setFormatBasedOnVELTVariable(VELT_Variable* variable) override;
  void addRelabels() override;
  void addRelabel(double value, const ChartString& text) override;
  void addRelabel(const ChartString& value, const ChartString& text) override;
  void SetFormatPrefix(const ChartString& prefix) override;

  const std::string& name() const { return described_.name; }
  /// What the labels of its values take, in bytes, once as they are and once for each row of the
  /// data that shows them.
  size_t label_bytes(const std::vector<output::ChartSource>& data) const;
  /// Keeps the labels of the values that stand in the data, none longer than `most` bytes. Gives
  /// whether one was cut.
  bool keep_labels_of(const std::vector<output::ChartSource>& data, size_t most);
  void store();

 private:
  void relabel(double value, std::string text);
  void relabel(const std::string& value, std::string text);

  Element& element_;
  output::ChartVariable described_;
  VELT_Variable* dictionary_ = nullptr;
  bool changed_ = false;
};

}  // namespace hierfit::chart
