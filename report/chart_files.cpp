#include "report/chart_files.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "report/chart/figure.h"
#include "report/chart/metadata.h"
#include "report/chart/svg.h"
#include "report/file_name.h"
#include "report/picture/picture.h"

namespace hierfit::report {

using output::Chart;
using output::Document;
using output::Section;

namespace {

constexpr double kPixelsPerInch = 96;
constexpr double kNarrowest = 100;
constexpr double kWidest = 10'000;

void collect(const Section& section, std::vector<const Chart*>& charts) {
  for (const output::Item& item : section.items) {
    if (const auto* chart = std::get_if<std::unique_ptr<Chart>>(&item)) {
      charts.push_back(chart->get());
    } else if (const auto* inner = std::get_if<std::unique_ptr<Section>>(&item)) {
      collect(**inner, charts);
    }
  }
}

double width_of(const Options& options) {
  return std::isfinite(options.chart_width) ? std::clamp(options.chart_width, kNarrowest, kWidest)
                                            : Options().chart_width;
}

double scale_of(const Options& options) {
  return std::clamp(options.resolution, 1.0, 10'000.0) / kPixelsPerInch;
}

/// Appends the picture of a chart with its data, of less than a megabyte; gives its scene.
chart::Scene append_picture(std::string& out,
                            const Chart& chart,
                            const Document& document,
                            const Options& options,
                            const chart::SvgSettings& settings) {
  constexpr std::string_view kEnd = "</svg>\n";
  constexpr size_t kMostBytes = 950'000;
  const chart::Figure figure(chart, document);
  chart::Scene scene = figure.scene({.width = width_of(options)});
  const size_t begin = out.size();
  chart::append_svg(out, scene, figure.plan().style, settings);
  out.resize(out.size() - kEnd.size());
  chart::append_metadata(out, chart, kMostBytes - std::min(kMostBytes, out.size() - begin));
  out += kEnd;
  return scene;
}

/// A picture of a line of text, for a document without charts.
std::string svg_of_nothing(const Document& document) {
  const chart::Style style;
  const chart::Font& font = style.font(chart::Lettering::Caption);
  const std::string text(document.word("No charts"));
  chart::Scene scene;
  scene.title = text;
  scene.width = std::ceil(chart::text_width(text, font)) + 40;
  scene.height = 48;
  scene.marks.push_back(chart::text_mark({scene.width / 2, 28}, text, font, chart::Anchor::Middle));
  std::string svg(chart::kSvgHead);
  chart::append_svg(svg, scene, style, {});
  return svg;
}

/// All charts in one picture, one beneath the other.
std::string stacked_svg(const std::vector<const Chart*>& charts,
                        const Document& document,
                        const Options& options) {
  double width = 0;
  double height = 0;
  std::string pictures;
  for (size_t i = 0; i < charts.size(); ++i) {
    const std::string prefix = "c" + std::to_string(i + 1);
    const chart::Scene scene =
        append_picture(pictures, *charts[i], document, options, {.prefix = prefix, .top = height});
    width = std::max(width, scene.width);
    height += scene.height;
  }
  std::string svg(chart::kSvgHead);
  chart::append_svg_start(svg, width, height);
  return svg.append(pictures).append("</svg>\n");
}

/// The chart that the options ask for, or all of them.
std::string svg_of_document(const Document& document, const Options& options) {
  const std::vector<const Chart*> charts = chosen_charts(document, options);
  if (charts.empty()) return svg_of_nothing(document);
  if (charts.size() == 1) return svg_of_chart(*charts.front(), document, options);
  return stacked_svg(charts, document, options);
}

}  // namespace

std::string svg_of_chart(const Chart& chart, const Document& document, const Options& options) {
  std::string svg(chart::kSvgHead);
  append_picture(svg, chart, document, options, {});
  return svg;
}

std::string png_of_chart(const Chart& chart, const Document& document, const Options& options) {
  return png_of_svg(chart::Figure(chart, document).svg({.width = width_of(options)}),
                    scale_of(options));
}

std::string pdf_of_chart(const Chart& chart, const Document& document, const Options& options) {
  return pdf_of_svg(chart::Figure(chart, document).svg({.width = width_of(options)}));
}

const ChartForm* chart_form_by_name(std::string_view name) {
  const ChartForm* found = std::ranges::find(kChartForms, name, &ChartForm::name);
  return found == std::end(kChartForms) ? nullptr : found;
}

std::vector<const Chart*> charts_of(const Document& document) {
  std::vector<const Chart*> charts;
  collect(document.content, charts);
  return charts;
}

std::vector<const Chart*> chosen_charts(const Document& document, const Options& options) {
  std::vector<const Chart*> charts = charts_of(document);
  if (options.chart > charts.size()) {
    throw std::out_of_range("there is no chart " + std::to_string(options.chart) +
                            ": the report has " + std::to_string(charts.size()));
  }
  if (options.chart == 0) return charts;
  return {charts[options.chart - 1]};
}

std::vector<File> render_charts(const Document& document,
                                const ChartForm& form,
                                const Options& options) {
  const std::vector<const Chart*> charts = charts_of(document);
  std::vector<File> files;
  for (size_t i = 0; i < charts.size(); ++i) {
    std::string name = file_name(i + 1, charts.size(), charts[i]->kind, "chart");
    files.push_back({name.append(form.ending), form.render(*charts[i], document, options)});
  }
  return files;
}

std::string render_svg(const Document& document, const Options& options) {
  return svg_of_document(document, options);
}

std::string render_png(const Document& document, const Options& options) {
  return png_of_svg(svg_of_document(document, options), scale_of(options));
}

std::vector<File> render_svg_folder(const Document& document, const Options& options) {
  return render_charts(document, *chart_form_by_name("svg"), options);
}

std::vector<File> render_png_folder(const Document& document, const Options& options) {
  return render_charts(document, *chart_form_by_name("png"), options);
}

}  // namespace hierfit::report
