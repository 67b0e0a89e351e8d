#include "tests/robustness/hostile_documents.h"

#include <doctest/doctest.h>

namespace hierfit::test {

namespace {

std::string repeated(const std::string& piece, int times) {
  std::string text;
  text.reserve(piece.size() * static_cast<std::size_t>(times));
  for (int i = 0; i < times; ++i)
    text += piece;
  return text;
}

DocumentFiles changed(const std::string& name, const std::string& from, const std::string& to) {
  DocumentFiles files = document_files(name);
  const std::size_t position = files.result.find(from);
  REQUIRE_MESSAGE(position != std::string::npos, "the result lacks ", from);
  files.result.replace(position, from.size(), to);
  return files;
}

DocumentFiles with_result(const std::string& result) {
  DocumentFiles files = document_files("events");
  files.result = result;
  return files;
}

DocumentFiles with_model(const std::string& model) {
  DocumentFiles files = document_files("events");
  files.model = model;
  return files;
}

std::string column(const std::string& statistic, int length) {
  return "<Coordinates statistic=\"" + statistic + "\"><Array>" + repeated("1 ", length) +
         "</Array></Coordinates>";
}

std::string factor(const std::string& field, const std::string& items) {
  return "<Coordinates field=\"" + field + "\"><Array>" + items + "</Array></Coordinates>";
}

/// A model of string fields of those names.
std::string string_fields(const std::vector<std::string>& names) {
  std::string fields =
      "<PMML><DataDictionary><DataField name=\"y\" optype=\"continuous\" "
      "dataType=\"double\"/>";
  std::string schema = "<MiningField name=\"y\"/>";
  for (const std::string& name : names) {
    fields += "<DataField name=\"" + name + "\" optype=\"categorical\" dataType=\"string\"/>";
    schema += "<MiningField name=\"" + name + "\"/>";
  }
  return fields + "</DataDictionary><GeneralRegressionModel><MiningSchema>" + schema +
         "</MiningSchema></GeneralRegressionModel></PMML>";
}

/// A result with one block of means over the fields.
std::string means_result(const std::vector<std::string>& names, const std::string& tables) {
  std::string fields;
  for (const std::string& name : names)
    fields += "<Value value=\"" + name + "\"/>";
  return R"(<StatXML><BuildSettings><Parameter name="TargetField" value="y"/>
<Parameter name="EMMEANS"><ListValue><StructuredValue><Attribute name="Factors"><StructuredValue>
<Attribute name="Fields"><ListValue>)" +
         fields + R"(</ListValue></Attribute></StructuredValue></Attribute>
<Attribute name="CompareFactor" value=")" +
         names.front() + R"("/></StructuredValue></ListValue></Parameter></BuildSettings>
<PMMLModel><PredictiveSummary algorithmName="GLMM"/><StringMap mapId="0"><MapEntry name="e0">
<Label><RegressionParameter isIntercept="true" name="e0"/></Label></MapEntry></StringMap>
<ModelDiagnostics><Statistic name="AICC" value="1"/><DataGroup description="customEmmeans">
<Statistic name="EMMEANSIndex" value="0"/>)" +
         tables + R"(</DataGroup></ModelDiagnostics><TrainingSummary><Message>
<PrintableList pattern="none"/></Message></TrainingSummary></PMMLModel></StatXML>)";
}

/// All pairs of 500 levels: 124,750 contrasts.
DocumentFiles pairwise_of_500() {
  constexpr int kLevels = 500;
  std::string first;
  std::string second;
  for (int i = 0; i < kLevels; ++i) {
    for (int j = i + 1; j < kLevels; ++j) {
      first += "l" + std::to_string(i) + ' ';
      second += "l" + std::to_string(j) + ' ';
    }
  }
  constexpr int kPairs = kLevels * (kLevels - 1) / 2;
  std::string table = R"(<MultivariateData description="contrasts">
<CoordinatesGroup description="pairwiseContrast">)" +
                      factor("a", first) + factor("a", second) + "</CoordinatesGroup>";
  for (const char* statistic : {"contrastEstimate", "stdErr", "tTest", "df", "adjustedSig",
                                "confIntervalLower", "confIntervalUpper"}) {
    table += column(statistic, kPairs);
  }
  return {string_fields({"a"}), means_result({"a"}, table + "</MultivariateData>"), {}};
}

/// A thousand rows of ten factors, each with a level of its own in every row.
DocumentFiles ten_factors() {
  constexpr int kRows = 1000;
  std::string levels;
  for (int i = 0; i < kRows; ++i)
    levels += "l" + std::to_string(i) + ' ';
  std::vector<std::string> names;
  std::string table = R"(<MultivariateData description="estimates"><CoordinatesGroup>)";
  for (char name = 'a'; name <= 'j'; ++name) {
    names.emplace_back(1, name);
    table += factor(names.back(), levels);
  }
  table += "</CoordinatesGroup>";
  for (const char* statistic : {"mean", "stdErr", "confIntervalLower", "confIntervalUpper"})
    table += column(statistic, kRows);
  return {string_fields(names), means_result(names, table + "</MultivariateData>"), {}};
}

