// The pivot library: what its calls make of a table, and what the journal says of them.
#include "host/pivot.h"

#include <doctest/doctest.h>
#include <functional>
#include <sstream>

#include "embedded/session.h"

using namespace hierfit;

namespace {

constexpr char kModel[] = R"(<PMML><DataDictionary>
  <DataField name="y" displayName="Yield" optype="continuous" dataType="double"/>
  <DataField name="g" optype="categorical" dataType="integer">
    <Value value="1" displayValue="one"/><Value value="2"/></DataField>
  <DataField name="s" optype="categorical" dataType="string"/>
 </DataDictionary><GeneralRegressionModel><MiningSchema>
  <MiningField name="y"/><MiningField name="g"/><MiningField name="s"/>
 </MiningSchema></GeneralRegressionModel></PMML>)";

/// A procedure that does what a test says.
class Script : public CFProcCustom {
 public:
  explicit Script(std::function<void(Script&)> steps) : steps_(std::move(steps)) {}
  bool IsReady() override { return true; }
  bool GenerateOutput(const std::vector<std::string>&,
                      const std::vector<StatXMLBlock>&,
                      const std::string&) override {
    steps_(*this);
    return true;
  }
  bool GenerateDocumentOutput(const std::string&, const StatXMLBlock&) override { return true; }

  const VELT_Variable* variable(int32_t index) { return fpDataSource->GetVariable(index); }
  BpPivotTable table() { return fpProcedure->PivotTable(text("T"), text("t"), true); }
  static BpString text(const char* words) { return BpString(words, false); }
  static BpNumber count(double value) { return BpNumber(value, BpProcedure::Count()); }
  static BpAnnotation note(const char* words) {
    return BpAnnotation(text(words).Replicate(), -1, false);
  }

 private:
  std::function<void(Script&)> steps_;
};

struct Outcome {
  output::Document document;
  std::string journal;

  const output::Table& table(size_t item = 0) const {
    return *std::get<std::unique_ptr<output::Table>>(document.content.items.at(item));
  }
};

Outcome run(std::function<void(Script&)> steps) {
  std::ostringstream journal;
  Session session({.pmml_name = "m.pmml",
                   .pmml = kModel,
                   .statxml_name = "r.xml",
                   .statxml = "<r/>",
                   .dictionary_name = {},
                   .dictionary = {}},
                  {.language = "C", .resource_directory = ".", .journal = &journal});
  Script script(std::move(steps));
  session.run(script);
  return {session.take_document(), journal.str()};
}

std::string label_at(const output::Table& table, size_t dimension, uint32_t leaf) {
  if (leaf == output::kNone) return "-";
  const output::Dimension& d = table.dimensions[dimension];
  return d.nodes[d.leaves[leaf]].label.shown;
}

/// A line a cell: its labels, its value.
std::string cells_of(const output::Table& table) {
  std::string lines;
  for (size_t cell = 0; cell < table.cells.size(); ++cell) {
    for (size_t d = 0; d < table.dimensions.size(); ++d) {
      lines += label_at(table, d, table.cells.at(cell)[d]) + " ";
    }
    const output::CellValue& value = table.cells.values[cell];
    const auto* number = std::get_if<output::Number>(&value);
    lines += number ? output::shown(*number, {}) : table.texts[std::get<uint32_t>(value)].shown;
    lines += '\n';
  }
  return lines;
}

}  // namespace

TEST_CASE("a text has the key that it was made from, for as long as its document") {
  const Outcome left = run([](Script& it) {
    BpDimension rows = it.table().Dimension(BpString("Statistics", true), 2);
    rows.Category(BpString("Sig.", true));
    rows.Category(BpString("Sig.", false));
    BpComposite title("^1% of all", true);
    title.Add(it.count(95));
    title.Finish();
    rows.Category(title);
  });
  const output::Dimension& rows = left.table().dimensions[0];
  CHECK(rows.title.key == "Statistics");
  CHECK(rows.nodes[0].label.key == "Sig.");
  CHECK(rows.nodes[1].label.key.empty());
  CHECK(rows.nodes[2].label.key == "^1% of all");
  CHECK(rows.nodes[2].label.shown == "95% of all");
}

