#include "report/latex/latex_text.h"

#include <algorithm>
#include <cstdlib>
#include <utf8proc.h>

#include "output/utf8.h"
#include "report/text/display_text.h"
#include "report/typeset/texts.h"

namespace hierfit::report::latex {

namespace {

struct Replacement {
  char32_t character;
  std::string_view latex;
};

/// By character, rising. What has no line of its own stands for itself.
constexpr Replacement kReplacements[] = {
    {'"', "{\\textquotedbl}"},
    {'#', "\\#"},
    {'$', "\\$"},
    {'%', "\\%"},
    {'&', "\\&"},
    {'<', "$<$"},
    {'>', "$>$"},
    {'[', "{[}"},
    {'\\', "{\\textbackslash}"},
    {']', "{]}"},
    {'^', "{\\textasciicircum}"},
    {'_', "\\_"},
    {'`', "{\\textasciigrave}"},
    {'{', "\\{"},
    {'|', "{\\textbar}"},
    {'}', "\\}"},
    {'~', "{\\textasciitilde}"},
    {U'\u00A0', "~"},
    {U'\u00AC', "$\\neg$"},
    {U'\u00AD', "\\-"},
    {U'\u00B0', "$^\\circ$"},
    {U'\u00B1', "$\\pm$"},
    {U'\u00B2', "$^2$"},
    {U'\u00B3', "$^3$"},
    {U'\u00B5', "$\\mu$"},
    {U'\u00B7', "$\\cdot$"},
    {U'\u00B9', "$^1$"},
    {U'\u00D7', "$\\times$"},
    {U'\u00F7', "$\\div$"},
    {U'\u0391', "A"},
    {U'\u0392', "B"},
    {U'\u0393', "$\\Gamma$"},
    {U'\u0394', "$\\Delta$"},
    {U'\u0395', "E"},
    {U'\u0396', "Z"},
    {U'\u0397', "H"},
    {U'\u0398', "$\\Theta$"},
    {U'\u0399', "I"},
    {U'\u039A', "K"},
    {U'\u039B', "$\\Lambda$"},
    {U'\u039C', "M"},
    {U'\u039D', "N"},
    {U'\u039E', "$\\Xi$"},
    {U'\u039F', "O"},
    {U'\u03A0', "$\\Pi$"},
    {U'\u03A1', "P"},
    {U'\u03A3', "$\\Sigma$"},
    {U'\u03A4', "T"},
    {U'\u03A5', "$\\Upsilon$"},
    {U'\u03A6', "$\\Phi$"},
    {U'\u03A7', "X"},
    {U'\u03A8', "$\\Psi$"},
    {U'\u03A9', "$\\Omega$"},
    {U'\u03B1', "$\\alpha$"},
    {U'\u03B2', "$\\beta$"},
    {U'\u03B3', "$\\gamma$"},
    {U'\u03B4', "$\\delta$"},
    {U'\u03B5', "$\\varepsilon$"},
    {U'\u03B6', "$\\zeta$"},
    {U'\u03B7', "$\\eta$"},
    {U'\u03B8', "$\\theta$"},
    {U'\u03B9', "$\\iota$"},
    {U'\u03BA', "$\\kappa$"},
    {U'\u03BB', "$\\lambda$"},
    {U'\u03BC', "$\\mu$"},
    {U'\u03BD', "$\\nu$"},
    {U'\u03BE', "$\\xi$"},
    {U'\u03BF', "o"},
    {U'\u03C0', "$\\pi$"},
    {U'\u03C1', "$\\rho$"},
    {U'\u03C2', "$\\varsigma$"},
    {U'\u03C3', "$\\sigma$"},
    {U'\u03C4', "$\\tau$"},
    {U'\u03C5', "$\\upsilon$"},
    {U'\u03C6', "$\\varphi$"},
    {U'\u03C7', "$\\chi$"},
    {U'\u03C8', "$\\psi$"},
    {U'\u03C9', "$\\omega$"},
    {U'\u2009', "\\,"},
    {U'\u202F', "\\,"},
    {U'\u2190', "$\\leftarrow$"},
    {U'\u2192', "$\\rightarrow$"},
    {U'\u2194', "$\\leftrightarrow$"},
    {U'\u2212', "$-$"},
    {U'\u221A', "$\\surd$"},
    {U'\u221E', "$\\infty$"},
    {U'\u2248', "$\\approx$"},
    {U'\u2260', "$\\neq$"},
    {U'\u2264', "$\\leq$"},
    {U'\u2265', "$\\geq$"},
};
static_assert(std::ranges::is_sorted(kReplacements, {}, &Replacement::character));

const Replacement* replacement_of(char32_t character) {
  const auto* found =
      std::ranges::lower_bound(kReplacements, character, {}, &Replacement::character);
  return found != std::end(kReplacements) && found->character == character ? found : nullptr;
}

/// Composed characters, so that letters with accents are one.
std::string composed(std::string_view text) {
  utf8proc_uint8_t* mapped = nullptr;
  const auto length =
      utf8proc_map(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                   static_cast<utf8proc_ssize_t>(text.size()), &mapped,
                   static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_COMPOSE));
  std::string written(length < 0 ? text
                                 : std::string_view(reinterpret_cast<const char*>(mapped),
                                                    static_cast<size_t>(length)));
  std::free(mapped);
  return written;
}

/// Characters that become another one when they follow themselves: dashes and quotation marks.
bool joins(char32_t before, char32_t character) {
  return before == character && (character == '-' || character == '\'' || character == ',');
}

/// Four digits or more.
std::string hexadecimal(char32_t character) {
  std::string digits;
  for (; character > 0 || digits.size() < 4; character >>= 4)
    digits.insert(digits.begin(), "0123456789ABCDEF"[character & 15]);
  return digits;
}

}  // namespace

std::string TextWriter::escaped(std::string_view text, std::string_view line_break) {
  const std::string plain = composed(clean(text::printable(text)));
  std::string written;
  char32_t before = 0;
  for (const auto& [character, bytes, valid] : utf8::Characters(plain)) {
    if (character == '\n') {
      written += line_break;
    } else if (const Replacement* replacement = replacement_of(character)) {
      written += replacement->latex;
    } else {
      // An asterisk at the start of a row would belong to the end of the row ahead of it.
      if (joins(before, character) || (before == 0 && character == '*')) written += "{}";
      written += bytes;
      if (character >= 0x80) others_.insert(character);
    }
    before = character;
  }
  return written;
}

std::string TextWriter::declarations() const {
  if (others_.empty()) return {};
  std::string written =
      "% A character that the engine has not shows as a box: LuaLaTeX and XeLaTeX have more of "
      "them.\n"
      "\\ifpdftex\n"
      "\\newcommand*{\\nocharacter}{{\\setlength{\\fboxsep}{0pt}\\framebox[.55em]{\\rule{0pt}{.6em}"
      "}}}\n"
      "\\newcommand*{\\declarecharacter}[2]{\\ifcsname u8:\\detokenize{#1}\\endcsname\\else"
      "\\DeclareUnicodeCharacter{#2}{\\nocharacter}\\fi}\n";
  for (const char32_t character : others_) {
    utf8::append(written += "\\declarecharacter{", character);
    ((written += "}{") += hexadecimal(character)) += "}\n";
  }
  return written += "\\fi\n";
}

}  // namespace hierfit::report::latex
