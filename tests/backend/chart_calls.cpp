#include "tests/backend/chart_calls.h"

#include <algorithm>
#include <doctest/doctest.h>
#include <map>
#include <sstream>

namespace hierfit::test {

namespace {

using nlohmann::json;

bool sets_value(const json& call) {
  const std::string name = call["call"];
  return name == "VarDataProcessor::SetVariableValue" ||
         name == "VarDataProcessor::SetStringVariableValue";
}

std::string arguments_of(const json& call) {
  std::string text;
  for (const json& argument : call.value("args", json::array())) {
    text += (text.empty() ? "" : " ") + argument.dump();
  }
  return text;
}

}  // namespace

ChartCalls::ChartCalls(const std::string& journal) {
  std::istringstream lines(journal);
  for (std::string line; std::getline(lines, line);) {
    calls_.push_back(json::parse(line));
  }
}

std::string ChartCalls::order() const {
  std::string order;
  std::string last_class;
  for (const json& call : calls_) {
    if (sets_value(call)) continue;
    const std::string name = call["call"];
    const std::size_t colon = name.find("::");
    if (!order.empty()) order += ' ';
    if (colon == std::string::npos) {
      const std::string receiver = call.value("on", "");
      order += name + ":" + receiver.substr(0, receiver.find('#'));
      last_class.clear();
      continue;
    }
    const std::string class_name = name.substr(0, colon);
    order += class_name == last_class ? name.substr(colon + 2) : name;
    last_class = class_name;
  }
  return order;
}

std::size_t ChartCalls::count(std::string_view call) const {
  return static_cast<std::size_t>(
      std::ranges::count_if(calls_, [&](const json& line) { return line["call"] == call; }));
}

std::string ChartCalls::arguments(std::string_view call) const {
  std::string text;
  for (const json& line : calls_) {
    if (line["call"] == call) text += arguments_of(line) + "\n";
  }
  return text;
}

std::string ChartCalls::column(std::string_view source, std::string_view variable) const {
  std::map<int32_t, std::string> rows;
  for (const json& call : calls_) {
    if (!sets_value(call) || call["args"][0] != source || call["args"][1] != variable) continue;
    rows[call["args"][2].get<int32_t>()] = call["args"][3].dump();
  }
  std::string text;
  int32_t next = 0;
  for (const auto& [row, value] : rows) {
    for (; next < row; ++next) {
      text += next == 0 ? "-" : " -";
    }
    text += (next++ == 0 ? "" : " ") + value;
  }
  return text;
}

std::string ChartCalls::document(std::size_t n) const {
  for (const json& call : calls_) {
    if (call["call"] == "XDocument::XDocument" && n-- == 0) return call["args"][0];
  }
  FAIL_CHECK("no such document");
  return {};
}

std::string ChartCalls::relabels() const {
  std::map<std::string, std::string> names;
  std::string text;
  for (const json& call : calls_) {
    const std::string name = call["call"];
    if (name == "XGraph::getVariable") {
      const json result = call.value("result", json());
      if (result.is_string()) names[result] = arguments_of(call);
    } else if (name.starts_with("XVariable::")) {
      text += names[call["on"]] + ": " + name.substr(11) + " " + arguments_of(call) + "\n";
    }
  }
  return text;
}

CoordinatesData column_of(std::string field, std::vector<std::string> values) {
  return {.fField = std::move(field), .fStatistic = {}, .fvValues = std::move(values)};
}

ResultDocuments labelled_documents() {
  ResultDocuments documents;
  const auto replace = [&](std::string_view from, std::string_view to) {
    const std::size_t place = documents.model.find(from);
    REQUIRE(place != std::string::npos);
    documents.model.replace(place, from.size(), to);
  };
  replace("name=\"g\"", "name=\"g\" displayName=\"Group\"");
  replace(R"(<Value value="1"/><Value value="2"/>)",
          R"(<Value value="1" displayValue="one"/><Value value="2" displayValue="two"/>)");
  replace(R"(<Value value="a"/>)", R"(<Value value="a" displayValue="A &amp; B"/>)");
  return documents;
}

}  // namespace hierfit::test
