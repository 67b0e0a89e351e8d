// The text document form, for word processors.
#include <algorithm>
#include <span>

#include "report/append.h"
#include "report/chart/figure.h"
#include "report/docx/docx_table.h"
#include "report/docx/fragment.h"
#include "report/docx/markup.h"
#include "report/docx/package.h"
#include "report/docx/parts.h"
#include "report/picture/picture.h"
#include "report/report.h"
#include "report/typeset/paper.h"
#include "report/wording.h"

namespace hierfit::report {

using output::Document;

namespace docx {
namespace {

constexpr uint32_t kDeepestHeading = 4;

/// By severity.
constexpr std::string_view kMessageStyles[] = {"MessageNote", "Message", "MessageError"};

/// Pictures have three points for each of their pixels: 288 an inch.
constexpr double kPictureScale = 3;
constexpr double kPointsPerPixel = 0.75;
constexpr double kEmusPerPoint = 12700;

/// What a chart takes of a page at most, in points.
constexpr double kChartWidth = kPaperWidth - 2 * kSideMargin;
constexpr double kChartHeight = kPaperHeight - 2 * kEndMargin - 130;

class Report {
 public:
  Report(const Document& document, const Options& options)
      : document_(document), options_(options), texts_(document), blocks_(paper_blocks(document)) {}

  std::string write() {
    write_text();
    std::vector<Part> parts = {{"[Content_Types].xml", std::string(kXml).append(kContentTypes)},
                               {"_rels/.rels", std::string(kXml).append(kPackageRelations)},
                               {"docProps/core.xml", core()},
                               {"word/document.xml", std::move(out_)},
                               {"word/_rels/document.xml.rels", relations()},
                               {"word/styles.xml", styles()},
                               {"word/settings.xml", std::string(kXml).append(kSettings)},
                               {"word/footer1.xml", footer()}};
    std::ranges::move(pictures_, std::back_inserter(parts));
    return packed(parts);
  }

  /// The markup of what is text; a picture would need a part of its own.
  std::string write_fragment() {
    for (const PaperBlock& paper : blocks_) {
      if (paper.block.as<output::Chart>() == nullptr) write_block(paper);
    }
    return fragment_of(out_);
  }

 private:
  // The text.

  void write_text() {
    ((out_ = kXml) += "<w:document") += kNamespaces;
    out_ += "><w:body>\n";
    open_paragraph("Title");
    append_run(out_, report_title(document_), {});
    close_paragraph();
    const size_t opening = opening_blocks(document_);
    for (size_t i = 0; i < blocks_.size(); ++i) {
      if (i == opening) write_contents(opening);
      const PaperBlock& paper = blocks_[i];
      turn(paper.landscape);
      write_block(paper);
    }
    write_section_end(landscape_);
    out_ += "</w:body></w:document>\n";
  }

  void write_block(const PaperBlock& paper) {
    std::visit([&](const auto* content) { write(*content, paper); }, paper.block.content);
  }

  void open_paragraph(std::string_view style) {
    append(out_, "<w:p><w:pPr><w:pStyle w:val=\"", style, "\"/></w:pPr>");
  }
  void close_paragraph() { out_ += "</w:p>\n"; }

  /// A link to each heading, table and chart behind the opening.
  void write_contents(size_t opening) {
    const auto behind = std::span(blocks_).subspan(opening);
    const auto listed = [](const PaperBlock& paper) { return paper.block.is_listed(); };
    if (std::ranges::none_of(behind, listed)) return;
    open_paragraph("ContentsHeading");
    append_run(out_, document_.word("Contents"), {});
    close_paragraph();
    for (const PaperBlock& paper : behind) {
      if (listed(paper)) write_contents_entry(paper.block);
    }
    out_ += "<w:p><w:r><w:br w:type=\"page\"/></w:r></w:p>\n";
  }

  void write_contents_entry(const Block& block) {
    constexpr double kStep = 12;
    const std::string anchor = block.anchor();
    out_ += "<w:p><w:pPr><w:pStyle w:val=\"ContentsEntry\"/><w:ind";
    append_attribute(out_, "w:left", twips(kStep * std::min(block.level - 1, kDeepestHeading)));
    out_ += "/></w:pPr>";
    std::string number = numbered(block, document_);
    if (!number.empty()) append_run(out_, number += "  ", {.quiet = true, .link = anchor});
    append_run(out_, one_line(texts_.shown(title_of(block))),
               {.bold = block.is_section(), .link = anchor});
    close_paragraph();
  }

