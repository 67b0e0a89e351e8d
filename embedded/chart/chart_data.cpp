// The operations of the chart data library.
#include "embedded/chart/chart_data.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

#include "embedded/session_state.h"
#include "embedded/strings/cut_text.h"

using namespace hierfit;
using journal::Result;
using output::ChartColumn;
using output::ChartSource;
using output::ChartVariable;

namespace {

constexpr _varinfo kNoVariable;

template <class List>
bool holds(const List& list, int32_t index) {
  return index >= 0 && static_cast<size_t>(index) < list.size();
}

/// Names of a handle, for the journal; empty for a handle that was never filled.
std::pair<std::string_view, std::string_view> names_of(const VarDataProcessor::Impl& impl,
                                                       const _varinfo& handle) {
  if (!holds(impl.sources, handle.source)) return {};
  const ChartSource& source = impl.sources[static_cast<size_t>(handle.source)];
  if (!holds(source.variables, handle.variable)) return {source.name, {}};
  return {source.name, source.variables[static_cast<size_t>(handle.variable)].name};
}

template <class Value>
void set_value(ChartColumn* column, int32_t row, const Value& value) {
  if (column == nullptr || row < 0 || row >= chart::kMaxRows) return;
  column->set(static_cast<size_t>(row), value);
}

/// The line of a call by handle, with the names that the handle stands for.
template <class Value>
void note_by_name(const VarDataProcessor::Impl& impl,
                  const char* call,
                  const _varinfo& handle,
                  int32_t row,
                  const Value& value) {
  if (impl.journal() == nullptr) return;
  const auto [source, variable] = names_of(impl, handle);
  impl.note(call, source, variable, row, value);
}

constexpr char kSetNumber[] = "VarDataProcessor::SetVariableValue";
constexpr char kSetText[] = "VarDataProcessor::SetStringVariableValue";

}  // namespace

ChartColumn* VarDataProcessor::Impl::column(const _varinfo& handle) {
  if (!holds(sources, handle.source)) return nullptr;
  ChartSource& source = sources[static_cast<size_t>(handle.source)];
  if (!holds(source.variables, handle.variable)) return nullptr;
  return &source.variables[static_cast<size_t>(handle.variable)].values;
}

ChartColumn* VarDataProcessor::Impl::column(const std::string& source,
                                            const std::string& variable) {
  return column(find(source, variable));
}

void VarDataProcessor::Impl::set_text(ChartColumn* column, int32_t row, const std::string& text) {
  if (text.size() <= chart::kShortText) return set_value(column, row, text);
  Session::State* state = state_of_thread();
  if (state == nullptr || state->outputs.budget.spend_chart_texts(text.size())) {
    return set_value(column, row, text);
  }
  is_cut = true;
  std::string cut = text.substr(0, chart::kShortText + 1);
  cut_text(cut, chart::kShortText);
  set_value(column, row, cut);
}

_varinfo VarDataProcessor::Impl::find(const std::string& source,
                                      const std::string& variable) const {
  const auto at = source_index.find(source);
  if (at == source_index.end()) return kNoVariable;
  const Index& variables = variable_index[static_cast<size_t>(at->second)];
  const auto found = variables.find(variable);
  return found == variables.end() ? kNoVariable : _varinfo{at->second, found->second};
}

_varinfo VarDataProcessor::Impl::add(const std::string& source, const std::string& variable) {
  const auto at = source_index.find(source);
  if (at == source_index.end()) return kNoVariable;
  const auto place = static_cast<size_t>(at->second);
  std::vector<ChartVariable>& variables = sources[place].variables;
  const auto number = static_cast<int32_t>(variables.size());
  const auto [entry, is_new] = variable_index[place].emplace(variable, number);
  if (is_new) {
    ChartVariable& added = variables.emplace_back();
    added.name = variable;
    added.role = variable;
    added.values.reserve(sources[place].rows);
  }
  return {at->second, entry->second};
}

std::vector<ChartSource> VarDataProcessor::Impl::take_sources() {
  source_index.clear();
  variable_index.clear();
  return std::exchange(sources, {});
}

VarDataProcessor::VarDataProcessor()
    : impl_(std::make_unique<Impl>(journal_of_thread(), "VarDataProcessor")) {
  journal::note(impl_->journal(), "VarDataProcessor::VarDataProcessor", Result{impl_->id()});
}

VarDataProcessor::~VarDataProcessor() { impl_->note("release"); }

void VarDataProcessor::AddDataSource(const std::string& source, int32_t rowCount) {
  impl_->note("VarDataProcessor::AddDataSource", source, rowCount);
  const auto number = static_cast<int32_t>(impl_->sources.size());
  if (!impl_->source_index.emplace(source, number).second) return;
  ChartSource& added = impl_->sources.emplace_back();
  added.name = source;
  added.rows = static_cast<size_t>(std::clamp(rowCount, 0, chart::kMaxRows));
  impl_->variable_index.emplace_back();
}

void VarDataProcessor::AddVariable(const std::string& source,
                                   const std::string& variable,
                                   _varinfo* handle) {
  impl_->note("VarDataProcessor::AddVariable", source, variable, handle != nullptr);
  const _varinfo added = impl_->add(source, variable);
  if (handle != nullptr) *handle = added;
}

void VarDataProcessor::SetVariableValue(const _varinfo* handle, int32_t row, double value) {
  const _varinfo& info = handle == nullptr ? kNoVariable : *handle;
  note_by_name(*impl_, kSetNumber, info, row, value);
  set_value(impl_->column(info), row, value);
}

void VarDataProcessor::SetVariableValue(const std::string& source,
                                        const std::string& variable,
                                        int32_t row,
                                        double value) {
  impl_->note(kSetNumber, source, variable, row, value);
  set_value(impl_->column(source, variable), row, value);
}

void VarDataProcessor::SetStringVariableValue(const _varinfo* handle,
                                              int32_t row,
                                              const std::string& value) {
  const _varinfo& info = handle == nullptr ? kNoVariable : *handle;
  note_by_name(*impl_, kSetText, info, row, value);
  impl_->set_text(impl_->column(info), row, value);
}

void VarDataProcessor::SetStringVariableValue(const std::string& source,
                                              const std::string& variable,
                                              int32_t row,
                                              const std::string& value) {
  impl_->note(kSetText, source, variable, row, value);
  impl_->set_text(impl_->column(source, variable), row, value);
}

char* VarDataProcessor::GetDataStream(int32_t& length) {
  const std::string bytes = chart::write_data_stream(impl_->sources);
  const bool fits = bytes.size() <= std::numeric_limits<int32_t>::max();
  length = fits ? static_cast<int32_t>(bytes.size()) : 0;
  impl_->note("VarDataProcessor::GetDataStream", Result{length});
  auto buffer = std::make_unique_for_overwrite<char[]>(static_cast<size_t>(length) + 1);
  std::memcpy(buffer.get(), bytes.data(), static_cast<size_t>(length));
  return buffer.release();
}
