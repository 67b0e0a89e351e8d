// The PDF form: the whole report on pages.
#include <algorithm>
#include <memory>
#include <optional>

#include "report/chart/figure.h"
#include "report/pdf/pdf_table.h"
#include "report/pdf/pen.h"
#include "report/picture/picture.h"
#include "report/report.h"

namespace hierfit::report {

using output::Document;

namespace pdf {
namespace {

constexpr TextLook kTitleLook = {.size = 18, .line = 1.25};
constexpr TextLook kBodyLook = {.size = 9.5, .line = 1.35};
constexpr TextLook kEntryLook = {.size = 9, .line = 1.45};
constexpr TextLook kFootLook = {.size = 8, .side = Side::Centre};
constexpr double kHeadingSizes[] = {13.5, 11.5, 10};
constexpr double kHeadingOver = 26;
constexpr double kHeadingUnder = 8;
constexpr double kEntryStep = 12;
constexpr double kEntryPage = 30;  ///< for the page's number in the contents
constexpr double kBarWidth = 2;
constexpr double kBarGap = 8;
constexpr double kPointsPerPixel = 0.75;
constexpr double kNoteGap = 3;

/// A chart drawn, and its size on paper.
struct Drawing {
  std::unique_ptr<chart::Figure> figure = {};
  std::string svg = {};
  double width = 0;
  double height = 0;
};

/// A part of the report and what it takes to draw it.
struct Block {
  PageEntry page;
  std::unique_ptr<PdfTable> table = {};
  Drawing drawing = {};
  uint32_t on_page = 0;
};

class Report {
 public:
  Report(const Document& document, const Options& options)
      : document_(document), options_(options), title_(report_title(document)) {
    for (PageEntry& page : plan_pages(document))
      blocks_.push_back(block_of(page));
  }

  /// Twice: pages are counted before their numbers are written.
  std::string write() {
    Pen measure(false, document_.right_to_left, title_);
    draw(measure);
    pages_ = measure.page();
    Pen pen(true, document_.right_to_left, title_);
    draw(pen);
    return pen.take();
  }

 private:
  Block block_of(const PageEntry& page) const {
    Block block{page};
    if (const auto* table = page.entry.as<output::Table>()) {
      block.table = std::make_unique<PdfTable>(document_, *table, page.entry.number);
    } else if (const auto* chart = page.entry.as<output::Chart>()) {
      block.drawing = drawing_of(*chart);
    }
    return block;
  }

  Drawing drawing_of(const output::Chart& chart) const {
    constexpr double kMostWidth = kPaperWidth - 2 * kSideMargin;
    constexpr double kMostHeight = kPaperHeight - 2 * kEndMargin - 130;
    const double width = std::min(options_.chart_width, kMostWidth / kPointsPerPixel);
    Drawing drawing{std::make_unique<chart::Figure>(chart, document_)};
    drawing.svg = drawing.figure->svg({.width = width, .texts = false});
    const PictureSize size = size_of_svg(drawing.svg);
    const double scale =
        std::min({kPointsPerPixel, kMostWidth / size.width, kMostHeight / size.height});
    drawing.width = size.width * scale;
    drawing.height = size.height * scale;
    return drawing;
  }

  void draw(Pen& pen) {
    pen.on_page = [this](Pen& on) { draw_foot(on); };
    pen.begin_page(false);
    pen.flow({{.text = title_, .bold = true}}, kTitleLook, pen.left(), pen.width());
    pen.y += kHeadingOver / 2;
    draw_contents(pen);
    parents_.assign(1, 0);
    for (size_t i = 0; i < blocks_.size(); ++i)
      draw_block(pen, i);
  }

  void draw_foot(Pen& pen) const {
    const std::string text = chart::with_arguments(
        document_.word("Page ^1 of ^2"), {std::to_string(pen.page()), std::to_string(pages_)});
    pen.text({{.text = text, .quiet = true}}, kFootLook, pen.left(), pen.bottom() + 16,
             pen.width());
  }

