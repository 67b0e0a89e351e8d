// Lays a chart out: its document and data become a scene.
#pragma once

#include "output/chart.h"
#include "output/document.h"
#include "report/chart/scene.h"

namespace hierfit::report::chart {

struct Settings {
  double width = 720;  ///< pixels to lay out for; the scene is wider where nothing else helps
  bool texts = true;   ///< title, sub-title, caption and footnote are part of the picture
};

/// Lays out a chart of the report `document`, whose words and marks of numbers it takes. Never
/// fails: what the chart's text or data lack is not drawn. Linear in the rows.
Scene lay_out(const output::Chart& chart,
              const output::Document& document,
              const Settings& settings);

/// The same from a plan that is read already.
struct Plan;
Scene lay_out(const Plan& plan,
              const output::Chart& chart,
              const output::Document& document,
              const Settings& settings);

}  // namespace hierfit::report::chart
