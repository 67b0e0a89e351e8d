// The PDF form: the whole report on pages.
#include <algorithm>
#include <memory>
#include <optional>
#include <span>

#include "report/chart/figure.h"
#include "report/pdf/pdf_table.h"
#include "report/pdf/pen.h"
#include "report/picture/picture.h"
#include "report/report.h"
#include "report/wording.h"

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
constexpr Ink kMessageInks[] = {Ink::Hair, Ink::Warning, Ink::Error};  ///< by severity
constexpr double kNoteGap = 3;
constexpr double kFactLabels = 0.3;  ///< what labels have of the width
constexpr double kFactGap = 12;

/// A chart drawn, and its size on paper.
struct Drawing {
  std::unique_ptr<chart::Figure> figure = {};
  std::string svg = {};
  double width = 0;
  double height = 0;
};

/// A block and what it takes to draw it.
struct DrawnBlock {
  const PaperBlock& paper;
  std::unique_ptr<PdfTable> table = {};
  Drawing drawing = {};
  uint32_t on_page = 0;

  const Block& block() const { return paper.block; }
};

class Report {
 public:
  Report(const Document& document, const Options& options)
      : document_(document),
        options_(options),
        title_(report_title(document)),
        texts_(document),
        papers_(paper_blocks(document)) {
    for (const PaperBlock& paper : papers_)
      blocks_.push_back(drawn(paper));
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
  DrawnBlock drawn(const PaperBlock& paper) const {
    DrawnBlock block{paper};
    if (paper.table != nullptr) {
      block.table = std::make_unique<PdfTable>(document_, paper);
    } else if (const auto* chart = paper.block.as<output::Chart>()) {
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
    parents_.assign(1, 0);
    const size_t opening = opening_blocks(document_);
    for (size_t i = 0; i < blocks_.size(); ++i) {
      if (i == opening) draw_contents(pen, opening);
      draw_block(pen, i);
    }
  }

  void draw_foot(Pen& pen) const {
    const std::string text =
        filled(document_.word("Page ^1 of ^2"), std::to_string(pen.page()), std::to_string(pages_));
    pen.text({{.text = text, .quiet = true}}, kFootLook, pen.left(), pen.bottom() + 16,
             pen.width());
  }

  // The contents.

  /// Of what stands behind the opening.
  void draw_contents(Pen& pen, size_t opening) {
    const auto behind = std::span(blocks_).subspan(opening);
    const auto listed = [](const DrawnBlock& each) { return each.block().is_listed(); };
    if (std::ranges::none_of(behind, listed)) return;
    if (opening > 0) pen.y += kHeadingOver;
    const Runs heading = {
        {.text = std::string(document_.word("Contents")), .bold = true, .quiet = true}};
    pen.flow(heading, kBodyLook, pen.left(), pen.width());
    pen.y += kNoteGap;
    for (const DrawnBlock& each : behind) {
      if (listed(each)) draw_entry(pen, each);
    }
    if (behind.front().paper.landscape == pen.landscape()) pen.next_page();
  }

  void draw_entry(Pen& pen, const DrawnBlock& drawn) {
    const Block& block = drawn.block();
    const double indent = kEntryStep * std::min(block.level - 1, 5U);
    const double width = pen.width() - indent - kEntryPage;
    Runs runs;
    if (const std::string number = numbered(block, document_); !number.empty()) {
      runs.push_back({.text = number + "  ", .quiet = true});
    }
    runs.push_back({.text = one_line(texts_.shown(title_of(block))), .bold = block.is_section()});
    if (pen.height(runs, kEntryLook, width) > pen.room()) pen.next_page();
    pen.link(block.anchor(), [&] {
      TextLook look = kEntryLook;
      look.side = Side::End;
      pen.ink(Ink::Text);
      const std::string page = std::to_string(drawn.on_page);
      pen.text({{.text = page}}, look, pen.left(), pen.y, pen.width());
      const double x = document_.right_to_left ? pen.left() + kEntryPage : pen.left() + indent;
      pen.flow(runs, kEntryLook, x, width);
    });
  }

  // The blocks.

  void draw_block(Pen& pen, size_t i) {
    DrawnBlock& block = blocks_[i];
    if (block.paper.landscape != pen.landscape()) {
      pen.begin_page(block.paper.landscape);
    } else if (start_height(pen, i) > pen.room() && !pen.at_top()) {
      pen.next_page();
    }
    if (!pen.at_top()) pen.y += gap_over(block.block());
    block.on_page = pen.page();
    mark(pen, block.block());
    std::visit([&](const auto* content) { draw(pen, block, *content); }, block.block().content);
  }

  /// What a part needs of a page to begin on it; a heading with what follows it.
  double start_height(Pen& pen, size_t i) {
    double height = 0;
    for (; i < blocks_.size(); ++i) {
      DrawnBlock& block = blocks_[i];
      height += gap_over(block.block());
      const auto* section = block.block().as<output::Section>();
      if (section == nullptr) return height + own_start_height(pen, block);
      height += pen.height(heading_of(*section), heading_look(block), pen.width()) + kHeadingUnder;
    }
    return height;
  }

  static double gap_over(const Block& block) {
    if (block.is_section()) return kHeadingOver;
    return block.is_listed() ? kBlockGap : kBlockGap / 2;
  }

  double own_start_height(Pen& pen, DrawnBlock& block) {
    if (block.table != nullptr) return block.table->start_height(pen);
    if (block.drawing.figure) return figure_height(pen, block);
    if (block.block().is_about()) return kHeadingSizes[0] * 2 + kHeadingUnder;
    return kBodyLook.size * 3;
  }

  /// A place to link to and, of all but messages, an entry of the outline.
  void mark(Pen& pen, const Block& block) {
    const std::string name = block.anchor();
    pen.destination(name);
    if (!block.is_listed()) return;
    parents_.resize(std::min<size_t>(parents_.size(), block.level));
    std::string title = numbered(block, document_);
    if (!title.empty()) title += "  ";
    title += one_line(texts_.shown(title_of(block)));
    const int made = pen.outline(parents_.back(), title, name);
    if (block.is_section()) parents_.push_back(made);
  }

  Runs heading_of(const output::Section& section) const {
    return {{.text = texts_.shown(section.title), .bold = true}};
  }

  static TextLook heading_look(const DrawnBlock& block) {
    const size_t level = std::min<size_t>(block.block().level, std::size(kHeadingSizes));
    return {.size = kHeadingSizes[level - 1]};
  }

  void draw(Pen& pen, DrawnBlock& block, const output::Section& section) {
    pen.flow(heading_of(section), heading_look(block), pen.left(), pen.width());
    pen.y += kHeadingUnder - kBlockGap / 2;
  }

  /// Labels at the start, values beside them.
  void draw(Pen& pen, DrawnBlock&, const output::About& about) {
    pen.flow({{.text = texts_.shown(about.title), .bold = true}}, {.size = kHeadingSizes[0]},
             pen.left(), pen.width());
    pen.y += kHeadingUnder;
    for (const output::Fact& fact : about.facts)
      draw(pen, fact);
  }

  void draw(Pen& pen, const output::Fact& fact) const {
    const double label_width = pen.width() * kFactLabels;
    const double value_width = pen.width() - label_width - kFactGap;
    const bool leftward = document_.right_to_left;
    const double label_x = leftward ? pen.left() + value_width + kFactGap : pen.left();
    const double value_x = leftward ? pen.left() : pen.left() + label_width + kFactGap;
    const Runs label = {{.text = texts_.shown(fact.label), .quiet = true}};
    Runs values;
    for (const output::Text& value : fact.values)
      values.push_back({.text = (values.empty() ? "" : "\n") + texts_.shown(value)});
    const double label_height = pen.height(label, kBodyLook, label_width);
    if (label_height > pen.room() && !pen.at_top()) pen.next_page();
    const double top = pen.y;
    const uint32_t page = pen.page();
    pen.text(label, kBodyLook, label_x, top, label_width);
    pen.flow(values, kBodyLook, value_x, value_width);
    if (pen.page() == page) pen.y = std::max(pen.y, top + label_height);
    pen.y += kNoteGap / 2;
  }

  void draw(Pen& pen, DrawnBlock& block, const output::Table&) { block.table->draw(pen); }

  void draw(Pen& pen, DrawnBlock&, const output::Message& message) {
    const Runs runs = {
        {.text = std::string(severity_word(message.severity, document_)) + " ", .bold = true},
        {.text = texts_.shown(message.text)}};
    const double indent = kBarWidth + kBarGap;
    const double width = pen.width() - indent;
    const double height = pen.height(runs, kBodyLook, width);
    if (height > pen.room() && !pen.at_top()) pen.next_page();
    const bool leftward = document_.right_to_left;
    const double bar = leftward ? pen.left() + pen.width() - kBarWidth : pen.left();
    pen.bar(bar, pen.y, std::min(height, pen.room()), kBarWidth,
            kMessageInks[static_cast<size_t>(message.severity)]);
    pen.flow(runs, kBodyLook, leftward ? pen.left() : pen.left() + indent, width);
  }

  // Figures.

  Runs caption_of(const DrawnBlock& block) const {
    const chart::Figure& figure = *block.drawing.figure;
    Runs runs = {{.text = numbered(block.block(), document_) + "\n", .bold = true},
                 {.text = clean(figure.title()), .italic = true}};
    if (!figure.sub_title().empty()) {
      runs.push_back({.text = "\n" + clean(figure.sub_title())});
    }
    return runs;
  }

  double figure_height(Pen& pen, const DrawnBlock& block) const {
    double height = pen.height(caption_of(block), kCaptionLook, pen.width()) + kCaptionGap;
    for (const std::string& note : block.drawing.figure->notes())
      height += kNoteGap + pen.height({{.text = clean(note)}}, kNoteLook, pen.width());
    return height + block.drawing.height;
  }

  void draw(Pen& pen, DrawnBlock& block, const output::Chart&) {
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
  Texts texts_;
  std::vector<PaperBlock> papers_;
  std::vector<DrawnBlock> blocks_;
  std::vector<int> parents_;  // by level: the entry of the outline that others lie under
  uint32_t pages_ = 0;
};

}  // namespace
}  // namespace pdf

std::string render_pdf(const Document& document, const Options& options) {
  return pdf::Report(document, options).write();
}

}  // namespace hierfit::report
