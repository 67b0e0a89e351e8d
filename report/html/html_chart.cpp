#include "report/html/html_chart.h"

#include <algorithm>
#include <array>
#include <set>

#include "report/chart/figure.h"
#include "report/chart/svg.h"
#include "report/html/markup.h"
#include "report/wording.h"

namespace hierfit::report::html {

using output::Chart;
using output::ChartSource;
using output::ChartVariable;
using output::Document;

namespace {

constexpr double kWide = 740;
constexpr double kNarrow = 358;               ///< a telephone held upright, less the page's margins
constexpr size_t kMostNarrowBytes = 400'000;  ///< larger pictures scroll there instead
constexpr size_t kMostRows = 500;

void append_lines(std::string& out, std::string_view text) {
  for (size_t feed; (feed = text.find('\n')) != std::string_view::npos;) {
    append_escaped(out, text.substr(0, feed));
    out += "<br>";
    text.remove_prefix(feed + 1);
  }
  append_escaped(out, text);
}

/// A column of the data table: a variable, and what it is called.
struct DataColumn {
  const ChartVariable* variable;
  std::string title;
  bool text;
  bool names;  ///< whether its values are keys of nodes, which begin with the values of the panel
};

class HtmlChart {
 public:
  HtmlChart(std::string& out, const Document& document, const Chart& chart, uint32_t number)
      : out_(out),
        document_(document),
        chart_(chart),
        number_(number),
        id_("c" + std::to_string(number)),
        figure_(chart, document),
        plan_(figure_.plan()),
        style_(figure_.binding().numbers) {}

  void write() {
    out_ += "<figure class=\"chart\" id=\"" + id_ + "\">\n";
    write_caption();
    write_pictures();
    for (const std::string& note : figure_.notes())
      write_note(note);
    write_data();
    out_ += "</figure>\n";
  }

 private:
  void write_caption() {
    out_ += "<figcaption id=\"" + id_ + "h\"><b>";
    append_escaped(out_, filled(document_.word("Figure ^1"), std::to_string(number_)));
    out_ += "</b><br><i>";
    append_lines(out_, figure_.title());
    out_ += "</i>";
    if (!figure_.sub_title().empty()) {
      out_ += "<br><span>";
      append_lines(out_, figure_.sub_title());
      out_ += "</span>";
    }
    out_ += "</figcaption>\n";
  }

  std::string picture(double width, std::string_view suffix) const {
    std::string svg;
    const chart::Scene scene = figure_.scene({.width = width, .texts = false});
    const std::string prefix = id_ + std::string(suffix);
    chart::append_svg(svg, scene, plan_.style, {.by_class = true, .prefix = prefix});
    return svg;
  }

  /// The picture, and one for telephones where it is not large; the page shows one of them.
  void write_pictures() {
    const std::string wide = picture(kWide, "w");
    const bool both = wide.size() <= kMostNarrowBytes;
    out_ += both ? "<div class=\"scroll c-wide\"" : "<div class=\"scroll\"";
    write_region();
    out_ += wide;
    out_ += "</div>\n";
    if (!both) return;
    out_ += "<div class=\"scroll c-narrow\"";
    write_region();
    out_ += picture(kNarrow, "n");
    out_ += "</div>\n";
  }

  void write_region() {
    out_ += " tabindex=\"0\" role=\"region\" aria-labelledby=\"" + id_ + "h\">\n";
  }

  void write_note(const std::string& text) {
    out_ += "<p>";
    append_lines(out_, text);
    out_ += "</p>\n";
  }

  // The data.

  void write_data() {
    out_ += "<details>\n<summary>";
    append_escaped(out_, document_.word("Data of the figure"));
    out_ += "</summary>\n";
    std::set<std::string_view> written;
    for (const chart::Element& element : plan_.graph.elements) {
      const ChartSource* source = source_of(element);
      if (source != nullptr && written.insert(source->name).second) write_source(*source);
    }
    out_ += "</details>\n";
  }

  const ChartSource* source_of(const chart::Element& element) const {
    if (element.source.empty() && !chart_.sources.empty()) return &chart_.sources.front();
    return chart_.source(element.source);
  }

  bool has_pairs(const ChartSource& source) const {
    return std::ranges::any_of(plan_.graph.elements, [&](const chart::Element& element) {
      return element.rows == chart::Rows::Pairs && source_of(element) == &source;
    });
  }

  void write_source(const ChartSource& source) {
    const std::vector<DataColumn> columns = columns_of(source);
    if (columns.empty()) return;
    const size_t step = has_pairs(source) ? 2 : 1;
    const size_t lines = (source.rows + step - 1) / step;
    out_ += "<div class=\"scroll\" tabindex=\"0\" role=\"region\" aria-labelledby=\"" + id_ +
            "h\">\n<table>\n<caption><span class=\"v\">";
    append_escaped(out_, document_.word("Data of the figure"));
    out_ += "</span></caption>\n<thead>\n<tr>";
    for (const DataColumn& column : columns) {
      out_ += column.text ? "<th scope=\"col\" class=\"t\">" : "<th scope=\"col\">";
      append_lines(out_, column.title);
      out_ += "</th>";
    }
    out_ += "</tr>\n</thead>\n<tbody>\n";
    for (size_t line = 0; line < std::min(lines, kMostRows); ++line)
      write_line(source, columns, line * step, step == 2 ? line * step + 1 : line * step);
    out_ += "</tbody>\n</table>\n</div>\n";
    if (lines > kMostRows) write_rest(lines);
  }

