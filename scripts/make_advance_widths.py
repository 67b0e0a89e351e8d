#!/usr/bin/env python3
"""Writes report/chart/advance_widths.h from Liberation Sans, the metric twin of Arial.

Needs python3-fonttools and fonts-liberation; the result is kept, so a build needs neither.
Usage: make_advance_widths.py > report/chart/advance_widths.h
"""
from fontTools.ttLib import TTFont

FOLDER = "/usr/share/fonts/truetype/liberation/"
# First and last character of each stretch: Latin, Greek, Cyrillic, Hebrew, more Latin,
# punctuation, letterlike signs, arrows, operators, lines and shapes.
STRETCHES = [(0x20, 0x24F), (0x370, 0x52F), (0x5D0, 0x5EA), (0x1E00, 0x1EFF), (0x2010, 0x203E),
             (0x2070, 0x209C), (0x20A0, 0x20BF), (0x2100, 0x214F), (0x2190, 0x2195),
             (0x2200, 0x226F), (0x2500, 0x25FF)]


def advances(font):
    glyphs, metrics = font.getBestCmap(), font["hmtx"]
    return lambda code: metrics[glyphs[code]][0] if code in glyphs else 0


def table(name, width_of, stretches):
    print(f"inline constexpr uint16_t {name}[] = {{")
    for first, last in stretches:
        line = "   "
        for code in range(first, last + 1):
            item = f" {width_of(code)},"
            if len(line) + len(item) > 100:
                print(line)
                line = "   "
            line += item
        print(line)
    print("};")


regular = advances(TTFont(FOLDER + "LiberationSans-Regular.ttf"))
bold = advances(TTFont(FOLDER + "LiberationSans-Bold.ttf"))
print("""// The advance widths of Liberation Sans, made by scripts/make_advance_widths.py.
#pragma once

#include <cstdint>

// clang-format off
namespace hierfit::report::chart {

/// The units of an em.
inline constexpr double kUnitsPerEm = 2048;

/// A stretch of characters, and where their widths begin in the tables.
struct Stretch {
  uint32_t first;
  uint32_t last;
  uint32_t begin;
};
inline constexpr Stretch kStretches[] = {""")
begin = 0
for first, last in STRETCHES:
    print(f"    {{0x{first:X}, 0x{last:X}, {begin}}},")
    begin += last - first + 1
print("};\n\n/// By character; 0 where the font has none.")
table("kRegularWidths", regular, STRETCHES)
table("kBoldWidths", bold, STRETCHES)
print("\n}  // namespace hierfit::report::chart\n// clang-format on")
