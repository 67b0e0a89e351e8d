#include "import/kind_of_file.h"

#include <algorithm>
#include <cctype>
#include <string>

namespace hierfit::fit {
namespace {

struct Beginning {
  std::string_view bytes;
  std::string_view kind;
};

/// What stands at the very start of a file.
constexpr Beginning kBytes[] = {
    {"PK\x03\x04", "a spreadsheet or another zip archive"},
    {"\xD0\xCF\x11\xE0", "a spreadsheet or another office file of the older kind"},
    {"\x1F\x8B", "an R object or another compressed file"},
    {"BZh", "an R object or another compressed file"},
    {"\xFD"
     "7zXZ",
     "an R object or another compressed file"},
    {"RDX2\n", "an R object"},
    {"RDX3\n", "an R object"},
    {"RDA2\n", "an R object"},
    {"RDA3\n", "an R object"},
    {"X\n\x00", "an R object"},
    {"\x80\x04\x95", "a Python object"},
    {"%PDF-", "a PDF document"},
    {"PAR1", "a Parquet file"},
};

/// What stands first in a text, in small letters.
constexpr Beginning kTexts[] = {
    {"<!doctype html", "a web page"},
    {"<html", "a web page"},
    {"<?xml", kXmlDocument},
    {"<pmml", kXmlDocument},
    {"<statxml", kXmlDocument},
    {"{", kJsonDocument},
    {"[", kJsonDocument},
};

}  // namespace

std::string_view kind_of_file(std::string_view text) {
  for (const auto& [bytes, kind] : kBytes)
    if (text.starts_with(bytes)) return kind;
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
  std::string head(text.substr(0, 16));
  std::ranges::transform(head, head.begin(), [](unsigned char c) { return std::tolower(c); });
  for (const auto& [bytes, kind] : kTexts)
    if (std::string_view(head).starts_with(bytes)) return kind;
  return {};
}

}  // namespace hierfit::fit