TEST_CASE("a category asked for again is the same one only when all of its label is equal") {
  const Outcome outcome = run([](Script& s) {
    BpPivotTable table = s.table();
    BpDimension rows = table.Dimension(s.text("R"), 2);
    rows.Category(s.text("a"));
    rows.Category(BpString("a", true));
    rows.Group(s.text("a"), true, 2).Category(s.text("a"));
    rows.Group(s.text("a"), true, 2).Category(s.text("a"));
    rows.Category(s.count(1));
    rows.Category(BpNumber(1, BpProcedure::GeneralStat()));
    rows.Category(s.text("a"));
    rows.Category(BpDataValue(s.variable(1), 1.0, 2));
    rows.Category(BpDataValue(s.variable(1), 1.0, 2));
  });
  const output::Dimension& rows = outcome.table().dimensions[0];
  CHECK(rows.leaves.size() == 6);
  CHECK(rows.nodes.size() == 7);
  CHECK(rows.nodes[3].parent == 2);
  CHECK(rows.nodes[6].label.shown == "one");
}

TEST_CASE("a label knows which of its arguments belong to a pattern within it") {
  const auto pattern = [](const char* words, std::initializer_list<BpCellText> arguments) {
    BpComposite composite(words, false);
    for (const BpCellText& argument : arguments)
      composite.Add(argument);
    composite.Finish();
    return composite;
  };
  const Outcome outcome = run([&](Script& s) {
    BpPivotTable table = s.table();
    BpDimension rows = table.Dimension(s.text("R"), 2);
    rows.Category(pattern("^1 ^2", {pattern("(^1 ^2)", {s.text("a")}), s.text("b")}));
    rows.Category(pattern("^1 ^2", {pattern("(^1 ^2)", {s.text("a"), s.text("b")})}));
  });
  CHECK(outcome.table().dimensions[0].leaves.size() == 2);
}

TEST_CASE("a cell crosses what was last asked for, whichever dimension came first") {
  const Outcome outcome = run([](Script& s) {
    BpPivotTable table = s.table();
    BpDimension rows = table.Dimension(s.text("R"), 2);
    rows.Category(s.text("a")).Cell(s.count(1));
    BpDimension columns = table.Dimension(s.text("C"), 2);
    columns.Position(1, 1, true, false);
    BpCategory x = columns.Category(s.text("x"));
    rows.Category(s.text("b"));
    x.Cell(s.count(2));
    columns.Category(s.text("y"));
    rows.Category(s.text("a")).Cell(BpVariable(s.variable(0), 1));
    x.Cell(s.count(4));
    x.Cell(s.count(5));
  });
  CHECK(cells_of(outcome.table()) == "a - 1\nb x 2\na y Yield\na x 5\n");
}

TEST_CASE("rows of one label both stay, and the report says so") {
  const Outcome outcome = run([](Script& s) {
    BpPivotTable table = s.table();
    BpDimension rows = table.Dimension(s.text("R"), 2);
    BpDimension columns = table.Dimension(s.text("C"), 2);
    columns.Position(1, 1, true, false);
    const auto write = [&](const char* row, double x, double y) {
      BpCategory handle = rows.Category(s.text(row));
      columns.Category(s.text("x")).Cell(s.count(x));
      columns.Category(s.text("y")).Cell(s.count(y));
      handle.Note(s.note("n"));
    };
    write("a", 1, 2);
    write("b", 1, 2);
    write("a", 1, 3);  // the first value is the same, and yet it is another row
    write("a", 4, 3);
    write("b", 1, 2);  // says the same again
  });
  CHECK(cells_of(outcome.table()) ==
        "a x 1\na y 2\nb x 1\nb y 2\na (2) x 1\na (2) y 3\na (3) x 4\na (3) y 3\n");
  CHECK(outcome.table().dimensions[0].nodes.back().notes.size() == 1);
  REQUIRE(outcome.document.about.messages.size() == 1);
  CHECK(outcome.document.about.messages[0].code == "sameLabels");
  // What the module called has no part in it.
  CHECK(outcome.journal.find("(2)") == std::string::npos);
}

