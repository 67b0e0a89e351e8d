#include "backend/hierfit/charts/ChartText.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <locale>
#include <sstream>
#include <system_error>

#include "backend/hierfit/frame/Characters.h"

namespace {

struct Escape {
  char byte;
  std::string_view text;
};

constexpr Escape kLabelEscapes[] = {
    {10, "<BR/>"},   {12, "<BR/>"},   {13, "<BR/>"},   {14, "&#9472;"}, {15, "&#9474;"},
    {16, "&#9532;"}, {17, "&#9492;"}, {18, "&#9484;"}, {19, "&#9496;"}, {20, "&#9488;"},
    {21, "&#9500;"}, {22, "&#9508;"}, {23, "&#9516;"}, {24, "&#9524;"}, {34, "&quot;"},
    {38, "&amp;"},   {60, "&lt;"},    {62, "&gt;"},
};

constexpr Escape kXmlEscapes[] = {
    {9, "&#9;"},   {10, "&#10;"}, {13, "&#13;"}, {34, "&quot;"},
    {38, "&amp;"}, {60, "&lt;"},  {62, "&gt;"},
};

template <std::size_t N>
const Escape* FindEscape(const Escape (&escapes)[N], char byte) {
  const Escape* found = std::ranges::find(escapes, byte, &Escape::byte);
  return found == std::end(escapes) ? nullptr : found;
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

std::size_t EndOfDigits(std::string_view text, std::size_t place) {
  while (place < text.size() && IsDigit(text[place]))
    ++place;
  return place;
}

bool IsOneOf(std::string_view text, std::size_t place, std::string_view characters) {
  return place < text.size() && characters.find(text[place]) != std::string_view::npos;
}

/// The end of the characters that a stream takes for one number, whether or not they are one: a
/// sign, digits with a point, and behind a digit an exponent with a sign of its own.
std::size_t EndOfNumber(std::string_view text) {
  const std::size_t begin = IsOneOf(text, 0, "+-") ? 1 : 0;
  std::size_t end = EndOfDigits(text, begin);
  std::size_t digits = end - begin;
  if (IsOneOf(text, end, ".")) {
    const std::size_t fraction = end + 1;
    end = EndOfDigits(text, fraction);
    digits += end - fraction;
  }
  if (digits == 0 || !IsOneOf(text, end, "eE")) return end;
  ++end;
  return EndOfDigits(text, IsOneOf(text, end, "+-") ? end + 1 : end);
}

/// A number beyond the range of a double: only the stream knows what becomes of it.
bool StreamNumber(std::string_view text, double& number) {
  std::istringstream stream{std::string(text)};
  stream.imbue(std::locale::classic());
  return static_cast<bool>(stream >> number);
}

/// Control characters that XML 1.0 does not know.
bool IsForbidden(char c) {
  return static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n' && c != '\r';
}

/// Takes out U+FFFE and U+FFFF, which are no characters of XML either.
void DropNoncharacters(std::string& text) {
  for (std::string_view character : {"\xEF\xBF\xBE", "\xEF\xBF\xBF"}) {
    std::size_t place = text.find(character);
    if (place == std::string::npos) continue;
    std::string kept;
    std::size_t begin = 0;
    for (; place != std::string::npos; place = text.find(character, begin)) {
      kept.append(text, begin, place - begin);
      begin = place + character.size();
    }
    text = kept.append(text, begin);
  }
}

}  // namespace

bool IsString(const VELT_Variable* variable) {
  return variable != nullptr && variable->GetFormat().type == kStringFormatType;
}

std::string NumberText(double number) {
  char digits[32];
  const auto [end, error] =
      std::to_chars(std::begin(digits), std::end(digits), number, std::chars_format::general, 6);
  return std::string(digits, error == std::errc() ? end : digits);
}

std::string FormattedNumber(double number, VELT_Format format) {
  OBS value;
  value.number = number;
  return ToString(&value, format);
}

bool ParseNumber(std::string_view text, double& number) {
  number = 0.0;
  text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
  const std::string_view taken = text.substr(0, EndOfNumber(text));
  const std::size_t plus = taken.starts_with('+') ? 1 : 0;
  const auto [end, error] =
      std::from_chars(taken.data() + plus, taken.data() + taken.size(), number);
  if (error == std::errc::result_out_of_range) {
    return StreamNumber(taken, number) && taken.size() == text.size();
  }
  // A stream fails on all that it took when the last of it does not fit, as in "1e".
  const bool isNumber = error == std::errc() && end == taken.data() + taken.size();
  if (!isNumber) number = 0.0;
  return isNumber && taken.size() == text.size();
}

double NumberIn(std::string_view text) {
  double number = 0.0;
  // What stands behind the number does not matter here.
  static_cast<void>(ParseNumber(text, number));
  return number;
}

void EscapeChartText(std::string& text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (std::size_t place = 0; place < text.size();) {
    const std::size_t end = EndOfCharacter(text, place);
    const std::string_view character = std::string_view(text).substr(place, end - place);
    const Escape* escape =
        character.size() == 1 ? FindEscape(kLabelEscapes, character.front()) : nullptr;
    escaped += escape == nullptr ? character : escape->text;
    place = end;
    if (character == "\r" && place < text.size() && text[place] == '\n') ++place;
  }
  text = std::move(escaped);
}

std::string EscapeXmlText(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (const char c : text) {
    const Escape* escape = FindEscape(kXmlEscapes, c);
    if (escape != nullptr) {
      escaped += escape->text;
    } else {
      escaped += c;
    }
  }
  return escaped;
}

std::string DocumentText(std::string text) {
  std::erase_if(text, IsForbidden);
  DropNoncharacters(text);
  return text;
}

std::string DocumentText(const ChartString& text) { return DocumentText(text.toUTF8()); }

ChartString VariableChartLabel(const VELT_Variable& variable) {
  const char* label = variable.GetLabel();
  std::string text = label != nullptr ? std::string(label) : variable.GetName();
  EscapeChartText(text);
  return XUtility::ChartStringFromLocalCodePage(text.c_str());
}
