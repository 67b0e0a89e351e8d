// Lays a chart out: its document and data become a scene.
#pragma once

#include "report/chart/binding.h"
#include "report/chart/scene.h"

namespace hierfit::report::chart {

struct Settings {
  double width = 720;  ///< pixels to lay out for; the scene is wider where nothing else helps
  bool texts = true;   ///< title, sub-title, caption and footnote are part of the picture
};

/// Lays out a graph: marks and their size, without a name. Never fails: what the chart's text or
/// data lack is not drawn. Linear in the rows.
Scene lay_out(const Binding& binding, const Settings& settings);

}  // namespace hierfit::report::chart
