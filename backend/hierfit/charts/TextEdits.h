// The edits of a chart document's text: an exact search, and what is done at the place found. A
// search that finds nothing leaves the text as it is.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Replaces the first `literal` at or behind `from`. Gives its place; npos when there is none, also
/// for a `from` of npos, so that edits can follow each other.
std::size_t ReplaceFirst(std::string& text,
                         std::string_view literal,
                         std::string_view replacement,
                         std::size_t from = 0);

/// Replaces every `literal` from the head to the end of the text; replacements are not searched.
/// The result is cut at the limit of a label.
void ReplaceEach(std::string& text, std::string_view literal, std::string_view replacement);

/// Replaces `count` bytes at a place that some search gave, `offset` bytes on. An offset outside
/// the text, and a place of npos, skip the edit.
void ReplaceAt(std::string& text,
               std::size_t place,
               std::size_t offset,
               std::size_t count,
               std::string_view replacement);

/// Inserts at a place plus an offset; skipped as in `ReplaceAt`.
void InsertAt(std::string& text, std::size_t place, std::size_t offset, std::string_view insertion);

/// Inserts right ahead of the first `literal`, or right behind it.
void InsertAhead(std::string& text, std::string_view literal, std::string_view insertion);
void InsertBehind(std::string& text, std::string_view literal, std::string_view insertion);

/// Erases from a place through the first `end` at or behind it. False when there is none, or when
/// the place is npos.
bool EraseThrough(std::string& text, std::size_t place, std::string_view end);

/// Erases from the first `begin` through the first `end` behind it.
void EraseFromThrough(std::string& text, std::string_view begin, std::string_view end);
