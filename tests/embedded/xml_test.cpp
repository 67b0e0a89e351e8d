// The XML reader: what it refuses and where, what look-ups find, and how a failed read is
// explained.
#include <algorithm>
#include <doctest/doctest.h>
#include <functional>

#include "host/framework.h"

#include "embedded/xml/tree.h"
#include "tests/embedded/sample_inputs.h"

using namespace hierfit;

namespace {

std::string repeated(const std::string& text, size_t count) {
  std::string all;
  for (size_t index = 0; index < count; ++index) {
    all += text;
  }
  return all;
}

/// A procedure that reads the result document with one function.
class ReadingProcedure final : public CFProcCustom {
 public:
  using Read = std::function<bool(SDOMXMLWrapper&)>;
  explicit ReadingProcedure(Read read) : read_(std::move(read)) {}

  bool IsReady() override { return true; }
  bool GenerateOutput(const std::vector<std::string>& models,
                      const std::vector<StatXMLBlock>& blocks,
                      const std::string&) override {
    return GenerateDocumentOutput(models.at(0), blocks.at(0));
  }
  bool GenerateDocumentOutput(const std::string&, const StatXMLBlock& block) override {
    SDOMXMLWrapper root;
    return root.LoadFromString(block.fDocumentText) != nullptr && read_(root);
  }

 private:
  Read read_;
};

/// The sentence, with its place, that a failed read of this text ends in.
std::string complaint(const std::string& statxml, const ReadingProcedure::Read& read) {
  Session session(test::session_input(statxml), test::plain_options());
  ReadingProcedure procedure(read);
  try {
    session.run(procedure);
  } catch (const DocumentError& error) {
    return error.where().text() + ": " + error.what();
  }
  return "read";
}

bool read_nothing(SDOMXMLWrapper&) { return true; }

/// The items of the array in a document, joined with "|", or "unreadable".
std::string items_of(const std::string& document) {
  SDOMXMLWrapper root;
  REQUIRE(root.LoadFromString(document) != nullptr);
  std::vector<std::string> items = {"left over"};
  const bool reads = root.GetSimpleArray(items);
  if (!reads) return items.empty() ? "unreadable" : "not emptied";
  std::string joined;
  for (const std::string& item : items) {
    joined += item + "|";
  }
  return joined;
}

}  // namespace

TEST_CASE("a text that is no document is refused with its place") {
  struct Refusal {
    const char* what;
    std::string text;
    std::string complaint;
  };
  const Refusal refusals[] = {
      {"empty", "", "result.xml:1:1: the document is empty"},
      {"blank", " \n ", "result.xml:2:2: the text ends before the root element is complete"},
      {"cut off", "<a>\n<b", "result.xml:2:1: not well-formed: a tag or a comment is left open"},
      {"two roots", "<a/>\n<b/>",
       "result.xml:2:1: not well-formed: there is something behind the root element"},
      {"text behind the root", "<a/>x",
       "result.xml:1:5: not well-formed: there is something behind the root element"},
      {"crossed tags", "<a><b></a></b>",
       "result.xml:1:9: not well-formed: this end tag does not match its start tag"},
      {"attribute twice", R"(<a x="1" x="2"/>)",
       "result.xml:1:10: not well-formed: the element has this attribute twice"},
      {"undeclared entity", "<a>&nbsp;</a>",
       "result.xml:1:4: not well-formed: an entity that is not declared"},
      {"undeclared entity that a foreign DTD might declare",
       "<!DOCTYPE a SYSTEM 'a.dtd'><a>&nbsp;</a>",
       "result.xml:1:31: not well-formed: an entity that is not declared"},
      {"the same in an attribute", "<!DOCTYPE a SYSTEM 'a.dtd'><a x='&nbsp;'/>",
       "result.xml:1:28: not well-formed: an entity that is not declared"},
      {"entity declaration", "<!DOCTYPE a [<!ENTITY b 'c'>]><a/>",
       "result.xml:1:25: the document declares entities of its own, which is refused"},
      {"growing entities", "<!DOCTYPE a [<!ENTITY b 'bb'><!ENTITY c '&b;&b;&b;'>]><a>&c;</a>",
       "result.xml:1:25: the document declares entities of its own, which is refused"},
      {"bad UTF-8", "<a>\xC3(</a>",
       "result.xml:1:4: not well-formed: a character or mark that cannot stand here"},
      {"control character", "<a>\x01</a>",
       "result.xml:1:4: not well-formed: a character or mark that cannot stand here"},
      {"zero byte", std::string("<a>\0</a>", 8),
       "result.xml:1:4: not well-formed: a character or mark that cannot stand here"},
      {"unknown encoding", "<?xml version='1.0' encoding='x-own'?><a/>",
       "result.xml:1:31: the encoding that the document names is not known"},
      {"too deep", repeated("<a>", 513) + repeated("</a>", 513),
       "result.xml:1:1537: elements are nested deeper than 512"},
      {"too deep, a hundred thousand times", repeated("<a>", 100000),
       "result.xml:1:1537: elements are nested deeper than 512"},
  };
  for (const Refusal& refusal : refusals) {
    CAPTURE(refusal.what);
    CHECK(complaint(refusal.text, read_nothing) == refusal.complaint);
  }
  CHECK(complaint(repeated("<a>", 512) + repeated("</a>", 512), read_nothing) == "read");
}

