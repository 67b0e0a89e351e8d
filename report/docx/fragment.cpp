#include "report/docx/fragment.h"

#include <algorithm>
#include <array>
#include <map>

#include "report/append.h"
#include "report/docx/parts.h"

namespace hierfit::report::docx {
namespace {

/// Properties of a paragraph or a stretch of text, by name, as they are written.
using Properties = std::map<std::string_view, std::string_view>;

/// What paragraphs and stretches of text have here, in the order that the schema of the form asks
/// for.
struct Kind {
  std::string_view tag;
  std::array<std::string_view, 10> order;
};
constexpr Kind kParagraph = {"w:pPr",
                             {"w:keepNext", "w:keepLines", "w:pBdr", "w:bidi", "w:spacing", "w:ind",
                              "w:jc", "w:outlineLvl"}};
constexpr Kind kRun = {"w:rPr",
                       {"w:rFonts", "w:b", "w:bCs", "w:i", "w:iCs", "w:color", "w:sz", "w:szCs",
                        "w:vertAlign", "w:rtl"}};

/// The font that the widths of columns are measured for.
constexpr std::string_view kFont =
    R"(<w:rFonts w:ascii="Arial" w:hAnsi="Arial" w:eastAsia="Arial" w:cs="Arial"/>)";

/// Styles that every document has.
bool is_common(std::string_view style) {
  return style == "Caption" || style.starts_with("Heading");
}

/// What stands in the place of the name of a table's style: what that style says.
constexpr std::string_view kTableStyle = "<w:tblStyle";
constexpr std::string_view kTableLayout = "<w:tblLayout";
constexpr std::string_view kCellMargins = "<w:tblCellMar>";

/// What stands between the first `begin` and the `end` behind it; empty without.
std::string_view between(std::string_view text, std::string_view begin, std::string_view end) {
  const size_t first = text.find(begin);
  if (first == std::string_view::npos) return {};
  text.remove_prefix(first + begin.size());
  return text.substr(0, text.find(end));
}

std::string_view rules_of(std::string_view style) {
  const std::string head = "w:styleId=\"" + std::string(style) + "\">";
  return between(kStyles, head, "</w:style>");
}

/// Lays the elements that stand beside each other in `markup` over what is there.
void lay_over(Properties& properties, std::string_view markup) {
  while (markup.starts_with('<')) {
    const std::string_view name = markup.substr(1, markup.find_first_of(" />") - 1);
    const size_t tag = markup.find('>') + 1;
    const bool empty = markup[tag - 2] == '/';
    const std::string closing = "</" + std::string(name) + ">";
    const size_t end = empty ? tag : markup.find(closing) + closing.size();
    properties[name] = markup.substr(0, end);
    markup.remove_prefix(end);
  }
}

/// What a style says of a kind of thing, with those styles that it is based on.
void lay_over_style(Properties& properties, std::string_view style, const Kind& kind) {
  const std::string_view rules = rules_of(style);
  const std::string_view base = between(rules, "<w:basedOn w:val=\"", "\"");
  if (!base.empty()) lay_over_style(properties, base, kind);
  const std::string tag = std::string(kind.tag) + ">";
  lay_over(properties, between(rules, "<" + tag, "</" + tag));
}

/// The own properties of a thing with those of its style.
void append_properties(std::string& out,
                       std::string_view own,
                       std::string_view style,
                       const Kind& kind) {
  Properties properties;
  lay_over_style(properties, style, kind);
  lay_over(properties, own);
  append(out, '<', kind.tag, '>');
  if (is_common(style) && &kind == &kParagraph) append(out, "<w:pStyle w:val=\"", style, "\"/>");
  for (const std::string_view name : kind.order) {
    const auto found = properties.find(name);
    if (found != properties.end()) out += found->second;
  }
  append(out, "</", kind.tag, '>');
}

bool is_link(std::string_view tag) {
  constexpr std::array<std::string_view, 4> kLinks = {"<w:bookmarkStart", "<w:bookmarkEnd",
                                                      "<w:hyperlink", "</w:hyperlink"};
  return std::ranges::any_of(kLinks, [&](std::string_view link) { return tag.starts_with(link); });
}

class Fragment {
 public:
  explicit Fragment(std::string_view body) : rest_(body) {}

  std::string write() {
    while (!rest_.empty()) {
      out_ += taken(std::min(rest_.find('<'), rest_.size()));
      if (!rest_.empty()) write_tag(taken(rest_.find('>') + 1));
    }
    return std::move(out_);
  }

 private:
  std::string_view taken(size_t length) {
    const std::string_view text = rest_.substr(0, length);
    rest_.remove_prefix(length);
    return text;
  }

  /// What stands up to the end of an element that has just begun; its end tag is taken, too.
  std::string_view content(std::string_view end_tag) {
    const std::string_view text = taken(rest_.find(end_tag));
    taken(end_tag.size());
    return text;
  }

  void write_tag(std::string_view tag) {
    if (is_link(tag) || tag.starts_with(kTableStyle)) return;
    if (tag == "<w:pPr>") {
      const std::string_view own = content("</w:pPr>");
      style_ = between(own, "<w:pStyle w:val=\"", "\"");
      return append_properties(out_, own, style_, kParagraph);
    }
    out_ += tag;
    if (tag == "<w:r>") write_run();
    if (tag.starts_with(kTableLayout)) {
      append(out_, kCellMargins, between(rules_of("ReportTable"), kCellMargins, "</w:tblPr>"));
    }
  }

  void write_run() {
    constexpr std::string_view kOwn = "<w:rPr>";
    const bool has_own = rest_.starts_with(kOwn);
    if (has_own) taken(kOwn.size());
    std::string own(is_common(style_) ? "" : kFont);
    if (has_own) own += content("</w:rPr>");
    append_properties(out_, own, is_common(style_) ? "" : style_, kRun);
  }

  std::string_view rest_;
  std::string_view style_;  ///< of the paragraph
  std::string out_;
};

}  // namespace

std::string fragment_of(std::string_view body) { return Fragment(body).write(); }

}  // namespace hierfit::report::docx
