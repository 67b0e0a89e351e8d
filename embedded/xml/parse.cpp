// Fills a tree from the events of the expat parser.
#include <algorithm>
#include <array>
#include <cstring>
#include <exception>
#include <expat.h>

#include "embedded/error.h"
#include "embedded/xml/tree.h"

namespace hierfit::xml {
namespace {

struct ParserCloser {
  void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};

struct Sentence {
  XML_Error code;
  const char* text;
};

constexpr Sentence kSentences[] = {
    {XML_ERROR_NO_ELEMENTS, "the text ends before the root element is complete"},
    {XML_ERROR_INVALID_TOKEN, "not well-formed: a character or mark that cannot stand here"},
    {XML_ERROR_UNCLOSED_TOKEN, "not well-formed: a tag or a comment is left open"},
    {XML_ERROR_PARTIAL_CHAR, "not well-formed: the text ends inside a character"},
    {XML_ERROR_TAG_MISMATCH, "not well-formed: this end tag does not match its start tag"},
    {XML_ERROR_DUPLICATE_ATTRIBUTE, "not well-formed: the element has this attribute twice"},
    {XML_ERROR_JUNK_AFTER_DOC_ELEMENT,
     "not well-formed: there is something behind the root element"},
    {XML_ERROR_UNDEFINED_ENTITY, "not well-formed: an entity that is not declared"},
    {XML_ERROR_UNKNOWN_ENCODING, "the encoding that the document names is not known"},
    {XML_ERROR_INCORRECT_ENCODING, "the document is not in the encoding that it names"},
    {XML_ERROR_UNCLOSED_CDATA_SECTION, "not well-formed: a CDATA section is left open"},
};

std::string sentence_of(XML_Error code) {
  const auto* sentence = std::ranges::find(kSentences, code, &Sentence::code);
  if (sentence != std::end(kSentences)) return sentence->text;
  return std::string("not well-formed: ") + XML_ErrorString(code);
}

bool is_blank(char character) {
  return character == ' ' || character == '\n' || character == '\t' || character == '\r';
}

std::string_view local_name(std::string_view name) {
  const size_t colon = name.rfind(':');
  return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

bool declares_name_space(std::string_view name) {
  return name.starts_with("xmlns") && (name.size() == 5 || name[5] == ':');
}

/// Whether the encoding that a document names is the one that its mark has settled. Of texts with
/// the mark of UTF-16 the parser sees to that itself.
bool agrees_with_mark(std::string_view text, std::string_view encoding) {
  constexpr std::string_view kMark = "\xEF\xBB\xBF";
  constexpr std::string_view kEncoding = "utf-8";
  const auto equal = [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a + 32 : a) == b; };
  return !text.starts_with(kMark) || std::ranges::equal(encoding, kEncoding, equal);
}

/// Whether each "&" of a tag begins a character reference or one of the five predefined entities.
bool entities_are_known(std::string_view tag) {
  constexpr std::string_view kKnown[] = {"#", "lt;", "gt;", "amp;", "quot;", "apos;"};
  for (size_t at = tag.find('&'); at != std::string_view::npos; at = tag.find('&', at + 1)) {
    const std::string_view rest = tag.substr(at + 1);
    if (std::ranges::none_of(kKnown, [&](auto name) { return rest.starts_with(name); })) {
      return false;
    }
  }
  return true;
}

}  // namespace

/// What the parser's events build. Texts are put into one buffer: decoded text is never longer than
/// twice its source, since the parser knows no encoding that grows more and the defaults that a
/// DOCTYPE states for attributes are passed over.
class TreeBuilder {
 public:
  TreeBuilder(Tree& tree, std::string_view text)
      : tree_(tree), text_(text), parser_(XML_ParserCreate(nullptr)) {
    if (parser_ == nullptr) fail_for_memory();
    tree_.characters_ = std::make_unique_for_overwrite<char[]>(text.size() * 2 + 1);
    XML_SetUserData(parser_.get(), this);
    XML_SetElementHandler(parser_.get(), &on_start, &on_end);
    XML_SetCharacterDataHandler(parser_.get(), &on_text);
    XML_SetEntityDeclHandler(parser_.get(), &on_entity_declaration);
    XML_SetSkippedEntityHandler(parser_.get(), &on_skipped_entity);
    XML_SetStartDoctypeDeclHandler(parser_.get(), &on_doctype);
    XML_SetXmlDeclHandler(parser_.get(), &on_declaration);
  }

  std::optional<ReadFailure> parse() {
    const XML_Status status =
        XML_Parse(parser_.get(), text_.data(), static_cast<int>(text_.size()), XML_TRUE);
    if (thrown_) std::rethrow_exception(thrown_);
    if (XML_GetErrorCode(parser_.get()) == XML_ERROR_NO_MEMORY) fail_for_memory();
    if (status != XML_STATUS_OK) return failure();
    std::ranges::stable_sort(tree_.runs_, {}, &Tree::TextRun::node);
    return std::nullopt;
  }

 private:
  static TreeBuilder& self(void* user) { return *static_cast<TreeBuilder*>(user); }

  /// Runs one event. An exception must not pass through the parser's own frames, which know none:
  /// it is kept, whatever it is, and thrown again when the parser has stopped. The parser may still
  /// send an event or two after it was told to stop.
  template <class Event>
  static void guarded(void* user, Event event) noexcept {
    if (self(user).stopped_ != nullptr) return;
    try {
      event(self(user));
    } catch (...) {
      self(user).thrown_ = std::current_exception();
      self(user).stop("");
    }
  }