  void write_rest(size_t lines) {
    write_note(chart::with_arguments(
        document_.word("The first ^1 of ^2 rows; the JSON form of the report holds all of them."),
        {std::to_string(kMostRows), std::to_string(lines)}));
  }

  void write_line(const ChartSource& source,
                  const std::vector<DataColumn>& columns,
                  size_t row,
                  size_t partner) {
    out_ += "<tr>";
    for (const auto& [variable, title, text, names] : columns) {
      out_ += text ? "<td class=\"t\"" : "<td";
      if (row == partner) write_value(*variable, row);
      out_ += '>';
      if (chart::has_value(*variable, row) || chart::has_value(*variable, partner)) {
        append_lines(out_, names
                               ? chart::shown_in_panel(source, plan_.graph, *variable, row, style_)
                               : chart::shown_pair(*variable, row, partner, style_));
      } else {
        out_ += "<span class=\"v\">";
        append_escaped(out_, document_.word("missing"));
        out_ += "</span>";
      }
      out_ += "</td>";
    }
    out_ += "</tr>\n";
  }

  /// The whole number, where the cell shows one.
  void write_value(const ChartVariable& variable, size_t row) {
    if (variable.values.kind(row) != output::ChartColumn::Kind::Number) return;
    const double value = variable.values.number(row);
    if (!chart::is_number(value) || variable.label_of(value) != nullptr) return;
    out_ += " data-value=\"";
    append_double(out_, value);
    out_ += '"';
  }

  /// The variables that mean something to a reader: not those that only place nodes and edges.
  std::vector<DataColumn> columns_of(const ChartSource& source) const {
    std::vector<DataColumn> columns;
    for (const ChartVariable& variable : source.variables) {
      if (variable.values.rows() == 0) continue;
      std::string title = title_of(source, variable);
      if (title.empty()) continue;
      columns.push_back({&variable, std::move(title), variable.categorical, names_nodes(variable)});
    }
    return columns;
  }

  bool names_nodes(const ChartVariable& variable) const {
    using chart::RoleKind;
    return std::ranges::any_of(plan_.graph.elements, [&](const chart::Element& element) {
      return std::ranges::any_of(
          std::array{RoleKind::Key, RoleKind::From, RoleKind::To}, [&](RoleKind kind) {
            return element.roles.of[static_cast<size_t>(kind)].variable == variable.role;
          });
    });
  }

  /// The label of a variable, else a word for what it is in the chart; empty when it is nothing.
  std::string title_of(const ChartSource& source, const ChartVariable& variable) const {
    for (const chart::Facet& facet : plan_.graph.facets) {
      if (facet.variable == variable.role) return chart::label_of(variable);
    }
    for (const chart::Element& element : plan_.graph.elements) {
      if (source_of(element) != &source) continue;
      const std::string_view word = word_for(element, variable.role);
      if (word.empty()) continue;
      return variable.label.empty() ? std::string(word) : variable.label;
    }
    return {};
  }

  /// What the variable of this role is in the element; empty when it only places it.
  std::string_view word_for(const chart::Element& element, std::string_view role) const {
    using chart::ElementKind;
    using chart::RoleKind;
    const bool placed_by_data = element.kind == ElementKind::Edge ||
                                element.kind == ElementKind::Node ||
                                element.kind == ElementKind::Text;
    for (size_t i = 0; i < element.roles.of.size(); ++i) {
      if (element.roles.of[i].variable != role) continue;
      const auto kind = static_cast<RoleKind>(i);
      if (kind <= RoleKind::Y2 && placed_by_data) continue;
      return word_for(element, kind);
    }
    const bool in_tooltip = std::ranges::any_of(
        element.roles.tooltip, [&](const auto& entry) { return entry.variable == role; });
    return in_tooltip ? document_.word("Details") : std::string_view();
  }

  std::string_view word_for(const chart::Element& element, chart::RoleKind kind) const {
    for (const chart::Legend& legend : plan_.graph.legends) {
      if (legend.role == kind && !legend.title.empty()) return legend.title;
    }
    if (kind == chart::RoleKind::Y && element.whisker) return document_.word("Interval");
    /// By role.
    constexpr std::string_view kWords[] = {"Category", "Value",     "",       "",
                                           "Node",     "From",      "To",     "Kind",
                                           "Kind",     "Frequency", "Weight", "Name"};
    return document_.word(kWords[static_cast<size_t>(kind)]);
  }

  std::string& out_;
  const Document& document_;
  const Chart& chart_;
  uint32_t number_;
  std::string id_;
  chart::Figure figure_;
  const chart::Plan& plan_;
  const output::NumberStyle& style_;
};

}  // namespace

void append_chart(std::string& out, const Document& document, const Chart& chart, uint32_t number) {
  HtmlChart(out, document, chart, number).write();
}

}  // namespace hierfit::report::html
