// Appends the markup of text documents.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace hierfit::report::docx {

/// How a stretch of text looks, and where it leads.
struct RunLook {
  bool bold = false;
  bool italic = false;
  bool raised = false;
  bool quiet = false;
  std::string_view link = {};  ///< the bookmark it leads to; empty for none
};

/// Text as the content of an element or the value of an attribute.
void append_escaped(std::string& out, std::string_view text);

/// A stretch of text; its line feeds are line breaks.
void append_run(std::string& out, std::string_view text, const RunLook& look);

/// A field whose value programs fill in, and what stands there until they do.
void append_field(std::string& out,
                  std::string_view instruction,
                  std::string_view value,
                  const RunLook& look);

/// A bookmark around `content`; ids are unique in a document.
void append_bookmark(std::string& out,
                     std::string_view name,
                     uint32_t id,
                     std::string_view content);

/// The first paragraph of a caption: a word and number ("Table ^1", the number a field that counts
/// parts called `sequence`), then the title, given as runs.
void append_caption(std::string& out,
                    std::string_view pattern,
                    std::string_view sequence,
                    uint32_t number,
                    std::string_view bookmark,
                    std::string_view title,
                    uint32_t& bookmarks);

/// An attribute's number behind its name, ` w:w="120"`.
void append_attribute(std::string& out, std::string_view name, int64_t value);

/// Lengths in points as twentieths of one.
int64_t twips(double points);

}  // namespace hierfit::report::docx
