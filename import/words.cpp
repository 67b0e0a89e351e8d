#include "import/words.h"

#include <algorithm>

namespace hierfit::fit {

const Word* find_word(std::span<const Word> words, std::string_view name) {
  const auto found = std::ranges::find(words, name, &Word::name);
  return found == words.end() ? nullptr : &*found;
}

std::string_view written(std::span<const Word> words, std::string_view name) {
  const Word* word = find_word(words, name);
  return word == nullptr ? std::string_view() : word->written;
}

std::string_view structure_or(std::string_view word, std::string_view otherwise) {
  return word.empty() ? otherwise : written(kStructures, word);
}

std::vector<std::string_view> names_of(std::span<const Word> words) {
  std::vector<std::string_view> names;
  for (const Word& word : words)
    names.push_back(word.name);
  return names;
}

}  // namespace hierfit::fit