std::string table_of_means(const std::string& factors, int rows) {
  std::string table = R"(<MultivariateData description="estimates"><CoordinatesGroup>)" + factors +
                      "</CoordinatesGroup>";
  for (const char* statistic : {"mean", "stdErr", "confIntervalLower", "confIntervalUpper"})
    table += column(statistic, rows);
  return table + "</MultivariateData>";
}

/// A matrix of `size` numbers that stands for a table of all its cells.
DocumentFiles diagonal(int size) {
  std::string result = means_result({"a"}, table_of_means(factor("a", "x y"), 2));
  std::string labels;
  for (int i = 0; i < size; ++i)
    labels += "<Label><PrintableList pattern=\"r" + std::to_string(i) + "\"/></Label>";
  const std::string matrix =
      R"(<StructuredData description="randomEffectCovariances"><Statistic name="b" value="0"/>
<MatrixLabels><RowColLabels>)" +
      labels + R"(</RowColLabels></MatrixLabels><SegmentData><SegmentInfo/><Matrix kind="diagonal"
nbRows=")" +
      std::to_string(size) + "\"><Array>" + repeated("1 ", size) +
      "</Array></Matrix></SegmentData></StructuredData>";
  constexpr char kBlock[] =
      R"(<Parameter name="RandomSpecs"><ListValue><StructuredValue><Attribute name="Intercept"
value="true"/></StructuredValue></ListValue></Parameter>)";
  result.insert(result.find("<DataGroup"), matrix);
  result.insert(result.find("</BuildSettings>"), kBlock);
  return {string_fields({"a"}), result, {}};
}

/// Gives the first string field of a model values.
void add_values(std::string& model, const std::string& values) {
  constexpr std::string_view kEnd = "dataType=\"string\"/>";
  const std::size_t place = model.find(kEnd);
  REQUIRE(place != std::string::npos);
  model.replace(place, kEnd.size(), "dataType=\"string\">" + values + "</DataField>");
}

/// A label that stands in each of many rows.
DocumentFiles label_in_rows(int bytes, int rows) {
  std::string names;
  for (int i = 0; i < rows; ++i)
    names += "r" + std::to_string(i) + ' ';
  DocumentFiles files = {
      string_fields({"a", "b"}),
      means_result({"a", "b"},
                   table_of_means(factor("a", repeated("x ", rows)) + factor("b", names), rows)),
      {}};
  add_values(files.model,
             R"(<Value value="x" displayValue=")" + repeated("long ", bytes / 5) + "\"/>");
  return files;
}

/// Labels of values that all charts could show.
DocumentFiles labels_of_charts(int labels, int charts) {
  std::string values;
  for (int i = 0; i < labels; ++i) {
    const std::string number = std::to_string(i);
    values += "<Value value=\"l" + number + "\" displayValue=\"label " + number + "\"/>";
  }
  DocumentFiles files = {
      string_fields({"a"}), means_result({"a"}, table_of_means(factor("a", "l1 l2"), 2)), {}};
  add_values(files.model, values);
  const size_t begin = files.result.find("<DataGroup");
  const size_t end = files.result.find("</ModelDiagnostics>");
  files.result.insert(end, repeated(files.result.substr(begin, end - begin), charts - 1));
  return files;
}

constexpr char kEntities[] = R"(<!DOCTYPE x [<!ENTITY a "aaaaaaaaaa"><!ENTITY b "&a;&a;&a;&a;">]>)";

