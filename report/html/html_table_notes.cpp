// Writes one table as HTML: its note marks and notes.
#include <algorithm>

#include "report/html/html_table_writer.h"
#include "report/html/markup.h"
#include "report/wording.h"

namespace hierfit::report::html {

using output::kNone;

void HtmlTable::write_node_marks(const Head& head) {
  if (head.node != kNone) write_marks(table_.dimensions[head.dimension].nodes[head.node].notes);
}

void HtmlTable::write_marks(const std::vector<uint32_t>& notes) {
  if (notes.empty()) return;
  std::vector<uint32_t> marks;
  for (uint32_t note : notes)
    marks.push_back(layout_.marks[note]);
  std::ranges::sort(marks);
  marks.erase(std::unique(marks.begin(), marks.end()), marks.end());
  out_ += "<sup>";
  for (uint32_t mark : marks) {
    if (mark != marks.front()) out_ += ',';
    write_mark(mark);
  }
  out_ += "</sup>";
}

void HtmlTable::write_mark(uint32_t mark) {
  out_ += "<a role=\"doc-noteref\" href=\"#";
  append_id('n', mark);
  out_ += '"';
  if (!referenced_[mark]) {
    referenced_[mark] = true;
    out_ += " id=\"";
    append_id('m', mark);
    out_ += '"';
  }
  ((out_ += '>') += mark_letters(mark)) += "</a>";
}

void HtmlTable::write_foot() {
  const bool captioned = table_.caption && !table_.caption->shown.empty();
  if (!captioned && layout_.notes.empty()) return;
  out_ += "<tfoot>\n";
  if (captioned) {
    open_note();
    out_ += "<i>";
    append_escaped(out_, document_.word("Note."));
    out_ += "</i> ";
    append_text(out_, *table_.caption, style_);
    out_ += "</span></td></tr>\n";
  }
  for (uint32_t mark = 0; mark < layout_.notes.size(); ++mark)
    write_note(mark);
  out_ += "</tfoot>\n";
}

void HtmlTable::open_note() {
  out_ += "<tr><td";
  append_span(out_, "colspan", std::min(all_columns(), kMostColumns));
  out_ += "><span>";
}

void HtmlTable::write_note(uint32_t mark) {
  open_note();
  out_ += "<sup><a";
  if (!for_paper_) {
    out_ += " id=\"";
    append_id('n', mark);
    out_ += '"';
  }
  out_ += " href=\"#";
  append_id('m', mark);
  ((out_ += "\" role=\"doc-backlink\">") += mark_letters(mark)) += "</a></sup> ";
  append_text(out_, table_.notes[layout_.notes[mark]], style_);
  out_ += "</span></td></tr>\n";
}

}  // namespace hierfit::report::html
