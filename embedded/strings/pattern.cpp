#include "embedded/strings/pattern.h"

#include <algorithm>
#include <optional>

#include "embedded/strings/cut_text.h"

namespace hierfit {
namespace {

using output::Text;

constexpr std::string_view kListSeparator = ", ";

/// The number of a place such as "^2" at the head of `text`, 0 when none begins there.
size_t place_at(std::string_view text, char mark) {
  if (text.size() < 2 || text[0] != mark || text[1] < '1' || text[1] > '9') return 0;
  return static_cast<size_t>(text[1] - '0');
}

/// The character that an escape at the head of `text` stands for.
std::optional<char> escape_at(std::string_view text) {
  if (text.starts_with("\\n")) return '\n';
  if (text.starts_with("\\:")) return ':';
  return std::nullopt;
}

/// A text that grows up to the limit and is then cut.
class Filling {
 public:
  bool is_full() const { return is_cut_; }
  Text take() { return std::move(text_); }

  void add(std::string_view characters) {
    if (is_cut_) return;
    text_.shown += characters.substr(0, kMaxFilledBytes + 1 - text_.shown.size());
    if (text_.shown.size() > kMaxFilledBytes) cut();
  }

  void add(const Text& part) {
    if (is_cut_) return;
    const auto offset = static_cast<uint32_t>(text_.shown.size());
    for (output::NumberSpan span : part.numbers) {
      if (offset + uint64_t{span.begin} > kMaxFilledBytes) break;
      span.begin += offset;
      text_.numbers.push_back(span);
    }
    add(std::string_view(part.shown));
  }

 private:
  void cut() {
    const size_t end = cut_text(text_.shown, kMaxFilledBytes);
    std::erase_if(text_.numbers, [end](const output::NumberSpan& span) {
      return span.begin + uint64_t{span.length} > end;
    });
    is_cut_ = true;
  }

  Text text_;
  bool is_cut_ = false;
};

std::span<const Text> items_of(const PatternArgument& argument) {
  if (const auto* text = std::get_if<Text>(&argument)) return {text, 1};
  return std::get<std::vector<Text>>(argument);
}

void add_argument(Filling& filling, const PatternArgument& argument) {
  bool is_first = true;
  for (const Text& item : items_of(argument)) {
    if (!is_first) filling.add(kListSeparator);
    filling.add(item);
    is_first = false;
  }
}

/// "[first:further:]n", taken apart.
struct ListForm {
  std::string_view first;
  std::string_view further;
  size_t argument = 0;  ///< counts from 1
  size_t length = 0;    ///< of the form as a whole
};

/// The end of a sub-pattern: its closing colon. Another "[" means that this is no list form, which
/// also keeps the search through a text full of brackets short.
std::optional<size_t> sub_pattern_end(std::string_view text, size_t begin) {
  for (size_t at = begin; at < text.size(); ++at) {
    if (text[at] == '[') return std::nullopt;
    if (text[at] == ':') return at;
    if (escape_at(text.substr(at))) ++at;
  }
  return std::nullopt;
}

std::optional<ListForm> list_form_at(std::string_view text) {
  if (!text.starts_with('[')) return std::nullopt;
  const auto first_end = sub_pattern_end(text, 1);
  if (!first_end) return std::nullopt;
  const auto further_end = sub_pattern_end(text, *first_end + 1);
  if (!further_end) return std::nullopt;
  const std::string_view rest = text.substr(*further_end + 1);
  if (rest.size() < 2 || rest[0] != ']' || rest[1] < '1' || rest[1] > '9') return std::nullopt;
  return ListForm{text.substr(1, *first_end - 1),
                  text.substr(*first_end + 1, *further_end - *first_end - 1),
                  static_cast<size_t>(rest[1] - '0'), *further_end + 3};
}

/// How many items a round of a sub-pattern takes: its highest place.
size_t items_per_round(std::string_view sub_pattern, char mark) {
  size_t count = 0;
  for (size_t at = 0; at < sub_pattern.size(); ++at) {
    count = std::max(count, place_at(sub_pattern.substr(at), mark));
  }
  return count;
}

void add_round(Filling& filling,
               std::string_view sub_pattern,
               char mark,
               std::span<const Text> items) {
  for (size_t at = 0; at < sub_pattern.size();) {
    const std::string_view rest = sub_pattern.substr(at);
    if (const size_t place = place_at(rest, mark); place != 0) {
      if (place <= items.size()) filling.add(items[place - 1]);
      at += 2;
    } else if (const auto escaped = escape_at(rest)) {
      filling.add(std::string_view(&*escaped, 1));
      at += 2;
    } else {
      filling.add(rest.substr(0, 1));
      ++at;
    }
  }
}

void add_list(Filling& filling, const ListForm& form, std::span<const Text> items) {
  if (items.empty()) return;
  const size_t first_items = std::min(items_per_round(form.first, '%'), items.size());
  add_round(filling, form.first, '%', items.first(first_items));
  items = items.subspan(first_items);
  const size_t step = std::max<size_t>(1, items_per_round(form.further, '^'));
  while (!items.empty() && !filling.is_full()) {
    const size_t count = std::min(step, items.size());
    add_round(filling, form.further, '^', items.first(count));
    items = items.subspan(count);
  }
}

}  // namespace

Text fill_pattern(std::string_view pattern, std::span<const PatternArgument> arguments) {
  Filling filling;
  while (!pattern.empty() && !filling.is_full()) {
    size_t taken = pattern.find_first_of("^\\[", 0);
    if (taken != 0) {
      taken = std::min(taken, pattern.size());
      filling.add(pattern.substr(0, taken));
    } else if (const auto form = list_form_at(pattern)) {
      const bool exists = form->argument <= arguments.size();
      if (exists) add_list(filling, *form, items_of(arguments[form->argument - 1]));
      taken = form->length;
    } else if (const auto escaped = escape_at(pattern)) {
      filling.add(std::string_view(&*escaped, 1));
      taken = 2;
    } else if (const size_t place = place_at(pattern, '^');
               place != 0 && place <= arguments.size()) {
      add_argument(filling, arguments[place - 1]);
      taken = 2;
    } else {
      filling.add(pattern.substr(0, 1));
      taken = 1;
    }
    pattern.remove_prefix(taken);
  }
  return filling.take();
}

}  // namespace hierfit