  void write(const output::Section& section, const PaperBlock& paper) {
    open_paragraph("Heading" + std::to_string(std::min(paper.block.level, kDeepestHeading)));
    std::string title;
    append_run(title, texts_.shown(section.title), {});
    append_bookmark(out_, paper.block.anchor(), ++bookmarks_, title);
    close_paragraph();
  }

  void write(const output::About& about, const PaperBlock& paper) {
    open_paragraph("Heading1");
    std::string title;
    append_run(title, texts_.shown(about.title), {});
    append_bookmark(out_, paper.block.anchor(), ++bookmarks_, title);
    close_paragraph();
    append_facts(out_, document_, about, texts_);
  }

  void write(const output::Table&, const PaperBlock& paper) {
    append_table(out_, document_, paper, bookmarks_);
  }

  void write(const output::Message& message, const PaperBlock&) {
    open_paragraph(kMessageStyles[static_cast<size_t>(message.severity)]);
    append_run(out_, severity_word(message.severity, document_), {.bold = true});
    append_run(out_, " " + texts_.shown(message.text), {});
    close_paragraph();
  }

  void write(const output::Chart& chart, const PaperBlock& paper) {
    const uint32_t number = paper.block.number;
    const chart::Figure figure(chart, document_);
    std::string title;
    append_run(title, clean(figure.title()), {.italic = true});
    if (!figure.sub_title().empty()) append_run(title, "\n" + clean(figure.sub_title()), {});
    append_caption(out_, document_.word("Figure ^1"), "Figure", number, paper.block.anchor(), title,
                   bookmarks_);
    write_picture(figure, number);
    for (const std::string& note : figure.notes()) {
      open_paragraph("TableNote");
      append_run(out_, clean(note), {});
      close_paragraph();
    }
  }

  void write_picture(const chart::Figure& figure, uint32_t number) {
    const double width = std::min(options_.chart_width, kChartWidth / kPointsPerPixel);
    const std::string svg = figure.svg({.width = width, .texts = false});
    pictures_.push_back(
        {"word/media/chart" + std::to_string(number) + ".png", png_of_svg(svg, kPictureScale)});
    const PictureSize size = size_of_svg(svg);
    const double scale = std::min({1.0, kChartWidth / (size.width * kPointsPerPixel),
                                   kChartHeight / (size.height * kPointsPerPixel)});
    std::string extent;
    append_attribute(extent, "cx", emus(size.width * scale));
    append_attribute(extent, "cy", emus(size.height * scale));
    open_paragraph("Figure");
    out_ += "<w:r><w:drawing><wp:inline distT=\"0\" distB=\"0\" distL=\"0\" distR=\"0\"><wp:extent";
    (out_ += extent) += "/><wp:docPr";
    write_picture_names(number, clean(figure.description()));
    out_ +=
        "<wp:cNvGraphicFramePr><a:graphicFrameLocks noChangeAspect=\"1\"/>"
        "</wp:cNvGraphicFramePr><a:graphic><a:graphicData "
        "uri=\"http://schemas.openxmlformats.org/drawingml/2006/picture\"><pic:pic>"
        "<pic:nvPicPr><pic:cNvPr";
    write_picture_names(number, clean(figure.description()));
    ((out_ += "<pic:cNvPicPr/></pic:nvPicPr><pic:blipFill><a:blip r:embed=\"") +=
     picture_relation(number)) +=
        "\"/><a:stretch><a:fillRect/></a:stretch></pic:blipFill>"
        "<pic:spPr><a:xfrm><a:off x=\"0\" y=\"0\"/><a:ext";
    (out_ += extent) +=
        "/></a:xfrm><a:prstGeom prst=\"rect\"><a:avLst/></a:prstGeom></pic:spPr>"
        "</pic:pic></a:graphicData></a:graphic></wp:inline></w:drawing></w:r>";
    close_paragraph();
  }

  static int64_t emus(double pixels) {
    return static_cast<int64_t>(pixels * kPointsPerPixel * kEmusPerPoint);
  }

  void write_picture_names(uint32_t number, std::string_view description) {
    append_attribute(out_, "id", number);
    (out_ += " name=\"chart") += std::to_string(number);
    out_ += "\" descr=\"";
    append_escaped(out_, description);
    out_ += "\"/>";
  }

  static std::string picture_relation(uint32_t number) { return "chart" + std::to_string(number); }

