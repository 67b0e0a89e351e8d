// Writes XML, indented.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace hierfit::fit {

/// A document as it grows. Names are ours; values and texts are escaped, and what XML 1.0 cannot
/// hold is left out.
class XmlWriter {
 public:
  using Attribute = std::pair<std::string_view, std::string_view>;
  using Attributes = std::initializer_list<Attribute>;

  /// An open element, which closes with this object.
  class Element {
   public:
    explicit Element(XmlWriter& xml) : xml_(xml) {}
    ~Element() { xml_.close(); }
    Element(const Element&) = delete;
    Element& operator=(const Element&) = delete;

   private:
    XmlWriter& xml_;
  };

  XmlWriter();

  [[nodiscard]] Element element(std::string_view name, Attributes attributes = {});
  /// An element without children.
  void leaf(std::string_view name, Attributes attributes = {});
  /// An element that holds a text.
  void text(std::string_view name, Attributes attributes, std::string_view text);
  /// An `Array` of numbers; one that does not exist is its word for missing.
  void numbers(const std::vector<double>& items);
  /// An `Array` of texts, in quotes where they need them.
  void texts(const std::vector<std::string_view>& items);

  /// The document; the writer has none then.
  std::string take();

 private:
  void open(std::string_view name, Attributes attributes);
  void close();
  void array(size_t count, const char* type, std::string_view items);

  std::string out_;
  std::vector<std::string_view> open_;
  bool is_empty_ = false;  ///< whether the innermost open element has nothing in it yet
};

}  // namespace hierfit::fit
