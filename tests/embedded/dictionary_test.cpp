// The dictionary: what the model document says, what it is refused for, and the overlay.
#include <doctest/doctest.h>
#include <sstream>

#include "host/pmml.h"

#include "embedded/session_state.h"
#include "tests/embedded/sample_inputs.h"

using namespace hierfit;

namespace {

/// "name 'label' level width/type/decimals value=label ..." of one variable.
std::string described(VELT_Variable* variable, std::initializer_list<const char*> values = {}) {
  REQUIRE(variable != nullptr);
  const VELT_Format format = variable->GetFormat();
  std::ostringstream text;
  text << variable->GetName() << " '" << (variable->GetLabel() ? variable->GetLabel() : "-") << "' "
       << variable->GetMeasurementLevel() << ' ' << format.width << '/' << int{format.type} << '/'
       << int{format.decimals};
  const VELT_ValueLabelMap labels(variable->GetValueLabels());
  for (const char* value : values) {
    const char* label = labels.GetLabel(std::string(value));
    if (label == nullptr) label = labels.GetLabel(String2Double(value));
    text << ' ' << value << '=' << (label == nullptr ? "-" : label);
  }
  return text.str();
}

const std::string kModel = test::pmml(
    R"(<DataField name="dose" displayName="Dose given" optype="ordinal" dataType="integer">
         <Value value="1" displayValue="low"/><Value value="2"/>
         <Value value="2" displayValue="high"/><Value value="9" property="missing"/>
         <Value value="8" property=""/>
       </DataField>
       <DataField name="site" displayName="" optype="categorical" dataType="string">
         <Value value="a much longer value" property="valid" displayValue="A"/>
       </DataField>
       <DataField name="weight" optype="continuous" dataType="double"/>
       <DataField name="day" optype="ordered" dataType="date"/>)",
    R"(<MiningField name="weight"/><MiningField name="dose" optype="categorical"/>
       <MiningField name="day"/>)");

/// Runs `use` with the dictionary of a model document and an overlay.
template <class Use>
void with_dictionary(const std::string& overlay, Use use) {
  SessionInput input = test::session_input("<StatXML/>", kModel);
  if (!overlay.empty()) input.dictionary = overlay;
  Session session(std::move(input), test::plain_options());
  use(session.state().inputs.dictionary);
}

template <class Make>
std::string complaint(Make make) {
  try {
    make();
  } catch (const Error& error) {
    const bool of_document = dynamic_cast<const DocumentError*>(&error) != nullptr;
    return (of_document ? "1 " : "2 ") + error.where().text() + ": " + error.what();
  }
  return "taken";
}

std::string refusal_of_model(const std::string& text) {
  return complaint([&] { Session(test::session_input("<s/>", text), test::plain_options()); });
}

}  // namespace

TEST_CASE("the dictionary takes its variables from the model document") {
  with_dictionary("", [](DataDictionary& dictionary) {
    CHECK(dictionary.FieldCount() == 4);
    CHECK(described(dictionary.GetVariable(0), {"1", "2", "9"}) ==
          "dose 'Dose given' 1 8/5/0 1=low 2=high 9=-");
    CHECK(described(dictionary.GetVariable(1), {"a much longer value"}) ==
          "site '-' 1 19/1/0 a much longer value=A");
    CHECK(described(dictionary.GetVariable(2)) == "weight '-' 3 8/5/2");
    CHECK(described(dictionary.GetVariable(3)) == "day '-' 0 8/1/0");
    CHECK(dictionary.FindVarIndex("weight", 0) == 2);
    CHECK(dictionary.GetField(0)->GetType() == 1);
    CHECK(dictionary.FindVarIndex("Weight", 0) < 0);
    for (const int32_t outside : {-1, 4}) {
      CHECK(dictionary.GetVariable(outside) == nullptr);
      CHECK(dictionary.GetField(outside) == nullptr);
    }
  });
}

TEST_CASE("the metadata library gives the model's variables in document order") {
  MCPMMLParser parser;
  std::istringstream text(kModel);
  REQUIRE_FALSE(parser.ParseToDOM(text).IsError());
  MCVarList list;
  REQUIRE_FALSE(parser.FillVarList(&list, {}, false).IsError());
  std::string seen;
  for (int32_t position = 0; position < list.Size(); ++position) {
    const IMCVariable& variable = *list.GetVarAt(position);
    std::string name;
    variable.FieldName(name);
    seen += name + " " + std::to_string(variable.MeasureCode()) + " " +
            std::to_string(variable.LevelCount()) + "; ";
  }
  CHECK(seen == "weight 1 0; dose 2 3; day 0 0; ");
  CHECK(list.GetVarAt(-1) == nullptr);
  CHECK(list.GetVarAt(3) == nullptr);
}

TEST_CASE("a model document is refused with what it lacks") {
  struct Row {
    std::string text;
    const char* complaint;
  };
  const Row rows[] = {
      {"", "1 model.pmml:1:1: the document is empty"},
      {"<PMML>\n<Header></PMML>",
       "1 model.pmml:2:11: not well-formed: this end tag does not match its start tag"},
      {"<PMML><Header/><DataDictionary/><Extension/></PMML>",
       "1 model.pmml:1: the document has no model: its root element PMML holds none"},
      {"<PMML>\n<TreeModel/></PMML>",
       "1 model.pmml:2: the model, element TreeModel, lacks the element MiningSchema"},
      {test::pmml("<DataField name='y'/>", "\n<MiningField name='z'/>"),
       "1 model.pmml:2: the MiningField \"z\" is no DataField of the document"},
      {test::pmml("", "<MiningField/>"),
       "1 model.pmml:1: the MiningField \"\" is no DataField of the document"},
      {test::pmml("", ""), "taken"},
  };
  for (const Row& row : rows) {
    CAPTURE(row.text);
    CHECK(refusal_of_model(row.text) == row.complaint);
    MCPMMLParser parser;
    std::istringstream text(row.text);
    CHECK(parser.ParseToDOM(text).IsError() == (row.complaint != std::string("taken")));
  }
}