  // Paper.

  /// The way paper lies is that of a section, which its last paragraph tells.
  void turn(bool landscape) {
    if (landscape == landscape_) return;
    out_ += "<w:p><w:pPr><w:pStyle w:val=\"TableEnd\"/>";
    write_section_end(landscape_);
    out_ += "</w:pPr></w:p>\n";
    landscape_ = landscape;
  }

  void write_section_end(bool landscape) {
    out_ += "<w:sectPr><w:footerReference w:type=\"default\" r:id=\"rId3\"/><w:pgSz";
    append_attribute(out_, "w:w", twips(landscape ? kPaperHeight : kPaperWidth));
    append_attribute(out_, "w:h", twips(landscape ? kPaperWidth : kPaperHeight));
    if (landscape) out_ += " w:orient=\"landscape\"";
    out_ += "/><w:pgMar";
    for (const char* side : {"w:top", "w:bottom"})
      append_attribute(out_, side, twips(kEndMargin));
    for (const char* side : {"w:left", "w:right"})
      append_attribute(out_, side, twips(kSideMargin));
    out_ += " w:header=\"480\" w:footer=\"480\" w:gutter=\"0\"/>";
    if (document_.right_to_left) out_ += "<w:bidi/>";
    out_ += "</w:sectPr>";
  }

  std::string footer() const {
    std::string out = std::string(kXml) + "<w:ftr";
    out += kNamespaces;
    out += "><w:p><w:pPr><w:pStyle w:val=\"Footer\"/></w:pPr>";
    for (const auto& [text, hole] : pieces_of(document_.word("Page ^1 of ^2"))) {
      if (!text.empty()) append_run(out, text, {});
      if (hole > 0) append_field(out, hole == 1 ? "PAGE" : "NUMPAGES", "1", {});
    }
    return out += "</w:p></w:ftr>";
  }

  // The other parts.

  std::string styles() const {
    std::string language;
    append_escaped(language, document_.language);
    std::string out = std::string(kXml) + "<w:styles";
    out += kNamespaces;
    out +=
        "><w:docDefaults><w:rPrDefault><w:rPr><w:rFonts w:ascii=\"Arial\" w:hAnsi=\"Arial\" "
        "w:eastAsia=\"Arial\" w:cs=\"Arial\"/><w:color w:val=\"16181B\"/><w:sz w:val=\"20\"/>"
        "<w:szCs w:val=\"20\"/><w:lang w:val=\"";
    out += language + "\" w:eastAsia=\"" + language + "\" w:bidi=\"" + language;
    out += "\"/></w:rPr></w:rPrDefault><w:pPrDefault><w:pPr>";
    if (document_.right_to_left) out += "<w:bidi/>";
    out +=
        "<w:spacing w:after=\"100\" w:line=\"264\" w:lineRule=\"auto\"/></w:pPr>"
        "</w:pPrDefault></w:docDefaults>\n";
    return (out += kStyles) += "</w:styles>";
  }

  std::string core() const {
    std::string out(kXml);
    out +=
        "<cp:coreProperties "
        "xmlns:cp=\"http://schemas.openxmlformats.org/package/2006/metadata/core-properties\" "
        "xmlns:dc=\"http://purl.org/dc/elements/1.1/\"><dc:title>";
    append_escaped(out, report_title(document_));
    out += "</dc:title><dc:language>";
    append_escaped(out, document_.language);
    return out += "</dc:language></cp:coreProperties>";
  }

  std::string relations() const {
    std::string out(kXml);
    out += kRelationsHead;
    for (size_t i = 0; i < pictures_.size(); ++i) {
      append(
          out, "<Relationship Id=\"", picture_relation(static_cast<uint32_t>(i + 1)),
          "\" Type=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships/image\" "
          "Target=\"");
      append(out, pictures_[i].name.substr(std::string_view("word/").size()), "\"/>");
    }
    return out += "</Relationships>";
  }

  const Document& document_;
  const Options& options_;
  Texts texts_;
  std::vector<PaperBlock> blocks_;
  std::string out_;
  std::vector<Part> pictures_;
  uint32_t bookmarks_ = 0;
  bool landscape_ = false;
};

}  // namespace
}  // namespace docx

std::string render_docx(const Document& document, const Options& options) {
  docx::Report report(document, options);
  return options.fragment ? report.write_fragment() : report.write();
}

}  // namespace hierfit::report
