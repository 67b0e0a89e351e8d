#include "backend/hierfit/charts/TextEdits.h"

#include "backend/hierfit/store/LabelText.h"

namespace {

constexpr std::size_t kNowhere = std::string::npos;

}  // namespace

std::size_t ReplaceFirst(std::string& text,
                         std::string_view literal,
                         std::string_view replacement,
                         std::size_t from) {
  const std::size_t place = text.find(literal, from);
  if (place != kNowhere) text.replace(place, literal.size(), replacement);
  return place;
}

void ReplaceEach(std::string& text, std::string_view literal, std::string_view replacement) {
  std::size_t place = text.find(literal);
  if (place == kNowhere) return;
  LabelText replaced;
  std::size_t begin = 0;
  for (; place != kNowhere && !replaced.IsFull(); place = text.find(literal, begin)) {
    replaced.Append(std::string_view(text).substr(begin, place - begin));
    replaced.Append(replacement);
    begin = place + literal.size();
  }
  replaced.Append(std::string_view(text).substr(begin));
  text = replaced.Take();
}

void ReplaceAt(std::string& text,
               std::size_t place,
               std::size_t offset,
               std::size_t count,
               std::string_view replacement) {
  if (place == kNowhere || place + offset + count > text.size()) return;
  text.replace(place + offset, count, replacement);
}

void InsertAt(std::string& text,
              std::size_t place,
              std::size_t offset,
              std::string_view insertion) {
  ReplaceAt(text, place, offset, 0, insertion);
}

void InsertAhead(std::string& text, std::string_view literal, std::string_view insertion) {
  InsertAt(text, text.find(literal), 0, insertion);
}

void InsertBehind(std::string& text, std::string_view literal, std::string_view insertion) {
  InsertAt(text, text.find(literal), literal.size(), insertion);
}

bool EraseThrough(std::string& text, std::size_t place, std::string_view end) {
  const std::size_t last = text.find(end, place);
  if (place == kNowhere || last == kNowhere) return false;
  text.erase(place, last + end.size() - place);
  return true;
}

void EraseFromThrough(std::string& text, std::string_view begin, std::string_view end) {
  EraseThrough(text, text.find(begin), end);
}