  static void on_start(void* user, const char* name, const char** attributes) {
    guarded(user, [&](TreeBuilder& builder) { builder.start(name, attributes); });
  }
  static void on_end(void* user, const char*) {
    guarded(user, [](TreeBuilder& builder) { builder.end(); });
  }
  static void on_text(void* user, const char* text, int length) {
    guarded(user, [&](TreeBuilder& builder) {
      builder.add_text({text, static_cast<size_t>(length)});
    });
  }
  static void on_entity_declaration(void* user,
                                    const char*,
                                    int,
                                    const char*,
                                    int,
                                    const char*,
                                    const char*,
                                    const char*,
                                    const char*) {
    self(user).stop("the document declares entities of its own, which is refused");
  }
  static void on_skipped_entity(void* user, const char*, int) {
    self(user).stop(sentence_of(XML_ERROR_UNDEFINED_ENTITY).c_str());
  }
  static void on_declaration(void* user, const char*, const char* encoding, int) {
    if (encoding != nullptr && !agrees_with_mark(self(user).text_, encoding))
      self(user).stop(sentence_of(XML_ERROR_INCORRECT_ENCODING).c_str());
  }
  static void on_doctype(void* user, const char*, const char*, const char*, int) {
    self(user).has_doctype_ = true;
  }

  void stop(const char* sentence) {
    if (stopped_ == nullptr) {
      stopped_ = std::make_unique<ReadFailure>(failure_here(sentence));
      XML_StopParser(parser_.get(), XML_FALSE);
    }
  }

  void start(const char* name, const char** attributes) {
    flush_text();
    if (depth_ == kMaxDepth) return stop("elements are nested deeper than 512");
    if (has_doctype_ && !entities_are_known(current_event())) {
      return stop(sentence_of(XML_ERROR_UNDEFINED_ENTITY).c_str());
    }
    open_[depth_++] = static_cast<NodeId>(tree_.nodes_.size());
    tree_.nodes_.push_back({tree_.names_.intern(local_name(name)),
                            static_cast<uint32_t>(XML_GetCurrentLineNumber(parser_.get())), 0,
                            static_cast<uint32_t>(tree_.attributes_.size())});
    const int specified = XML_GetSpecifiedAttributeCount(parser_.get());
    for (int index = 0; index < specified; index += 2) {
      add_attribute(attributes[index], attributes[index + 1]);
    }
  }

  void end() {
    flush_text();
    tree_.nodes_[open_[--depth_]].end = static_cast<NodeId>(tree_.nodes_.size());
  }

  void add_attribute(std::string_view name, std::string_view value) {
    if (declares_name_space(name)) return;
    tree_.attributes_.push_back({tree_.names_.intern(local_name(name)), used_});
    append(value);
    tree_.characters_[used_++] = '\0';
  }

  /// Blanks ahead of a stretch of text are passed over, so that indentation costs nothing.
  void add_text(std::string_view text) {
    if (pending_ == 0) {
      const auto* first = std::ranges::find_if_not(text, is_blank);
      text.remove_prefix(static_cast<size_t>(first - text.begin()));
    }
    append(text);
    pending_ += static_cast<uint32_t>(text.size());
  }

  void flush_text() {
    if (pending_ == 0) return;
    tree_.runs_.push_back({open_[depth_ - 1], used_ - pending_, pending_});
    pending_ = 0;
  }

  void append(std::string_view text) {
    std::memcpy(tree_.characters_.get() + used_, text.data(), text.size());
    used_ += static_cast<uint32_t>(text.size());
  }

  std::string_view current_event() const {
    const auto begin = static_cast<size_t>(XML_GetCurrentByteIndex(parser_.get()));
    return text_.substr(begin, static_cast<size_t>(XML_GetCurrentByteCount(parser_.get())));
  }

  ReadFailure failure() const {
    return stopped_ ? *stopped_ : failure_here(sentence_of(XML_GetErrorCode(parser_.get())));
  }

  ReadFailure failure_here(std::string sentence) const {
    return {std::move(sentence), static_cast<uint32_t>(XML_GetCurrentLineNumber(parser_.get())),
            static_cast<uint32_t>(XML_GetCurrentColumnNumber(parser_.get()) + 1)};
  }

  Tree& tree_;
  const std::string_view text_;
  const std::unique_ptr<std::remove_pointer_t<XML_Parser>, ParserCloser> parser_;
  std::array<NodeId, kMaxDepth> open_{};  ///< the elements around the current place
  size_t depth_ = 0;
  uint32_t used_ = 0;     ///< bytes of `Tree::characters_`
  uint32_t pending_ = 0;  ///< bytes at their end that are text not yet in a run
  bool has_doctype_ = false;
  std::unique_ptr<ReadFailure> stopped_;  ///< why and where the parser was told to stop
  std::exception_ptr thrown_;
};

std::optional<ReadFailure> Tree::parse(std::string_view text) {
  // Offsets are 32 bits wide, and decoded text may be twice as long as its source.
  if (text.size() > std::numeric_limits<int32_t>::max() - 1) {
    return ReadFailure{"the document is larger than 2 GiB", 0, 0};
  }
  auto failure = TreeBuilder(*this, text).parse();
  if (failure) *this = Tree();
  return failure;
}

}  // namespace hierfit::xml
