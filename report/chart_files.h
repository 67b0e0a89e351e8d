// Charts as files of their own.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "output/chart.h"
#include "output/document.h"
#include "report/report.h"

namespace hierfit::report {

/// A chart as an SVG file of `Options::chart_width` pixels: literal colours, titles and notes, and
/// its data in `metadata`.
std::string svg_of_chart(const output::Chart& chart,
                         const output::Document& document,
                         const Options& options);
/// The same picture as a grid of points, of `Options::resolution`.
std::string png_of_chart(const output::Chart& chart,
                         const output::Document& document,
                         const Options& options);
/// The same picture as a page with text as text and lines as lines.
std::string pdf_of_chart(const output::Chart& chart,
                         const output::Document& document,
                         const Options& options);

/// The chart for Vega-Lite, with its data.
std::string vega_of_chart(const output::Chart& chart,
                          const output::Document& document,
                          const Options& options);

/// A form of a single chart: its name as in `--chart-format`, and the ending of its files.
struct ChartForm {
  std::string_view name;
  std::string_view ending;
  std::string (*render)(const output::Chart&, const output::Document&, const Options&);
};

inline constexpr ChartForm kChartForms[] = {
    {"svg", ".svg", &svg_of_chart},
    {"png", ".png", &png_of_chart},
    {"pdf", ".pdf", &pdf_of_chart},
    {"vl.json", ".vl.json", &vega_of_chart},
};

/// The form of that name, or null. Case matters.
const ChartForm* chart_form_by_name(std::string_view name);

/// The charts of a document in its order.
std::vector<const output::Chart*> charts_of(const output::Document& document);

/// Those that `Options::chart` asks for: one, or all. Throws `std::out_of_range` when there is no
/// chart of that number.
std::vector<const output::Chart*> chosen_charts(const output::Document& document,
                                                const Options& options);

/// Every chart of a document as a file: "01-predicted-by-observed.svg". None without charts.
std::vector<File> render_charts(const output::Document& document,
                                const ChartForm& form,
                                const Options& options);

}  // namespace hierfit::report