  // The contents.

  void draw_contents(Pen& pen) {
    const auto listed = [](const Block& block) {
      return block.page.entry.as<output::Message>() == nullptr;
    };
    if (std::ranges::none_of(blocks_, listed)) return;
    const Runs heading = {
        {.text = std::string(document_.word("Contents")), .bold = true, .quiet = true}};
    pen.flow(heading, kBodyLook, pen.left(), pen.width());
    pen.y += kNoteGap;
    for (const Block& block : blocks_) {
      if (listed(block)) draw_entry(pen, block);
    }
    if (!blocks_.empty() && blocks_.front().page.landscape == pen.landscape()) pen.next_page();
  }

  void draw_entry(Pen& pen, const Block& block) {
    const Entry& entry = block.page.entry;
    const double indent = kEntryStep * std::min(entry.level - 1, 5U);
    const double width = pen.width() - indent - kEntryPage;
    Runs runs;
    if (const std::string number = numbered(entry, document_); !number.empty()) {
      runs.push_back({.text = number + "  ", .quiet = true});
    }
    std::string title = shown(title_of(entry));
    std::ranges::replace(title, '\n', ' ');
    runs.push_back({.text = std::move(title), .bold = entry.as<output::Section>() != nullptr});
    if (pen.height(runs, kEntryLook, width) > pen.room()) pen.next_page();
    pen.link(anchor_of(entry), [&] {
      TextLook look = kEntryLook;
      look.side = Side::End;
      pen.ink(Ink::Text);
      const std::string page = std::to_string(block.on_page);
      pen.text({{.text = page}}, look, pen.left(), pen.y, pen.width());
      const double x = document_.right_to_left ? pen.left() + kEntryPage : pen.left() + indent;
      pen.flow(runs, kEntryLook, x, width);
    });
  }

  static std::string anchor_of(const Entry& entry) {
    constexpr std::string_view kLetters = "stcm";
    return kLetters[entry.content.index()] + std::to_string(entry.number);
  }

  std::string shown(const output::Text& text) const {
    output::NumberStyle style = document_.numbers;
    style.minus = "\u2212";
    return clean(restyled(text, style));
  }

  // The parts.

  void draw_block(Pen& pen, size_t i) {
    Block& block = blocks_[i];
    if (block.page.landscape != pen.landscape()) {
      pen.begin_page(block.page.landscape);
    } else if (start_height(pen, i) > pen.room() && !pen.at_top()) {
      pen.next_page();
    }
    if (!pen.at_top()) pen.y += gap_over(block);
    block.on_page = pen.page();
    mark(pen, block.page.entry);
    std::visit([&](const auto* part) { draw_part(pen, block, *part); }, block.page.entry.content);
  }

  /// What a part needs of a page to begin on it; a heading with what follows it.
  double start_height(Pen& pen, size_t i) {
    double height = 0;
    for (; i < blocks_.size(); ++i) {
      Block& block = blocks_[i];
      height += gap_over(block);
      const auto* section = block.page.entry.as<output::Section>();
      if (section == nullptr) return height + own_start_height(pen, block);
      height += pen.height(heading_of(*section), heading_look(block), pen.width()) + kHeadingUnder;
    }
    return height;
  }

  static double gap_over(const Block& block) {
    if (block.page.entry.as<output::Section>() != nullptr) return kHeadingOver;
    return block.page.entry.as<output::Message>() == nullptr ? kBlockGap : kBlockGap / 2;
  }

  double own_start_height(Pen& pen, Block& block) {
    if (block.table != nullptr) return block.table->start_height(pen);
    if (block.drawing.figure) return figure_height(pen, block);
    return kBodyLook.size * 3;
  }