TEST_CASE("attributes that a DOCTYPE gives by default do not grow the document") {
  SDOMXMLWrapper root;
  REQUIRE(root.LoadFromString("<!DOCTYPE a [<!ATTLIST a x CDATA 'default'>]><a y='1'/>") !=
          nullptr);
  std::string value;
  CHECK_FALSE(root.GetAttribute("x", value));
  CHECK(root.GetAttribute("y", value));
}

TEST_CASE("look-ups walk direct children by local name") {
  SDOMXMLWrapper root;
  REQUIRE(root.LoadFromString(R"(<r xmlns:p="urn:p" xmlns:v="urn:v">
      <p:a n="1"><b/></p:a>
      <a p:n="2"><b/><c k="deep &amp; &#x41;"/></a>
      <x><a n="no child of r"/></x>
    </r>)") == &root);
  SDOMXMLWrapper* element = nullptr;
  SDOMXMLIterator* iterator = nullptr;
  std::string value;

  SUBCASE("a path goes back to a later element when the first is a dead end") {
    REQUIRE(root.GetFirstElement("a/c", &element, true));
    CHECK(element->GetAttribute("k", value));
    CHECK(value == "deep & A");
  }
  SUBCASE("what is not there gives null and false") {
    for (const char* path : {"c", "a/a", "r", "a/c/k", "", "a/", "/a"}) {
      CAPTURE(path);
      element = &root;
      CHECK_FALSE(root.GetFirstElement(path, &element, true));
      CHECK(element == nullptr);
    }
    iterator = nullptr;
    CHECK_FALSE(root.GetElementIterator("b", &iterator, true));
    CHECK(iterator == nullptr);
    CHECK_FALSE(root.GetAttribute("v", value));
  }
  SUBCASE("an iterator gives all children of the name in order, and then null") {
    REQUIRE(root.GetElementIterator("a", &iterator, true));
    std::string seen;
    while (iterator->Next(&element)) {
      REQUIRE(element->GetAttribute("n", value));
      seen += value;
    }
    CHECK(seen == "12");
    CHECK(element == nullptr);
  }
}

TEST_CASE("a wrapper without a document finds nothing, and loads once") {
  SDOMXMLWrapper root;
  SDOMXMLWrapper* element = nullptr;
  SDOMXMLIterator* iterator = nullptr;
  std::string value;
  std::vector<std::string> items;
  CHECK(root.LoadFromString("<a") == nullptr);
  CHECK_FALSE(root.GetFirstElement("a", &element, true));
  CHECK_FALSE(root.GetElementIterator("a", &iterator, true));
  CHECK_FALSE(root.GetAttribute("a", value));
  CHECK_FALSE(root.GetSimpleArray(items));
}

TEST_CASE("arrays split at white space outside quotes") {
  struct Row {
    const char* document;
    const char* items;
  };
  const Row rows[] = {
      {"<Array>1 2\t3\n4</Array>", "1|2|3|4|"},
      {"<Array n='2'>  __MISSING__   -1e5 </Array>", "__MISSING__|-1e5|"},
      {"<Array n='0'/>", ""},
      {"<Array>\n</Array>", ""},
      {R"(<Array n="3">"a b" "" "c \"d\" \\ \e"</Array>)", R"(a b||c "d" \ \e|)"},
      {"<Array>a\"b c\\\"</Array>", "a\"b|c\\\"|"},
      {"<Array n='2'>1<![CDATA[ <]]></Array>", "1|<|"},
      {"<Array>1&#10;2<!-- 3 -->4</Array>", "1|24|"},
      {"<Array n='many'>1 2</Array>", "1|2|"},
      {"<Array n='2.0'>1 2</Array>", "1|2|"},
      {"<Array n='3'>1 2</Array>", "unreadable"},
      {"<Array n='-1'/>", "unreadable"},
      {"<Array n='1e999'>1 2</Array>", "unreadable"},
      {"<Array>\"open</Array>", "unreadable"},
      {"<Array>\"open\\\"</Array>", "unreadable"},
      {"<Array>\"a\"b</Array>", "unreadable"},
  };
  for (const Row& row : rows) {
    CAPTURE(row.document);
    CHECK(items_of(row.document) == row.items);
  }
}

TEST_CASE("a failed read names the innermost thing that failed and its line") {
  const std::string text = "<r>\n<m>\n<s v='12 pears'/>\n<s/>\n<Array n='9'>1</Array>\n</m>\n</r>";
  const auto reader = [&text](auto read) {
    return complaint(text, [read](SDOMXMLWrapper& root) {
      SDOMXMLWrapper* m = nullptr;
      REQUIRE(root.GetFirstElement("m", &m, true));
      read(root, *m);
      return false;
    });
  };
  std::string value;
  SDOMXMLWrapper* element = nullptr;
  SDOMXMLIterator* iterator = nullptr;
  const auto second_s = [&](SDOMXMLWrapper& m) {
    REQUIRE(m.GetElementIterator("s", &iterator, true));
    REQUIRE(iterator->Next(&element));
    REQUIRE(iterator->Next(&element));
  };

  CHECK(reader([&](auto&, auto& m) { m.GetFirstElement("t/u", &element, true); }) ==
        "result.xml:2: element m lacks the element t/u");
  CHECK(reader([&](auto&, auto& m) {
          second_s(m);
          element->GetAttribute("v", value);
        }) == "result.xml:4: element s lacks the attribute v");
  CHECK(reader([&](auto&, auto& m) {
          REQUIRE(m.GetFirstElement("s", &element, true));
          element->GetAttribute("v", value);
        }) == "result.xml:3: element s cannot be read: its attribute v is \"12 pears\"");
  CHECK(reader([&](auto&, auto& m) {
          std::vector<std::string> items;
          REQUIRE(m.GetFirstElement("Array", &element, true));
          element->GetSimpleArray(items);
        }).starts_with("result.xml:5: element Array holds items that cannot be read"));
  CHECK(reader([](auto&, auto&) {}) ==
        "result.xml:2: element m holds something that cannot be read");
  SUBCASE("a list that is looked for after the failure does not hide it") {
    CHECK(reader([&](auto& root, auto& m) {
            second_s(m);
            element->GetAttribute("v", value);
            root.GetElementIterator("Message", &iterator, true);
          }) == "result.xml:4: element s lacks the attribute v");
  }
  SUBCASE("but one that is looked for after reading went on does") {
    CHECK(reader([&](auto& root, auto& m) {
            second_s(m);
            element->GetAttribute("v", value);
            iterator->Next(&element);
            root.GetElementIterator("Message", &iterator, true);
          }) == "result.xml:1: element r lacks the element Message");
  }
}

TEST_CASE("every element may have a name of its own") {
  std::string text = "<root>";
  for (int index = 0; index < 50000; ++index) {
    text += "<n" + std::to_string(index) + " value=\"" + std::to_string(index) + "\"/>";
  }
  xml::Tree tree;
  REQUIRE_FALSE(tree.parse(text + "</root>"));
  CHECK(tree.child(xml::Tree::kRoot, "n49999") != xml::kNoNode);
  CHECK(tree.attribute_text(tree.child(xml::Tree::kRoot, "n777"), "value") == "777");
}
