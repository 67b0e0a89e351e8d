// The workbook form: a sheet of contents, and one for each table and chart.
#include <algorithm>

#include "output/utf8.h"
#include "report/chart/figure.h"
#include "report/picture/picture.h"
#include "report/report.h"
#include "report/typeset/blocks.h"
#include "report/typeset/texts.h"
#include "report/xlsx/chart_data.h"
#include "report/xlsx/table_sheets.h"

namespace hierfit::report {

using output::Document;

namespace xlsx {
namespace {

/// A workbook of more cells than this is written row by row; each sheet has a file of its own until
/// the end then, so there must not be too many.
constexpr size_t kManyCells = 200'000;
constexpr size_t kManySheets = 200;

/// Charts as pictures have twice the points of a screen.
constexpr double kPictureScale = 2;

constexpr char kContentsLink[] = "internal:'";

/// The library cuts a picture's text where its bytes end, be that inside a character.
constexpr size_t kMostAttributeBytes = 2000;  // as markup

/// As much of a picture's text as goes into a workbook, with an ellipsis when that is not all.
std::string alternative_text(std::string text) {
  constexpr size_t kLongestEscape = 6;
  size_t bytes = 0;
  for (const utf8::Character& each : utf8::Characters(text)) {
    const bool is_markup = std::string_view("&<>\"\n").find(each.bytes) != std::string_view::npos;
    bytes += is_markup ? kLongestEscape : each.bytes.size();
    if (bytes <= kMostAttributeBytes) continue;
    text.resize(static_cast<size_t>(each.bytes.data() - text.data()));
    text += "\u2026";
    break;
  }
  return text;
}

class Report {
 public:
  Report(const Document& document, const Options& options)
      : document_(document),
        options_(options),
        texts_(document),
        blocks_(blocks_of(document)),
        workbook_(is_large(blocks_), document.right_to_left) {}

  std::string write() {
    set_properties();
    write_contents();
    for (const Block& block : blocks_) {
      if (block.as<output::Table>() != nullptr) write_table(workbook_, document_, block);
      if (const auto* chart = block.as<output::Chart>()) write_chart(block, *chart);
    }
    return workbook_.take();
  }

 private:
  static bool is_large(const std::vector<Block>& blocks) {
    size_t cells = 0;
    size_t sheets = 0;
    for (const Block& block : blocks) {
      const auto* table = block.as<output::Table>();
      if (table != nullptr) cells += table->cells.size();
      if (table != nullptr || block.as<output::Chart>() != nullptr) ++sheets;
    }
    return cells > kManyCells && sheets < kManySheets;
  }

  /// The time of making would make each file another.
  void set_properties() {
    std::string title = report_title(document_);
    title = first_units(title, 255);
    lxw_doc_properties properties = {};
    properties.title = title.data();
    properties.created = 1;
    workbook_set_properties(workbook_.get(), &properties);
  }

  // The contents.

  void write_contents() {
    lxw_worksheet* sheet = workbook_.add_sheet(sheet_name(document_.word("Contents")));
    set_up(sheet, document_, false);
    worksheet_fit_to_pages(sheet, 1, 0);
    worksheet_set_column(sheet, 0, 0, kNumberWidth, nullptr);
    worksheet_set_column(sheet, 1, 1, kTitleWidth, nullptr);
    const Look title = {.size = 15, .bold = true};
    write_runs(workbook_, sheet, 0, 0, {{report_title(document_), title}}, title);
    uint32_t row = 2;
    const size_t opening = opening_blocks(document_);
    for (size_t i = 0; i < blocks_.size() && row < kMostRows; ++i) {
      const Block& block = blocks_[i];
      if (i == opening && opening > 0) ++row;
      if (const auto* section = block.as<output::Section>()) {
        write_heading(sheet, ++row, block, *section);
      } else if (const auto* message = block.as<output::Message>()) {
        write_message(sheet, row, *message);
      } else if (const auto* about = block.as<output::About>()) {
        write_about(sheet, row, *about);
        continue;
      } else {
        write_link(sheet, row, block);
      }
      ++row;
    }
  }

  void write_heading(lxw_worksheet* sheet,
                     uint32_t row,
                     const Block& block,
                     const output::Section& section) {
    Look look = {.size = block.level > 1 ? 10.0 : 12.0, .bold = true};
    write_runs(workbook_, sheet, row, 0, {{texts_.shown(section.title), look}}, look);
  }