  /// A place to link to and, of all but messages, an entry of the outline.
  void mark(Pen& pen, const Entry& entry) {
    const std::string name = anchor_of(entry);
    pen.destination(name);
    if (entry.as<output::Message>() != nullptr) return;
    parents_.resize(std::min<size_t>(parents_.size(), entry.level));
    std::string title = numbered(entry, document_);
    if (!title.empty()) title += "  ";
    title += shown(title_of(entry));
    std::ranges::replace(title, '\n', ' ');
    const int made = pen.outline(parents_.back(), title, name);
    if (entry.as<output::Section>() != nullptr) parents_.push_back(made);
  }

  Runs heading_of(const output::Section& section) const {
    return {{.text = shown(section.title), .bold = true}};
  }

  static TextLook heading_look(const Block& block) {
    const size_t level = std::min<size_t>(block.page.entry.level, std::size(kHeadingSizes));
    return {.size = kHeadingSizes[level - 1]};
  }

  void draw_part(Pen& pen, Block& block, const output::Section& section) {
    pen.flow(heading_of(section), heading_look(block), pen.left(), pen.width());
    pen.y += kHeadingUnder - kBlockGap / 2;
  }

  void draw_part(Pen& pen, Block& block, const output::Table&) { block.table->draw(pen); }

  void draw_part(Pen& pen, Block&, const output::Message& message) {
    const Runs runs = {
        {.text = std::string(severity_word(message.severity, document_)) + " ", .bold = true},
        {.text = shown(message.text)}};
    const double indent = kBarWidth + kBarGap;
    const double width = pen.width() - indent;
    const double height = pen.height(runs, kBodyLook, width);
    if (height > pen.room() && !pen.at_top()) pen.next_page();
    const bool leftward = document_.right_to_left;
    const double bar = leftward ? pen.left() + pen.width() - kBarWidth : pen.left();
    pen.bar(bar, pen.y, std::min(height, pen.room()), kBarWidth, Ink::Warning);
    pen.flow(runs, kBodyLook, leftward ? pen.left() : pen.left() + indent, width);
  }

  // Figures.

  Runs caption_of(const Block& block) const {
    const chart::Figure& figure = *block.drawing.figure;
    Runs runs = {{.text = numbered(block.page.entry, document_) + "\n", .bold = true},
                 {.text = clean(figure.title()), .italic = true}};
    if (!figure.sub_title().empty()) {
      runs.push_back({.text = "\n" + clean(figure.sub_title())});
    }
    return runs;
  }

  double figure_height(Pen& pen, const Block& block) const {
    double height = pen.height(caption_of(block), kCaptionLook, pen.width()) + kCaptionGap;
    for (const std::string& note : block.drawing.figure->notes())
      height += kNoteGap + pen.height({{.text = clean(note)}}, kNoteLook, pen.width());
    return height + block.drawing.height;
  }

  void draw_part(Pen& pen, Block& block, const output::Chart&) {
    const Drawing& drawing = block.drawing;
    pen.flow(caption_of(block), kCaptionLook, pen.left(), pen.width());
    pen.y += kCaptionGap;
    if (drawing.height > pen.room() + 1) pen.next_page();
    const double x =
        document_.right_to_left ? pen.left() + pen.width() - drawing.width : pen.left();
    pen.picture(drawing.svg, x, pen.y, drawing.width, drawing.height);
    pen.y += drawing.height;
    for (const std::string& note : drawing.figure->notes()) {
      pen.y += kNoteGap;
      pen.flow({{.text = clean(note)}}, kNoteLook, pen.left(), pen.width());
    }
  }

  const Document& document_;
  const Options& options_;
  std::string title_;
  std::vector<Block> blocks_;
  std::vector<int> parents_;  // by level: the entry of the outline that others lie under
  uint32_t pages_ = 0;
};

}  // namespace
}  // namespace pdf

std::string render_pdf(const Document& document, const Options& options) {
  return pdf::Report(document, options).write();
}

}  // namespace hierfit::report
