// The facets of a chart's document: both go, or the second alone.
#include "backend/hierfit/charts/HFITChartImpl.h"
#include "backend/hierfit/charts/TextEdits.h"

namespace {

/// The second `literal` at or behind a place.
std::size_t FindSecond(const std::string& text, std::string_view literal, std::size_t from) {
  const std::size_t first = text.find(literal, from);
  return first == std::string::npos ? first : text.find(literal, first + 2);
}

}  // namespace

void HFITChartImpl::RemoveFaceting(std::string& text) {
  constexpr std::string_view kEnd = "</facetLayout>";
  const std::size_t begin = text.find("<faceting");
  const std::size_t end = text.find(kEnd);
  if (begin == std::string::npos || end == std::string::npos || end < begin) return;
  text.erase(begin, end + kEnd.size() - begin);
}

void HFITChartImpl::RemoveSecondFacet(std::string& text) {
  const std::size_t reference = FindSecond(text, "<variableReference", 0);
  if (!EraseThrough(text, reference, "</variableReference>")) return;
  EraseThrough(text, FindSecond(text, "<facetLevel ", reference), "</facetLevel>");
}
