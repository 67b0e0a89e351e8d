#include "embedded/chart/parse_markup.h"

#include <exception>
#include <expat.h>
#include <limits>
#include <memory>
#include <optional>

#include "embedded/error.h"

namespace hierfit::chart {

using output::Content;

namespace {

constexpr size_t kMaxDepth = 512;

struct ParserCloser {
  void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};

/// Builds the tree from the events of the expat parser.
class MarkupReader {
 public:
  MarkupReader(std::string_view text, const std::string& name)
      : text_(text), name_(name), parser_(XML_ParserCreate("UTF-8")) {
    if (parser_ == nullptr) fail_for_memory();
    XML_SetUserData(parser_.get(), this);
    XML_SetElementHandler(parser_.get(), &on_start, &on_end);
    XML_SetCharacterDataHandler(parser_.get(), &on_text);
    XML_SetStartDoctypeDeclHandler(parser_.get(), &on_doctype);
  }

  Element read() {
    if (text_.size() > std::numeric_limits<int32_t>::max()) fail("the text is larger than 2 GiB");
    const auto length = static_cast<int>(text_.size());
    const XML_Status status = XML_Parse(parser_.get(), text_.data(), length, XML_TRUE);
    if (thrown_) std::rethrow_exception(thrown_);
    if (XML_GetErrorCode(parser_.get()) == XML_ERROR_NO_MEMORY) fail_for_memory();
    if (status != XML_STATUS_OK) {
      fail(std::string("not well-formed: ") + XML_ErrorString(XML_GetErrorCode(parser_.get())));
    }
    return std::move(*root_);
  }

 private:
  static MarkupReader& self(void* user) { return *static_cast<MarkupReader*>(user); }

  /// Runs one event; what it throws must not pass through the parser's own frames.
  template <class Event>
  static void guarded(void* user, Event event) noexcept {
    MarkupReader& reader = self(user);
    if (reader.thrown_) return;
    try {
      event(reader);
    } catch (...) {
      reader.thrown_ = std::current_exception();
      XML_StopParser(reader.parser_.get(), XML_FALSE);
    }
  }

  static void on_start(void* user, const char* name, const char** attributes) {
    guarded(user, [&](MarkupReader& reader) { reader.start(name, attributes); });
  }
  static void on_end(void* user, const char*) {
    guarded(user, [](MarkupReader& reader) { reader.end(); });
  }
  static void on_text(void* user, const char* text, int length) {
    guarded(user, [&](MarkupReader& reader) {
      reader.add_text({text, static_cast<size_t>(length)});
    });
  }
  static void on_doctype(void* user, const char*, const char*, const char*, int) {
    guarded(user, [](MarkupReader& reader) { reader.fail("it declares a document type"); });
  }

  void start(const char* name, const char** attributes) {
    if (open_.size() == kMaxDepth) fail("elements are nested deeper than 512");
    Element& element = open_.empty()
                           ? root_.emplace()
                           : std::get<Element>(open_.back()->content.emplace_back(Element()));
    element.name = name;
    for (; *attributes != nullptr; attributes += 2) {
      element.attributes.emplace_back(attributes[0], attributes[1]);
    }
    element.self_closing = tag_closes_itself();
    open_.push_back(&element);
  }

  void end() {
    Element& element = *open_.back();
    if (!element.self_closing) {
      element.end_tag = static_cast<size_t>(XML_GetCurrentByteIndex(parser_.get()));
    }
    open_.pop_back();
  }

  bool tag_closes_itself() const {
    const auto begin = static_cast<size_t>(XML_GetCurrentByteIndex(parser_.get()));
    const auto count = static_cast<size_t>(XML_GetCurrentByteCount(parser_.get()));
    return text_.substr(begin, count).ends_with("/>");
  }

  /// The parser hands a text over in pieces.
  void add_text(std::string_view text) {
    std::list<Content>& content = open_.back()->content;
    if (content.empty() || !std::holds_alternative<std::string>(content.back())) {
      content.emplace_back(std::string());
    }
    std::get<std::string>(content.back()) += text;
  }

  [[noreturn]] void fail(const std::string& sentence) const {
    const auto line = static_cast<uint32_t>(XML_GetCurrentLineNumber(parser_.get()));
    const auto column = static_cast<uint32_t>(XML_GetCurrentColumnNumber(parser_.get()) + 1);
    throw DocumentError({name_, line, column}, sentence);
  }

  const std::string_view text_;
  const std::string& name_;
  const std::unique_ptr<std::remove_pointer_t<XML_Parser>, ParserCloser> parser_;
  std::optional<Element> root_;
  std::vector<Element*> open_;
  std::exception_ptr thrown_;
};

}  // namespace

Element parse_markup(std::string_view text, const std::string& name) {
  return MarkupReader(text, name).read();
}

}  // namespace hierfit::chart
