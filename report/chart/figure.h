// A chart made ready to be shown: what every form of a report asks of it.
#pragma once

#include <string>
#include <vector>

#include "output/chart.h"
#include "output/document.h"
#include "report/chart/binding.h"
#include "report/chart/layout.h"
#include "report/chart/plan.h"
#include "report/chart/scene.h"

namespace hierfit::report::chart {

/// Texts are as they came, plain; an empty one is not shown.
class Figure {
 public:
  /// `document` gives the report's words and its way to write numbers. The figure refers to both.
  Figure(const output::Chart& chart, const output::Document& document);
  Figure(const Figure&) = delete;
  Figure& operator=(const Figure&) = delete;

  const Plan& plan() const { return plan_; }
  const Binding& binding() const { return binding_; }
  const std::string& title() const { return binding_.chart.title; }
  const std::string& sub_title() const { return plan_.texts.sub_title; }
  /// What stands beneath.
  std::vector<std::string> notes() const;
  /// What the figure shows, in sentences made from its data: its kind, axes and ranges, the highest
  /// and lowest mean, the pairs that differ.
  const std::string& description() const { return description_; }

  Scene scene(const Settings& settings) const;
  /// A file with literal colours.
  std::string svg(const Settings& settings) const;

 private:
  Plan plan_;
  Binding binding_;
  std::string description_;
};

}  // namespace hierfit::report::chart