TEST_CASE("a dimension without a place takes the innermost free level of the rows") {
  const Outcome outcome = run([](Script& s) {
    BpPivotTable table = s.table();
    table.Dimension(s.text("outer"), 2).Position(0, 3, false, false);
    table.Dimension(s.text("lost"), 2);
    table.Dimension(s.text("inner"), 2).Position(0, 1, false, true);
    table.Dimension(s.text("same"), 2).Position(0, 3, false, false);
    table.Dimension(s.text("column"), 2).Position(1, 2, true, false);
  });
  std::string places;
  for (const output::Dimension& d : outcome.table().dimensions) {
    places += d.title.shown + (d.place == output::Place::Rows ? " row " : " column ") +
              std::to_string(d.level) + (d.title_shown ? "" : " untitled") +
              (d.labels_shown ? "\n" : " unlabelled\n");
  }
  CHECK(places ==
        "outer row 3\nlost row 2\ninner row 1 unlabelled\nsame row 4\ncolumn column 2 untitled\n");
}

TEST_CASE("one note text is one note, and a note on a cell that is not there stands on its row") {
  const Outcome outcome = run([](Script& s) {
    BpPivotTable table = s.table();
    table.Note(s.note("whole"));
    BpDimension rows = table.Dimension(s.text("R"), 2);
    BpDimension columns = table.Dimension(s.text("C"), 2);
    columns.Position(1, 1, true, false);
    BpCategory a = rows.Category(s.text("a"));
    a.CellNote(s.note("early"));
    BpCategory x = columns.Category(s.text("x"));
    x.CellNote(s.note("whole"));
    x.Cell(s.count(1));
    x.CellNote(s.note("late"));
    x.CellNote(s.note("late"));
    x.Note(s.note("late"));
  });
  const output::Table& table = outcome.table();
  REQUIRE(table.notes.size() == 3);
  CHECK(table.table_notes == std::vector<uint32_t>{0});
  CHECK(table.dimensions[0].nodes[0].notes == std::vector<uint32_t>{1, 0});
  CHECK(table.dimensions[1].nodes[0].notes == std::vector<uint32_t>{2});
  CHECK(table.cells.notes.at(0) == std::vector<uint32_t>{2});
}

TEST_CASE("a value that does not fit its variable is missing, and one with a label is a text") {
  const Outcome outcome = run([](Script& s) {
    BpPivotTable table = s.table();
    BpDimension rows = table.Dimension(s.text("R"), 2);
    const OBS number{2, false, {}};
    const OBS words{output::kSystemMissing, true, "red "};
    const auto cell = [&](const char* label, const BpCellText& value) {
      rows.Category(s.text(label)).Cell(value);
    };
    cell("labelled", BpDataValue(s.variable(1), 1.0, 2));
    cell("alone", BpDataValue(s.variable(1), 1.0, 0));
    cell("unlabelled", BpDataValue(s.variable(1), &number, 2));
    cell("words", BpDataValue(s.variable(2), &words, 2));
    cell("wrong kind", BpDataValue(s.variable(1), &words, 2));
    cell("number under words", BpDataValue(s.variable(2), &number, 2));
    cell("null", BpDataValue(s.variable(0), static_cast<const OBS*>(nullptr), 2));
    cell("no variable", BpVariable(nullptr, 1));
  });
  CHECK(cells_of(outcome.table()) ==
        "labelled one\nalone 1\nunlabelled 2\nwords red\nwrong kind .\nnumber under words .\n"
        "null .\nno variable \n");
}