TEST_CASE("an overlay changes what it states and adds what is new") {
  with_dictionary(
      R"({"fields": [
      {"name": "dose", "title": "Dose", "categories": [{"value": 2, "label": "two"}, 3],
       "categoriesOrdered": true},
      {"name": "site", "type": "integer", "printFormat": {"width": 4}},
      {"name": "weight", "measurementLevel": "nominal", "categories": ["1.50"],
       "printFormat": {"decimals": 4}},
      {"name": "extra", "type": "number", "other": {"is": "passed over"}},
      {"name": "extra", "title": "Further"}, {"name": "bare"}]})",
      [](DataDictionary& dictionary) {
        const auto named = [&](const char* name) {
          return dictionary.GetVariable(dictionary.FindVarIndex(name, 0));
        };
        CHECK(described(named("dose"), {"1", "2", "3"}) == "dose 'Dose' 2 8/5/0 1=- 2=two 3=-");
        CHECK(described(named("site"), {"a much longer value"}) ==
              "site '-' 1 4/5/0 a much longer value=-");
        CHECK(described(named("weight")) == "weight '-' 1 8/5/4");
        CHECK(described(named("extra")) == "extra 'Further' 0 8/5/2");
        CHECK(described(named("bare")) == "bare '-' 0 8/1/0");
        CHECK(dictionary.FindVarIndex("extra", 0) == 4);
        CHECK(dictionary.FieldCount() == 6);
      });
}

TEST_CASE("a Data Package gives the schema of its first resource that has one") {
  with_dictionary(R"({"resources": [{"name": "no schema"},
                     {"schema": {"fields": [{"name": "day", "title": "first"}]}},
                     {"schema": {"fields": [{"name": "day", "title": "second"}]}}]})",
                  [](DataDictionary& dictionary) {
                    CHECK(described(dictionary.GetVariable(3)) == "day 'first' 0 8/1/0");
                  });
}

TEST_CASE("an overlay that is wrong is refused with the place") {
  struct Row {
    const char* text;
    const char* complaint;
  };
  const Row rows[] = {
      {" ", "2 fields.json:1:2: not well-formed JSON"},
      {"{\n  \"fields\": [,]\n}", "2 fields.json:2:14: not well-formed JSON"},
      {"{\"fields\": [\"\xFF\"]}", "2 fields.json:1:14: not well-formed JSON"},
      {"[1]", "2 fields.json: must be an object"},
      {"{}", "2 fields.json: is neither a Table Schema (fields) nor a Data Package (resources)"},
      {R"({"fields": {}})", "2 fields.json: fields: must be a list"},
      {R"({"resources": [{}]})", "2 fields.json: resources: none of them has a schema"},
      {R"({"resources": [{"schema": "a.json"}]})",
       "2 fields.json: resources[0].schema: must be an object"},
      {R"({"fields": [3]})", "2 fields.json: fields[0]: must be an object"},
      {R"({"fields": [{"title": "x"}]})", "2 fields.json: fields[0]: lacks the member name"},
      {R"({"fields": [{"name": "a"}, {"name": 1}]})",
       "2 fields.json: fields[1].name: must be a string"},
      {R"({"fields": [{"name": "a", "title": null}]})",
       "2 fields.json: fields[0].title: must be a string"},
      {R"({"fields": [{"name": "a", "type": []}]})",
       "2 fields.json: fields[0].type: must be a string"},
      {R"({"fields": [{"name": "a", "measurementLevel": "ratio"}]})",
       "2 fields.json: fields[0].measurementLevel: must be \"nominal\", \"ordinal\" or \"scale\""},
      {R"({"fields": [{"name": "a", "printFormat": {"decimals": -1}}]})",
       "2 fields.json: fields[0].printFormat.decimals: must be a whole number from 0 to 255"},
      {R"({"fields": [{"name": "a", "categories": [{"label": "x"}]}]})",
       "2 fields.json: fields[0].categories[0]: lacks the member value"},
      {R"({"fields": [{"name": "dose", "categories": [1, "low"]}]})",
       "2 fields.json: fields[0].categories[1]: must be a number, as the variable dose is numeric"},
      {R"({"fields": [{"name": "a", "categories": [], "categoriesOrdered": "yes"}]})",
       "2 fields.json: fields[0].categoriesOrdered: must be true or false"},
      {R"({"fields": [{"name": "a", "printFormat": {"width": 1e999}}]})",
       "2 fields.json: holds a number that is out of range"},
  };
  for (const Row& row : rows) {
    CAPTURE(row.text);
    CHECK(complaint([&] { with_dictionary(row.text, [](auto&) {}); }) == row.complaint);
  }
  const std::string deep = std::string(200000, '[') + std::string(200000, ']');
  CHECK(complaint([&] { with_dictionary(deep, [](auto&) {}); }) ==
        "2 fields.json: must be an object");
}
