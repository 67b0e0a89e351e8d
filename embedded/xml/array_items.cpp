#include "embedded/xml/array_items.h"

#include <utility>

namespace hierfit::xml {
namespace {

/// A document knows no characters below the blank but white space.
bool is_blank(char character) { return static_cast<unsigned char>(character) <= ' '; }

/// Takes a quoted item off the head of `text`, its opening quote included.
bool take_quoted(std::string_view& text, std::string& item) {
  text.remove_prefix(1);
  for (;;) {
    const size_t stop = text.find_first_of("\"\\");
    if (stop == std::string_view::npos) return false;
    item += text.substr(0, stop);
    const char mark = text[stop];
    text.remove_prefix(stop + 1);
    if (mark == '"') return text.empty() || is_blank(text[0]);
    const bool is_escape = !text.empty() && (text[0] == '"' || text[0] == '\\');
    item += is_escape ? text[0] : '\\';
    if (is_escape) text.remove_prefix(1);
  }
}

/// The next item to fill: one that is there already, or a new one.
class Items {
 public:
  explicit Items(std::vector<std::string>& items) : items_(items) {}

  std::string& next() {
    if (count_ == items_.size()) items_.emplace_back();
    return items_[count_++];
  }
  void drop_the_rest() { items_.resize(count_); }

 private:
  std::vector<std::string>& items_;
  size_t count_ = 0;
};

/// Walks the items of a text. `plain` takes one as it stands, `quoted` gives the text that one is
/// written to.
template <class Plain, class Quoted>
bool walk_items(std::string_view text, const Plain& plain, const Quoted& quoted) {
  for (;;) {
    size_t begin = 0;
    while (begin < text.size() && is_blank(text[begin])) {
      ++begin;
    }
    text.remove_prefix(begin);
    if (text.empty()) return true;
    if (text[0] == '"') {
      if (!take_quoted(text, quoted())) return false;
      continue;
    }
    size_t end = 1;
    while (end < text.size() && !is_blank(text[end])) {
      ++end;
    }
    plain(text.substr(0, end));
    text.remove_prefix(end);
  }
}

}  // namespace

bool split_items(std::string_view text, std::vector<std::string>& items) {
  Items filled(items);
  const bool is_whole = walk_items(
      text, [&](std::string_view item) { filled.next().assign(item); },
      [&]() -> std::string& {
        std::string& item = filled.next();
        item.clear();
        return item;
      });
  filled.drop_the_rest();
  return is_whole;
}

bool view_items(std::string_view text,
                std::vector<std::string_view>& items,
                std::deque<std::string>& storage) {
  items.clear();
  // A quoted item is seen once it is written, that is when the next one comes.
  std::vector<std::pair<size_t, const std::string*>> written;
  const bool is_whole = walk_items(
      text, [&](std::string_view item) { items.push_back(item); },
      [&]() -> std::string& {
        written.emplace_back(items.size(), &storage.emplace_back());
        items.emplace_back();
        return storage.back();
      });
  for (const auto& [index, item] : written)
    items[index] = *item;
  return is_whole;
}

}  // namespace hierfit::xml
