// The labels of fields in place of their names.
#include <doctest/doctest.h>
#include <sstream>

#include "backend/hierfit/frame/HFITProcCustom.h"
#include "embedded/labels/labelled.h"
#include "embedded/session.h"
#include "tests/backend/table_run.h"

using namespace hierfit;

namespace {

/// Fields with and without labels, of strings and of numbers, one name within another.
DataDictionary fields() {
  DataDictionary dictionary;
  const auto add = [&](const char* name, const char* label, VELT_Format format) -> Variable& {
    Variable& variable = dictionary.add(name);
    variable.set_label(label);
    variable.set_format(format);
    return variable;
  };
  Variable& sex = add("sex", "Sex (at birth)", {8, kStringFormatType, 0});
  sex.set_value_label("f", "Female");
  sex.set_value_label("m*", "Male * other");
  add("site", "Site", {8, 5, 0}).set_value_label("1", "North");
  add("x", "", {8, 5, 2});
  add("x y", "Both", {8, 5, 2});
  add("log(x)", "Logarithm", {8, 5, 2});
  return dictionary;
}

output::Document report(Naming naming) {
  const test::DocumentFiles files = test::example_files("salamanders");
  Session session({.pmml_name = "model",
                   .pmml = files.model,
                   .statxml_name = "result",
                   .statxml = files.result,
                   .dictionary_name = "dictionary",
                   .dictionary = files.dictionary},
                  {.language = "en",
                   .resource_directory = HIERFIT_BINARY_DIR "/share/hierfit",
                   .naming = naming});
  HFITProcCustom procedure;
  session.run(procedure);
  return session.take_document();
}

/// How often names, and how often labels, stand in the texts of a section that hold an effect.
struct Count {
  int names = 0;
  int labels = 0;

  void add(std::string_view text) {
    const bool has_name = text.find("spp") != text.npos || text.find("mined*") != text.npos ||
                          text.find("=DES-L") != text.npos;
    const bool has_label = text.find("Species") != text.npos;
    names += has_name ? 1 : 0;
    labels += has_label ? 1 : 0;
  }
  void add(const output::Section& section) {
    for (const output::Item& item : section.items) {
      if (const auto* inner = std::get_if<std::unique_ptr<output::Section>>(&item)) {
        add((*inner)->title.shown);
        add(**inner);
      } else if (const auto* table = std::get_if<std::unique_ptr<output::Table>>(&item)) {
        for (const output::Dimension& dimension : (*table)->dimensions)
          for (const output::Node& node : dimension.nodes)
            add(node.label.shown);
      } else if (const auto* chart = std::get_if<std::unique_ptr<output::Chart>>(&item)) {
        for (const output::ChartSource& source : (*chart)->sources)
          if (const output::ChartVariable* nodes = source.by_role("Nodes"))
            for (size_t row = 0; row < nodes->values.rows(); ++row)
              add(nodes->values.text(row));
      }
    }
  }
};

}  // namespace

TEST_CASE("names in an expression give way to labels, and nothing else does") {
  const DataDictionary dictionary = fields();
  struct Row {
    const char* expression;
    const char* shown;
  };
  const Row rows[] = {
      {"sex * site", "Sex (at birth) * Site"},
      {"site(sex)", "Site(Sex (at birth))"},
      {"[sex=f]*[site=1]", "[Sex (at birth)=Female]*[Site=North]"},
      {"[site=2]([sex=m*])", "[Site=2]([Sex (at birth)=Male * other])"},
      {"Var(site)", "Var(Site)"},
      {"Cov(site,x)", "Cov(Site,x)"},
      {"x y", "Both"},
      {"x*y", "x*y"},
      {"log(x)*x", "Logarithm*x"},
      {"sexes * onsite", "sexes * onsite"},
      {"sex=site", "Sex (at birth)=site"},
      {"site=", "Site="},
      {"(None)", "(None)"},
      {"", ""},
  };
  for (const auto& [expression, shown] : rows) {
    CAPTURE(expression);
    CHECK(labelled(expression, dictionary) == shown);
  }
}

TEST_CASE("labels do not grow a text without bounds") {
  DataDictionary dictionary;
  dictionary.add("a").set_label(std::string(kLongestLabel, 'L'));
  std::string expression;
  while (expression.size() < 100000)
    expression += "a*";
  CHECK(labelled(expression, dictionary).size() <= kLongestLabel);
}

TEST_CASE("a report calls a thing the same everywhere") {
  Count names;
  names.add(report(Naming::Name).content);
  CHECK(names.names > 30);
  CHECK(names.labels == 0);
  Count labels;
  labels.add(report(Naming::Label).content);
  CHECK(labels.names == 0);
  CHECK(labels.labels > 30);
  Count both;
  const output::Document document = report(Naming::Both);
  both.add(document.content);
  CHECK(both.labels == labels.labels);
  CHECK(both.names > 30);
  CHECK(document.about.facts[2].values[0].shown == "Salamanders counted (count)");
}
