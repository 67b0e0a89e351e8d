#include "report/html/html_chart.h"

#include "report/chart/figure.h"
#include "report/chart/figure_table.h"
#include "report/chart/svg.h"
#include "report/html/markup.h"
#include "report/wording.h"

namespace hierfit::report::html {

using output::Chart;
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

class HtmlChart {
 public:
  HtmlChart(std::string& out, const Document& document, const Block& block)
      : out_(out),
        document_(document),
        number_(numbered(block, document)),
        id_(block.anchor()),
        figure_(*block.as<Chart>(), document),
        texts_(document) {}

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
    append_escaped(out_, number_);
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
    chart::append_svg(svg, scene, figure_.plan().style, {.by_class = true, .prefix = prefix});
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
    for (const chart::FigureTable& data : chart::figure_tables(figure_.binding(), kMostRows))
      write_table(data);
    out_ += "</details>\n";
  }

  void write_table(const chart::FigureTable& data) {
    const output::Table& table = data.table;
    out_ += "<div class=\"scroll\" tabindex=\"0\" role=\"region\" aria-labelledby=\"" + id_ +
            "h\">\n<table>\n<caption><span class=\"v\">";
    append_escaped(out_, table.title.shown);
    out_ += "</span></caption>\n<thead>\n<tr>";
    for (size_t column = 0; column < data.texts.size(); ++column) {
      out_ += data.texts[column] ? "<th scope=\"col\" class=\"t\">" : "<th scope=\"col\">";
      append_lines(out_, table.dimensions[1].nodes[column].label.shown);
      out_ += "</th>";
    }
    out_ += "</tr>\n</thead>\n<tbody>\n";
    chart::for_cells(table, [&](uint32_t, uint32_t column, const output::CellValue* value) {
      if (column == 0) out_ += "<tr>";
      out_ += data.texts[column] ? "<td class=\"t\"" : "<td";
      write_cell(table, value);
      out_ += column + 1 == data.texts.size() ? "</td></tr>\n" : "</td>";
    });
    out_ += "</tbody>\n</table>\n</div>\n";
    if (table.caption) write_note(table.caption->shown);
  }

  /// What a cell says, behind the name of its tag; of a number the whole of it, too.
  void write_cell(const output::Table& table, const output::CellValue* value) {
    if (value == nullptr) {
      out_ += "><span class=\"v\">";
      append_escaped(out_, document_.word("missing"));
      out_ += "</span>";
    } else if (const auto* number = std::get_if<output::Number>(value)) {
      out_ += " data-value=\"";
      append_double(out_, number->value);
      out_ += "\">";
      append_escaped(out_, output::shown(*number, texts_.numbers()));
    } else {
      out_ += '>';
      append_text(out_, table.texts[std::get<uint32_t>(*value)], texts_);
    }
  }

  std::string& out_;
  const Document& document_;
  std::string number_;  ///< "Figure 3"
  std::string id_;
  chart::Figure figure_;
  Texts texts_;
};

}  // namespace

void append_chart(std::string& out, const Document& document, const Block& block) {
  HtmlChart(out, document, block).write();
}

}  // namespace hierfit::report::html