  /// A row for each value; moves behind them.
  void write_about(lxw_worksheet* sheet, uint32_t& row, const output::About& about) {
    const Look heading = {.size = 12, .bold = true};
    write_runs(workbook_, sheet, row++, 0, {{texts_.shown(about.title), heading}}, heading);
    const Look label = {.quiet = true, .wraps = true};
    const Look value = {.wraps = true};
    for (const output::Fact& fact : about.facts) {
      for (const output::Text& text : fact.values) {
        if (row == kMostRows) return;
        if (&text == fact.values.data()) {
          write_runs(workbook_, sheet, row, 0, {{texts_.shown(fact.label), label}}, label);
        }
        write_runs(workbook_, sheet, row++, 1, {{texts_.shown(text), value}}, value);
      }
    }
  }

  void write_message(lxw_worksheet* sheet, uint32_t row, const output::Message& message) {
    const Look word = {.bold = true};
    const std::string severity(severity_word(message.severity, document_));
    write_runs(workbook_, sheet, row, 0, {{severity, word}}, word);
    const Look text = {.wraps = true};
    write_runs(workbook_, sheet, row, 1, {{texts_.shown(message.text), text}}, text);
  }

  void write_link(lxw_worksheet* sheet, uint32_t row, const Block& block) {
    const Look number = {.quiet = true};
    write_runs(workbook_, sheet, row, 0, {{numbered(block, document_), number}}, number);
    const std::string title = first_units(texts_.shown(title_of(block)), kMostCharacters);
    const Look link = {.link = true, .wraps = true};
    if (row < kMostLinks) {
      const std::string place = kContentsLink + sheet_name(block, document_) + "'!A1";
      worksheet_write_url(sheet, row, 1, place.c_str(), nullptr);
    }
    write_runs(workbook_, sheet, row, 1, {{title, link}}, link);
  }

  // A chart: its picture on a sheet.

  void write_chart(const Block& block, const output::Chart& chart) {
    const chart::Figure figure(chart, document_);
    lxw_worksheet* sheet = workbook_.add_sheet(sheet_name(block, document_));
    set_up(sheet, document_, true);
    write_title(workbook_, sheet, numbered(block, document_),
                {{texts_.shown(title_of(block)), {.italic = true}}});
    const std::string svg = figure.svg({.width = options_.chart_width});
    const Grid under = fix_grid(sheet, size_of_svg(svg));
    const std::string png = png_of_svg(svg, kPictureScale);
    std::string description = alternative_text(clean(figure.description()));
    lxw_image_options place = {};
    place.description = description.data();
    place.object_position = LXW_OBJECT_MOVE_DONT_SIZE;
    worksheet_insert_image_buffer_opt(sheet, kTitleRows, 0,
                                      reinterpret_cast<const unsigned char*>(png.data()),
                                      png.size(), &place);
    worksheet_fit_to_pages(sheet, 1, 1);
    // The data are for looking up, not for paper.
    worksheet_print_area(sheet, 0, 0, kTitleRows + under.rows, under.columns);
    write_chart_data(workbook_, sheet, document_, figure, kTitleRows + under.rows + 1);
  }

  /// What lies under a picture: rows from the title on, and the last column.
  struct Grid {
    uint32_t rows;
    lxw_col_t columns;
  };

  /// Programs take the size of a picture from the cells under it: those must have the same size
  /// everywhere.
  static Grid fix_grid(lxw_worksheet* sheet, const PictureSize& size) {
    constexpr double kRowHeight = 15.75;
    constexpr double kRowPixels = 21;
    constexpr double kColumnWidth = 9;
    constexpr double kColumnPixels = 68;
    const auto rows = static_cast<uint32_t>(std::min(size.height / kRowPixels, 1000.0)) + 1;
    for (uint32_t row = 0; row < rows; ++row)
      worksheet_set_row(sheet, kTitleRows + row, kRowHeight, nullptr);
    const auto columns = static_cast<lxw_col_t>(std::min(size.width / kColumnPixels, 1000.0));
    worksheet_set_column(sheet, 0, columns, kColumnWidth, nullptr);
    return {rows, columns};
  }

  static constexpr double kNumberWidth = 26;
  static constexpr double kTitleWidth = 80;

  const Document& document_;
  const Options& options_;
  Texts texts_;
  std::vector<Block> blocks_;
  Workbook workbook_;
};

}  // namespace
}  // namespace xlsx

std::string render_xlsx(const Document& document, const Options& options) {
  return xlsx::Report(document, options).write();
}

}  // namespace hierfit::report
