// The schema of fit documents says what the binding tables do.
#include <doctest/doctest.h>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>
#include <string>

#include "import/member.h"

namespace {

using namespace hierfit::fit;
using nlohmann::json;

const json& schema() {
  static const json document = [] {
    std::ifstream file(HIERFIT_SOURCE_DIR "/import/fit.schema.json");
    return json::parse(file);
  }();
  return document;
}

/// The definition that a part of the schema refers to, or the part itself.
const json& resolved(const json& part) {
  if (!part.contains("$ref")) return part;
  const std::string name = part["$ref"];
  return schema()["$defs"][name.substr(name.rfind('/') + 1)];
}

std::set<std::string> words_of(const json& part) {
  std::set<std::string> words;
  if (part.contains("const")) words.insert(part["const"].get<std::string>());
  for (const json& word : part.value("enum", json::array()))
    if (word.is_string()) words.insert(word.get<std::string>());
  return words;
}

void check_range(const Member& member, const json& part) {
  const json& numbers = part.contains("items") ? resolved(part["items"]) : part;
  const char* least = member.range.open ? "exclusiveMinimum" : "minimum";
  const char* most = member.range.open ? "exclusiveMaximum" : "maximum";
  if (member.range.least > -1e300) CHECK(numbers.value(least, -1.0) == member.range.least);
  if (member.range.most < 1e300) CHECK(numbers.value(most, -1.0) == member.range.most);
  if (member.range.least < -1e300) CHECK_FALSE(numbers.contains(least));
}

void check_object(const Shape& shape, const json& part, const std::string& path);

void check_member(const Member& member, const json& part, const std::string& path) {
  CAPTURE(path);
  const json& there = resolved(part);
  CHECK(part.value("description", there.value("description", "")).size() > 5);
  const bool is_list = there.value("type", json()) == "array";
  const json& words = is_list ? there["items"] : there;
  std::set<std::string> known;
  for (const Word& word : member.words)
    known.insert(std::string(word.name));
  CHECK(words_of(words) == known);
  if (member.kind != Kind::MatrixRows) check_range(member, there);
  if (member.kind == Kind::Object) check_object(member.shape(), there, path);
  if (member.kind == Kind::Objects) check_object(member.shape(), resolved(there["items"]), path);
}

void check_object(const Shape& shape, const json& part, const std::string& path) {
  CAPTURE(path);
  std::set<std::string> known;
  std::set<std::string> required;
  for (const Member& member : shape.members) {
    const std::string name(member.name);
    known.insert(name);
    if (member.need == Need::Required) required.insert(name);
    REQUIRE(part["properties"].contains(name));
    check_member(member, part["properties"][name], path + "." + name);
  }
  std::set<std::string> told;
  for (const auto& property : part["properties"].items())
    told.insert(property.key());
  CHECK(told == known);
  CHECK(part.value("required", std::set<std::string>()) == required);
}

}  // namespace

TEST_CASE("the schema and the reader of fits know the same members, words and ranges") {
  check_object(shape_of<Fit>(), schema(), "");
}