void add_broken_texts(std::vector<HostileCase>& cases) {
  const DocumentFiles whole = document_files("events");
  cases.push_back({"an empty result", with_result("")});
  cases.push_back({"an empty model", with_model("")});
  cases.push_back({"no XML", with_result(std::string("\0\xff\x01 GLMM", 9))});
  cases.push_back(
      {"half a document", with_result(whole.result.substr(0, whole.result.size() / 2))});
  cases.push_back({"half a character", with_result(whole.result + "<!-- \xe2\x82 -->")});
  cases.push_back({"two roots", with_result(whole.result + "<StatXML/>")});
  cases.push_back({"a model for a result", with_result(whole.model)});
  cases.push_back({"a result for a model", with_model(whole.result)});
  for (const int depth : {600, 100'000}) {
    cases.push_back({"deep nesting", with_result("<StatXML>" + repeated("<a>", depth) +
                                                 repeated("</a>", depth) + "</StatXML>")});
    cases.push_back({"a deep model", with_model("<PMML>" + repeated("<a>", depth) +
                                                repeated("</a>", depth) + "</PMML>")});
  }
  cases.push_back({"entities", with_result(kEntities + std::string("<StatXML>&b;</StatXML>"))});
  cases.push_back({"entities in a model", with_model(kEntities + std::string("<PMML>&b;</PMML>"))});
}

void add_sizes(std::vector<HostileCase>& cases) {
  for (const char* rows : {"2147483647", "-2147483648", "65536", "99999999999999999999"}) {
    cases.push_back({std::string("rows of a matrix: ") + rows,
                     changed("events", R"(nbRows="2")", "nbRows=\"" + std::string(rows) + '"')});
  }
  // The estimates fail, a message says so, and the run goes on without them.
  cases.push_back(
      {"a block beyond all", changed("events", R"(block="0")", R"(block="2147483647")"), true});
  cases.push_back(
      {"the highest block", changed("events", R"(block="0")", R"(block="9999")"), true});
  // It is a term of a map that is not the last.
  cases.push_back({"a power of a thousand millions",
                   changed("nominal", R"(field="dose" power="1"/></RegressionParameter><Statistic)",
                           R"(field="dose" power="1000000000"/></RegressionParameter><Statistic)"),
                   true});
  cases.push_back({"a pattern that explodes",
                   changed("events", R"(pattern="Variance " isKey="true">)",
                           "pattern=\"" + repeated("^1", 20'000) +
                               "\" isKey=\"true\"><PrintableList pattern=\"" +
                               repeated("^1[", 20'000) + "\"/>"),
                   true});
  cases.push_back({"all pairs of 500 levels", pairwise_of_500(), true});
  cases.push_back({"ten factors of a thousand levels", ten_factors(), true});
  cases.push_back({"many messages and many groups",
                   changed("events", "<Message>",
                           repeated(R"(<Message><PrintableList pattern="m"/></Message>)", 20'000) +
                               "<Message>"),
                   true});
}

void add_values(std::vector<HostileCase>& cases) {
  const std::string label = kHostileLabel;
  cases.push_back({"a hostile term", changed("events", "\"site=1\"", '"' + label + '"'), true});
  cases.push_back({"a hostile pattern",
                   changed("events", R"(pattern="Variance ")", "pattern=\"" + label + '"'), true});
  DocumentFiles names = document_files("events");
  for (const char* name : {"Hits on target", "Site", "North", "Person"}) {
    names.model.replace(names.model.find(name), std::string(name).size(), label);
  }
  cases.push_back({"hostile labels of variables and values", names, true});
  for (const char* number : {"1e400", "-1e400", "nan", "0x10", "1e-400", "1,5", "-0", "1e308"}) {
    DocumentFiles files = document_files("nominal");
    for (std::size_t at = 0; (at = files.result.find("=\"0.5\"", at)) != std::string::npos;)
      files.result.replace(at, 6, "=\"" + std::string(number) + '"');
    cases.push_back({std::string("a number: ") + number, files, true});
  }
  cases.push_back({"a value that is no level",
                   changed("events", "<Array>1 3</Array>", "<Array>1 x</Array>"), true});
}

}  // namespace

const char kHostileLabel[] =
    "&lt;img src=x onerror=alert(1)&gt;&lt;/td&gt;&lt;/table&gt;&amp;amp; ^1^2 [%1:^1:]1 [ %1 "
    "\\n&#10;&#9;&quot;&apos; ]]&gt; --&gt; \u202e\u0627\u0644\u0639\u0631\u0628\u064a\u0629\u2066 "
    "&#xFFFD; e\u0301\u0301 =cmd|' /C calc'!A0";

std::vector<HostileCase> hostile_cases() {
  std::vector<HostileCase> cases;
  add_broken_texts(cases);
  add_sizes(cases);
  add_values(cases);
  return cases;
}

std::vector<DocumentFiles> documents_that_stand_for_much() {
  return {diagonal(1500), label_in_rows(30'000, 3000), labels_of_charts(3000, 300)};
}

std::vector<DocumentFiles> altered_documents() {
  constexpr const char* kValues[] = {"", "-1", "2147483647", "1e400", "__MISSING__", "^1[%1:"};
  constexpr std::size_t kStep = 11;
  std::vector<DocumentFiles> documents;
  std::size_t count = 0;
  for (const char* name : {"nominal", "ordinal", "events", "grouped", "intercept_only"}) {
    const DocumentFiles whole = document_files(name);
    for (std::size_t at = 0; (at = whole.result.find("=\"", at)) != std::string::npos;) {
      at += 2;
      if (++count % kStep != 0) continue;
      DocumentFiles& altered = documents.emplace_back(whole);
      altered.result.replace(at, whole.result.find('"', at) - at,
                             kValues[count / kStep % std::size(kValues)]);
    }
  }
  return documents;
}

}  // namespace hierfit::test
