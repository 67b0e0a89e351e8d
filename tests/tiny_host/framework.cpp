// The framework: the XML wrapper over expat, values of fields, the conversions of text.
#include "host/framework.h"

#include <cmath>
#include <cstdlib>
#include <expat.h>
#include <iomanip>
#include <limits>
#include <map>
#include <sstream>

#include "tests/tiny_host/faults.h"

using tiny::Call;

/// An element of a document, with the wrapper that is handed out for it.
struct SDOMXMLWrapper::Impl {
  std::string name;  ///< without its prefix
  std::map<std::string, std::string, std::less<>> attributes;
  std::string text;
  std::vector<std::unique_ptr<Impl>> children;
  std::vector<std::shared_ptr<void>> walks;  ///< that were handed out
  SDOMXMLWrapper wrapper{this};

  /// The elements that the "/"-separated path reaches, in document order.
  std::vector<Impl*> find(std::string_view path) const {
    const size_t slash = path.find('/');
    std::vector<Impl*> found;
    for (const auto& child : children) {
      if (child->name != path.substr(0, slash)) continue;
      if (slash == std::string_view::npos) {
        found.push_back(child.get());
        continue;
      }
      const std::vector<Impl*> below = child->find(path.substr(slash + 1));
      found.insert(found.end(), below.begin(), below.end());
    }
    return found;
  }
};

struct SDOMXMLIterator::Impl {
  explicit Impl(std::vector<SDOMXMLWrapper*> elements_) : elements(std::move(elements_)) {}

  std::vector<SDOMXMLWrapper*> elements;
  size_t next = 0;
  SDOMXMLIterator iterator{this};
};

// A root owns its element and all below; a wrapper that was handed out is a part of its element.
SDOMXMLWrapper::SDOMXMLWrapper() : impl_(std::make_unique<Impl>().release()) {}
SDOMXMLWrapper::~SDOMXMLWrapper() {
  if (this != &impl_->wrapper) const std::unique_ptr<Impl> owned(impl_);
}

SDOMXMLWrapper* SDOMXMLWrapper::LoadFromString(const std::string& text) {
  const Call call;
  if (call.gives_nothing()) return nullptr;
  using Open = std::vector<Impl*>;
  Impl above;
  Open open = {&above};
  const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
      XML_ParserCreate(nullptr), &XML_ParserFree);
  XML_SetUserData(parser.get(), &open);
  XML_SetElementHandler(
      parser.get(),
      [](void* user, const char* name, const char** attributes) {
        Open& parents = *static_cast<Open*>(user);
        const std::string_view whole = name;
        Impl& element = *parents.back()->children.emplace_back(std::make_unique<Impl>());
        element.name = whole.substr(whole.find(':') + 1);
        for (; *attributes != nullptr; attributes += 2)
          element.attributes.emplace(attributes[0], attributes[1]);
        parents.push_back(&element);
      },
      [](void* user, const char*) { static_cast<Open*>(user)->pop_back(); });
  XML_SetCharacterDataHandler(parser.get(), [](void* user, const char* part, int length) {
    static_cast<Open*>(user)->back()->text.append(part, static_cast<size_t>(length));
  });
  const auto length = static_cast<int>(text.size());
  if (XML_Parse(parser.get(), text.data(), length, XML_TRUE) != XML_STATUS_OK) return nullptr;
  impl_->children = std::move(above.children.front()->children);
  return this;
}

bool SDOMXMLWrapper::GetFirstElement(std::string_view path, SDOMXMLWrapper** element, bool) {
  const Call call;
  const std::vector<Impl*> found = impl_->find(path);
  *element = found.empty() || call.gives_nonsense() ? nullptr : &found.front()->wrapper;
  return !found.empty() && !call.gives_nothing();
}

bool SDOMXMLWrapper::GetElementIterator(std::string_view name, SDOMXMLIterator** iterator, bool) {
  const Call call;
  std::vector<SDOMXMLWrapper*> elements;
  for (Impl* element : impl_->find(name))
    elements.push_back(&element->wrapper);
  const auto walk = std::make_shared<SDOMXMLIterator::Impl>(std::move(elements));
  impl_->walks.push_back(walk);
  *iterator = walk->elements.empty() || call.gives_nonsense() ? nullptr : &walk->iterator;
  return !walk->elements.empty() && !call.gives_nothing();
}

bool SDOMXMLWrapper::GetAttribute(std::string_view name, std::string& value) {
  const Call call;
  const auto found = impl_->attributes.find(name);
  if (found == impl_->attributes.end() || call.gives_nothing()) return false;
  value = found->second;
  return true;
}

bool SDOMXMLWrapper::GetSimpleArray(std::vector<std::string>& items) {
  const Call call;
  items.clear();
  if (call.gives_nothing() || call.gives_nonsense()) return call.gives_nonsense();
  std::istringstream text(impl_->text);
  for (std::string item; text >> std::quoted(item);)
    items.push_back(item);
  return true;
}

SDOMXMLIterator::~SDOMXMLIterator() = default;

bool SDOMXMLIterator::Next(SDOMXMLWrapper** element) {
  const Call call;
  const bool is_there = impl_->next < impl_->elements.size() && !call.gives_nothing();
  *element = is_there && !call.gives_nonsense() ? impl_->elements[impl_->next++] : nullptr;
  return is_there;
}

void CFStatVariableValue::SetStringValue(const std::string& text) {
  text_ = text;
  value_.reset();
}

bool CFStatVariableValue::LoadObsValue(const VELT_Variable* variable, int32_t) {
  const Call call;
  value_.reset();
  if (call.gives_nonsense()) return true;
  if (variable == nullptr || call.gives_nothing()) return false;
  const bool is_string = variable->GetFormat().type == kStringFormatType;
  value_ = is_string ? OBS{.isString = true, .text = text_}
                     : OBS{.number = String2Double(text_), .text = {}};
  return true;
}

bool CFStatVariableValue::SetCompleteValue(const std::string& text,
                                           const VELT_Variable* variable,
                                           int32_t flag) {
  SetStringValue(text);
  return LoadObsValue(variable, flag);
}

double String2Double(const std::string& text) {
  const Call call;
  return call.result(std::strtod(text.c_str(), nullptr), 0.0, std::nan(""));
}
int32_t String2Integer(const std::string& text) {
  const Call call;
  return call.result(std::atoi(text.c_str()), 0, std::numeric_limits<int32_t>::max());
}
int32_t Roman2Integer(const std::string& text) {
  const Call call;
  return text == "III" ? 3 : 0;
}
