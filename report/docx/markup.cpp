#include "report/docx/markup.h"

#include <algorithm>
#include <cmath>
#include <utf8proc.h>

#include "output/utf8.h"
#include "report/append.h"
#include "report/typeset/texts.h"
#include "report/xml_text.h"

namespace hierfit::report::docx {
namespace {

/// Whether a text is of a script that runs from right to left, which programs want to be told.
bool runs_leftward(std::string_view text) {
  for (const utf8::Character& each : utf8::Characters(text)) {
    if (!each.valid) return false;
    const auto code = static_cast<utf8proc_int32_t>(each.code);
    const auto direction = utf8proc_get_property(code)->bidi_class;
    if (direction == UTF8PROC_BIDI_CLASS_R || direction == UTF8PROC_BIDI_CLASS_AL) return true;
  }
  return false;
}

void append_properties(std::string& out, std::string_view text, const RunLook& look) {
  std::string properties;
  if (look.bold) properties += "<w:b/><w:bCs/>";
  if (look.italic) properties += "<w:i/><w:iCs/>";
  if (look.quiet) properties += "<w:color w:val=\"555B63\"/>";
  if (look.raised) properties += "<w:vertAlign w:val=\"superscript\"/>";
  if (runs_leftward(text)) properties += "<w:rtl/>";
  if (!properties.empty()) append(out, "<w:rPr>", properties, "</w:rPr>");
}

void open_link(std::string& out, std::string_view link) {
  if (link.empty()) return;
  append(out, "<w:hyperlink w:anchor=\"", link, "\" w:history=\"1\">");
}

void close_link(std::string& out, std::string_view link) {
  if (!link.empty()) out += "</w:hyperlink>";
}

}  // namespace

void append_escaped(std::string& out, std::string_view text) {
  report::append_escaped(out, clean(text));
}

void append_run(std::string& out, std::string_view text, const RunLook& look) {
  open_link(out, look.link);
  out += "<w:r>";
  append_properties(out, text, look);
  for (size_t feed; (feed = text.find('\n')) != std::string_view::npos;) {
    out += "<w:t xml:space=\"preserve\">";
    append_escaped(out, text.substr(0, feed));
    out += "</w:t><w:br/>";
    text.remove_prefix(feed + 1);
  }
  out += "<w:t xml:space=\"preserve\">";
  append_escaped(out, text);
  out += "</w:t></w:r>";
  close_link(out, look.link);
}

void append_field(std::string& out,
                  std::string_view instruction,
                  std::string_view value,
                  const RunLook& look) {
  append(out, "<w:fldSimple w:instr=\" ", instruction, " \">");
  append_run(out, value, look);
  out += "</w:fldSimple>";
}

void append_bookmark(std::string& out,
                     std::string_view name,
                     uint32_t id,
                     std::string_view content) {
  const std::string number = std::to_string(id);
  append(out, "<w:bookmarkStart w:id=\"", number, "\" w:name=\"", name, "\"/>", content,
         "<w:bookmarkEnd w:id=\"", number);
  out += "\"/>";
}

void append_attribute(std::string& out, std::string_view name, int64_t value) {
  append(out, ' ', name, "=\"", std::to_string(value));
  out += '"';
}

int64_t twips(double points) { return std::llround(points * 20); }

void append_caption(std::string& out,
                    std::string_view pattern,
                    std::string_view sequence,
                    uint32_t number,
                    std::string_view bookmark,
                    std::string_view title,
                    uint32_t& bookmarks) {
  const size_t hole = std::min(pattern.find("^1"), pattern.size());
  const RunLook bold = {.bold = true};
  std::string caption;
  if (hole > 0) append_run(caption, pattern.substr(0, hole), bold);
  append_field(caption, "SEQ " + std::string(sequence) + " \\* ARABIC", std::to_string(number),
               bold);
  if (hole + 2 < pattern.size()) append_run(caption, pattern.substr(hole + 2), bold);
  out += "<w:p><w:pPr><w:pStyle w:val=\"Caption\"/></w:pPr>";
  append_bookmark(out, bookmark, ++bookmarks, caption);
  append(out, "<w:r><w:br/></w:r>", title, "</w:p>\n");
}

}  // namespace hierfit::report::docx
