// Changes documents of markup where a reader looks: values of attributes, items of arrays, and
// whole elements. Bytes alone seldom leave a document that is well-formed.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <string_view>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(uint8_t* data, std::size_t size, std::size_t most);

namespace {

using Random = std::minstd_rand;

constexpr std::string_view kValues[] = {"",
                                        "0",
                                        "-1",
                                        "1",
                                        "2",
                                        "3",
                                        "9999",
                                        "2147483647",
                                        "1e308",
                                        "-1e308",
                                        "0.5",
                                        "__MISSING__",
                                        "true",
                                        "false",
                                        "nan",
                                        "^1[%1:^1:]1",
                                        "g",
                                        "s",
                                        "hits",
                                        "site",
                                        "&lt;BR/&gt;",
                                        "\"",
                                        "a b",
                                        "diagonal",
                                        "symmetric",
                                        "pairwiseContrast",
                                        "simpleContrast",
                                        "deviationContrast",
                                        "NOMINAL",
                                        "ORDINAL",
                                        "GAMMA",
                                        "kGLMM_C9",
                                        "kGLMM_C25",
                                        "VarOfEffect",
                                        "Variance "};

struct Range {
  std::size_t begin = 0;
  std::size_t end = 0;
};

std::size_t below(Random& random, std::size_t count) { return random() % count; }

std::string_view value(Random& random) { return kValues[below(random, std::size(kValues))]; }

/// What stands between the marks of each pair of them.
std::vector<Range> between(std::string_view text, std::string_view begin, std::string_view end) {
  std::vector<Range> found;
  for (std::size_t at = 0; (at = text.find(begin, at)) != std::string_view::npos;) {
    at += begin.size();
    const std::size_t stop = text.find(end, at);
    if (stop == std::string_view::npos) break;
    found.push_back({at, stop});
  }
  return found;
}

/// An element that begins at a place, up to the first end of its name.
Range element_at(std::string_view text, std::size_t begin) {
  const std::size_t close = text.find('>', begin);
  if (close == std::string_view::npos) return {};
  if (text[close - 1] == '/') return {begin, close + 1};
  const std::size_t name_end = text.find_first_of(" />\n", begin);
  const std::string end = "</" + std::string(text.substr(begin + 1, name_end - begin - 1)) + ">";
  const std::size_t stop = text.find(end, close);
  return stop == std::string_view::npos ? Range() : Range{begin, stop + end.size()};
}

Range some_element(std::string_view text, Random& random) {
  std::vector<std::size_t> begins;
  for (std::size_t at = 0; (at = text.find('<', at)) != std::string_view::npos; ++at) {
    if (at + 1 < text.size() && text[at + 1] != '/' && text[at + 1] != '?' && text[at + 1] != '!')
      begins.push_back(at);
  }
  return begins.empty() ? Range() : element_at(text, begins[below(random, begins.size())]);
}

void change_attribute(std::string& text, Random& random) {
  const std::vector<Range> values = between(text, "=\"", "\"");
  if (values.empty()) return;
  const Range at = values[below(random, values.size())];
  const Range other = values[below(random, values.size())];
  const std::string taken = text.substr(other.begin, other.end - other.begin);
  const std::string_view put = random() % 3 == 0 ? std::string_view(taken) : value(random);
  text.replace(at.begin, at.end - at.begin, put == "\"" ? "&quot;" : put);
}

void change_array(std::string& text, Random& random) {
  const std::vector<Range> arrays = between(text, "<Array>", "</Array>");
  if (arrays.empty()) return;
  const Range at = arrays[below(random, arrays.size())];
  std::string items = text.substr(at.begin, at.end - at.begin);
  const std::size_t blank = items.find(' ', items.empty() ? 0 : below(random, items.size()));
  if (random() % 2 == 0 || blank == std::string::npos) {
    (items += ' ') += value(random);
  } else {
    items.erase(0, blank);
  }
  text.replace(at.begin, at.end - at.begin, items);
}

void change_element(std::string& text, Random& random) {
  const Range from = some_element(text, random);
  const Range to = some_element(text, random);
  if (from.end == 0 || to.end == 0) return;
  const std::string element = text.substr(from.begin, from.end - from.begin);
  switch (random() % 3) {
    case 0:
      text.erase(from.begin, from.end - from.begin);
      break;
    case 1:
      text.insert(to.begin, element);
      break;
    default:
      text.replace(to.begin, to.end - to.begin, element);
  }
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(uint8_t* data,
                                               std::size_t size,
                                               std::size_t most,
                                               unsigned int seed) {
  Random random(seed);
  if (random() % 4 == 0) return LLVMFuzzerMutate(data, size, most);
  std::string text(reinterpret_cast<const char*>(data), size);
  for (auto round = random() % 3 + 1; round > 0; --round) {
    constexpr void (*kChanges[])(std::string&, Random&) = {&change_attribute, &change_array,
                                                           &change_element};
    kChanges[random() % std::size(kChanges)](text, random);
  }
  if (text.size() > most) text.resize(most);
  std::memcpy(data, text.data(), text.size());
  return text.size();
}
