#include "embedded/strings/string_table.h"

#include <boost/locale/gnu_gettext.hpp>
#include <boost/locale/message.hpp>
#include <cstring>
#include <filesystem>
#include <functional>
#include <locale>
#include <stdexcept>
#include <unordered_map>

#include "embedded/error.h"
#include "embedded/files/whole_file.h"

namespace hierfit {
namespace {

using Facet = boost::locale::message_format<char>;

constexpr std::string_view kKeysAsTheyStand = "C";

std::string catalogue_file(const std::string& directory, const std::string& tag) {
  return directory + "/" + tag + ".mo";
}

/// The first of the language's tags that has a catalogue, or "C".
std::string catalogue_tag(const std::string& directory, std::string_view language) {
  // A tag names a file, so it has only what tags have.
  const bool is_tag = std::ranges::all_of(
      language, [](char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '-'; });
  if (language == kKeysAsTheyStand || !is_tag) return std::string(kKeysAsTheyStand);
  for (std::string& tag : serving_tags(language)) {
    if (std::filesystem::exists(catalogue_file(directory, tag))) return std::move(tag);
  }
  return std::string(kKeysAsTheyStand);
}

/// Whether all that a catalogue points at lies within it; the library looks where it is told. The
/// layout is that of gettext's binary files: seven numbers, then tables of length and place.
bool is_whole(std::string_view bytes) {
  constexpr uint32_t kMagic = 0x950412DE;
  const auto number_at = [bytes](uint64_t at) -> uint64_t {
    uint32_t number = 0xFFFFFFFF;
    if (at + sizeof number <= bytes.size()) std::memcpy(&number, bytes.data() + at, sizeof number);
    return number;
  };
  const auto text_is_inside = [&](uint64_t entry) {
    const uint64_t end = number_at(entry) + number_at(entry + 4);
    return end < bytes.size() && bytes[end] == '\0';
  };
  if (number_at(0) != kMagic) return false;
  const uint64_t count = number_at(8);
  for (const uint64_t table : {number_at(12), number_at(16)}) {
    if (table + 8 * count > bytes.size()) return false;
    for (uint64_t i = 0; i < count; ++i) {
      if (!text_is_inside(table + 8 * i)) return false;
    }
  }
  const uint64_t slots = number_at(20);
  const uint64_t hashes = number_at(24);
  if (slots > 0 && (slots < 3 || hashes + 4 * slots > bytes.size())) return false;
  uint64_t empty = 0;
  for (uint64_t i = 0; i < slots; ++i) {
    const uint64_t entry = number_at(hashes + 4 * i);
    if (entry > count) return false;
    if (entry == 0) ++empty;
  }
  return slots == 0 || empty > 0;
}

FileError no_catalogue(const std::string& file) {
  return FileError({file, 0, 0}, "is no message catalogue");
}

std::locale open_catalogue(const std::string& file) {
  const std::string bytes = read_whole_file(file);
  boost::locale::gnu_gettext::messages_info catalogue;
  catalogue.encoding = "UTF-8";
  catalogue.paths = {""};
  catalogue.domains.emplace_back("catalogue");
  catalogue.callback = [&bytes](const std::string&, const std::string&) {
    return std::vector<char>(bytes.begin(), bytes.end());
  };
  if (!is_whole(bytes)) throw no_catalogue(file);
  try {
    return std::locale(std::locale::classic(),
                       boost::locale::gnu_gettext::create_messages_facet<char>(catalogue));
  } catch (const std::runtime_error&) {
    throw no_catalogue(file);
  }
}

struct KeyHash {
  using is_transparent = void;
  size_t operator()(std::string_view key) const { return std::hash<std::string_view>{}(key); }
};

}  // namespace

struct StringTable::Impl {
  std::string language{kKeysAsTheyStand};
  LanguageMarks marks;
  std::locale catalogue;  ///< owns the facet
  const Facet* facet = nullptr;
  /// Keys that were asked for, with their texts; null for those that the catalogue does not hold.
  std::unordered_map<std::string, const char*, KeyHash, std::equal_to<>> known;

  std::string file;

  void open(const std::string& name) {
    file = name;
    catalogue = open_catalogue(file);
    facet = &std::use_facet<Facet>(catalogue);
  }

  /// The header of a catalogue is the text of the empty key.
  void read_marks(std::string_view tag) {
    const char* header = ask("");
    if (header != nullptr) marks = marks_of(header, tag);
  }

  /// Null for a key that the catalogue does not hold. The library looks at a text no earlier than
  /// now, and then finds that a damaged catalogue does not have it.
  const char* ask(const char* key) const {
    try {
      return facet->get(0, nullptr, key);
    } catch (const std::runtime_error&) {
      throw no_catalogue(file);
    }
  }

  const char* find(std::string_view key) {
    if (facet == nullptr || key.empty()) return nullptr;
    if (const auto found = known.find(key); found != known.end()) return found->second;
    std::string owned(key);
    const char* text = ask(owned.c_str());
    // Keys from documents are without number and mostly unknown: they are not worth remembering.
    if (text != nullptr) known.emplace(std::move(owned), text);
    return text;
  }
};

StringTable::StringTable() : impl_(std::make_unique<Impl>()) {}

StringTable::StringTable(const std::string& directory, std::string_view language) : StringTable() {
  impl_->language = catalogue_tag(directory, language);
  if (impl_->language == kKeysAsTheyStand) return;
  impl_->open(catalogue_file(directory, impl_->language));
  impl_->read_marks(language);
}

StringTable::StringTable(const std::string& file) : StringTable() {
  if (!std::filesystem::exists(file)) return;
  impl_->language = std::filesystem::path(file).stem().string();
  impl_->open(file);
  impl_->read_marks(impl_->language);
}

StringTable::~StringTable() = default;
StringTable::StringTable(StringTable&&) noexcept = default;
StringTable& StringTable::operator=(StringTable&&) noexcept = default;

std::string_view StringTable::text(std::string_view key) const {
  const char* text = impl_->find(key);
  return text == nullptr ? key : std::string_view(text);
}

bool StringTable::holds(std::string_view key) const { return impl_->find(key) != nullptr; }

const LanguageMarks& StringTable::marks() const { return impl_->marks; }

const std::string& StringTable::language() const { return impl_->language; }

}  // namespace hierfit