TEST_CASE("a message stands under the heading that is open") {
  const Outcome outcome = run([](Script& s) {
    const auto report = [&](const char* words, int32_t level) {
      BpError(s.text(words), BpErrorShow{2}, BpErrorLevel{level});
    };
    {
      BpHeading heading = s.fpProcedure->Heading(s.text("H"));
      BpPivotTable table = s.table();
      report("inside", 2);
    }
    report("outside", 3);
  });
  const auto& items = outcome.document.content.items;
  REQUIRE(items.size() == 3);
  const auto& section = *std::get<std::unique_ptr<output::Section>>(items[0]);
  REQUIRE(section.items.size() == 1);
  const auto& inside = *std::get<std::unique_ptr<output::Message>>(section.items[0]);
  const auto& outside = *std::get<std::unique_ptr<output::Message>>(items[2]);
  CHECK(inside.severity == output::Severity::Warning);
  CHECK(outside.text.shown == "outside");
  CHECK(outside.severity == output::Severity::Error);
}

TEST_CASE("the journal tells every call, its texts whole, and when handles go") {
  const Outcome outcome = run([](Script& s) {
    BpHeading heading = s.fpProcedure->Heading(BpString("H\n\"1\"", true));
    {
      BpPivotTable table =
          heading.PivotTable(BpString("Model Summary", true), s.text("ModelSummary"), false);
      table.MinDataColumnWidth(150);
      BpDimension rows = table.Dimension(BpString("Content", true), 2);
      rows.Position(0, 1, true, false);
      BpCategory category = rows.Group(s.text("G"), true, 2).Category(BpString("Target", true));
      category.Cell(BpVariable(s.variable(0), 2));
      category.CellNote(s.note("n"));
      rows.Category(BpString("Target", true)).Cell(BpNumber(0.1, BpProcedure::SigDigit(0.1)));
      BpComposite caption("^1 [%1:^1:]2", true);
      caption.Add(BpDataValue(s.variable(0), -1.7976931348623157e+308, 2));
      caption.Sublist();
      caption.Add(BpDataValue(s.variable(2), static_cast<const OBS*>(nullptr), 0));
      caption.EndSublist();
      caption.Finish();
      table.Caption(caption);
    }
  });
  CHECK(
      outcome.journal ==
      R"({"call":"BpHeading::Heading","on":"BpProcedure","args":[{"string":"H\n\"1\"","key":true}],"result":"BpHeading#1"}
{"call":"BpHeading::PivotTable","on":"BpHeading#1","args":[{"string":"Model Summary","key":true},{"string":"ModelSummary","key":false},false],"result":"BpPivotTable#1"}
{"call":"BpPivotTable::MinDataColumnWidth","on":"BpPivotTable#1","args":[150]}
{"call":"BpPivotTable::Dimension","on":"BpPivotTable#1","args":[{"string":"Content","key":true},2],"result":"BpDimension#1"}
{"call":"BpDimension::Position","on":"BpDimension#1","args":[0,1,true,false]}
{"call":"BpGroup::Group","on":"BpDimension#1","args":[{"string":"G","key":false},true,2],"result":"BpGroup#1"}
{"call":"BpGroup::Category","on":"BpGroup#1","args":[{"string":"Target","key":true}],"result":"BpCategory#1"}
{"call":"BpCategory::Cell","on":"BpCategory#1","args":[{"variable":"y","show":2}]}
{"call":"BpCategory::CellNote","on":"BpCategory#1","args":[{"note":{"string":"n","key":false},"index":-1,"flag":false}]}
{"call":"BpGroup::Category","on":"BpDimension#1","args":[{"string":"Target","key":true}],"result":"BpCategory#2"}
{"call":"BpCategory::Cell","on":"BpCategory#2","args":[{"number":0.1,"format":"SigDigit","of":0.1}]}
{"call":"BpPivotTable::Caption","on":"BpPivotTable#1","args":[{"composite":"^1 [%1:^1:]2","key":true,"args":[{"value":-1.7976931348623157e+308,"of":"y","preference":2},{"list":[{"value":null,"of":"s","preference":0}]}]}]}
{"call":"release","on":"BpPivotTable#1"}
{"call":"release","on":"BpHeading#1"}
)");
}
