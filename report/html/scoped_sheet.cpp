#include "report/html/scoped_sheet.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <vector>

#include "report/append.h"
#include "report/html/markup.h"

namespace hierfit::report::html {
namespace {

/// How selectors begin that only a whole page has.
constexpr std::array<std::string_view, 10> kOfPages = {
    "html", "body", "header", "nav", "button", "h1 ", ".skip", ".back", ".tools", "[type="};

/// How selectors begin that stand for the root itself, or say something about it.
constexpr std::string_view kRoot = ":root";
constexpr std::string_view kDirection = "[dir";

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \n\t";
  const size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string without_comments(std::string_view sheet) {
  std::string out;
  for (size_t comment; (comment = sheet.find("/*")) != std::string_view::npos;) {
    out += sheet.substr(0, comment);
    const size_t end = sheet.find("*/", comment);
    sheet.remove_prefix(end == std::string_view::npos ? sheet.size() : end + 2);
  }
  return out += sheet;
}

/// The selectors of a rule, which commas outside of brackets divide.
std::vector<std::string_view> selectors_of(std::string_view prelude) {
  std::vector<std::string_view> selectors;
  size_t begin = 0;
  int depth = 0;
  for (size_t at = 0; at <= prelude.size(); ++at) {
    const char sign = at < prelude.size() ? prelude[at] : ',';
    if (sign == '(') ++depth;
    if (sign == ')') --depth;
    if (sign != ',' || depth > 0) continue;
    selectors.push_back(trimmed(prelude.substr(begin, at - begin)));
    begin = at + 1;
  }
  return selectors;
}

std::string scoped_selector(std::string_view selector, std::string_view scope) {
  std::string out = ".";
  out += scope;
  if (selector.starts_with(kRoot)) return out += selector.substr(kRoot.size());
  if (!selector.starts_with(kDirection)) out += ' ';
  return out += selector;
}

bool is_of_pages(std::string_view selector) {
  return std::ranges::any_of(kOfPages,
                             [&](std::string_view start) { return selector.starts_with(start); });
}

/// Where the block ends whose brace opens at `open`.
size_t end_of_block(std::string_view sheet, size_t open) {
  int depth = 0;
  for (size_t at = open; at < sheet.size(); ++at) {
    if (sheet[at] == '{') ++depth;
    if (sheet[at] == '}' && --depth == 0) return at;
  }
  return sheet.size();
}

void append_rules(std::string& out, std::string_view sheet, std::string_view scope);

void append_rule(std::string& out,
                 std::string_view prelude,
                 std::string_view body,
                 std::string_view scope) {
  if (prelude.starts_with("@media")) {
    append(out, prelude, " {\n");
    append_rules(out, body, scope);
    out += "}\n";
    return;
  }
  if (prelude.starts_with('@')) return;
  std::string selectors;
  for (const std::string_view selector : selectors_of(prelude)) {
    if (is_of_pages(selector)) continue;
    append(selectors, selectors.empty() ? "" : ", ", scoped_selector(selector, scope));
  }
  if (!selectors.empty()) append(out, selectors, " {", body, "}\n");
}

void append_rules(std::string& out, std::string_view sheet, std::string_view scope) {
  for (size_t open; (open = sheet.find('{')) != std::string_view::npos;) {
    const size_t end = end_of_block(sheet, open);
    append_rule(out, trimmed(sheet.substr(0, open)), sheet.substr(open + 1, end - open - 1), scope);
    sheet.remove_prefix(std::min(sheet.size(), end + 1));
  }
}

/// Lengths in letters of the root become those in pixels that they are on pages of our own: the
/// root of another page may have letters of any size.
std::string without_root_letters(std::string_view sheet) {
  constexpr std::string_view kUnit = "rem";
  constexpr double kPixels = 16;
  std::string out;
  for (size_t unit; (unit = sheet.find(kUnit)) != std::string_view::npos;) {
    const size_t before = sheet.substr(0, unit).find_last_not_of("0123456789.");
    const size_t digits = before == std::string_view::npos ? 0 : before + 1;
    double length = 0;
    const auto [end, error] = std::from_chars(sheet.data() + digits, sheet.data() + unit, length);
    const bool is_length = error == std::errc() && end == sheet.data() + unit;
    if (is_length) {
      out += sheet.substr(0, digits);
      append_double(out, length * kPixels);
      out += "px";
    } else {
      out += sheet.substr(0, unit + kUnit.size());
    }
    sheet.remove_prefix(unit + kUnit.size());
  }
  return out += sheet;
}

}  // namespace

std::string scoped_sheet(std::string_view sheet, std::string_view scope) {
  std::string out;
  append_rules(out, without_root_letters(without_comments(sheet)), scope);
  return out;
}

}  // namespace hierfit::report::html
