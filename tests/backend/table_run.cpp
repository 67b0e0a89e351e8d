#include "tests/backend/table_run.h"

#include <algorithm>
#include <doctest/doctest.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <variant>

#include "backend/hierfit/frame/HFITProcCustom.h"
#include "embedded/session.h"
#include "output/number_format.h"

namespace hierfit::test {

namespace {

using output::Section;

const std::string kSource = HIERFIT_SOURCE_DIR;

std::string text_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  REQUIRE_MESSAGE(file.good(), path);
  return {std::istreambuf_iterator<char>(file), {}};
}

template <class Kind>
const Kind* as(const output::Item& item) {
  const auto* held = std::get_if<std::unique_ptr<Kind>>(&item);
  return held != nullptr ? held->get() : nullptr;
}

/// Takes the charts out of a section, in the order in which a reader meets them.
void take_charts(Section& section, std::vector<std::unique_ptr<output::Chart>>& charts) {
  for (output::Item& item : section.items) {
    if (auto* chart = std::get_if<std::unique_ptr<output::Chart>>(&item)) {
      charts.push_back(std::move(*chart));
    } else if (auto* inner = std::get_if<std::unique_ptr<Section>>(&item)) {
      take_charts(**inner, charts);
    }
  }
  std::erase_if(section.items, [](const output::Item& item) {
    const auto* chart = std::get_if<std::unique_ptr<output::Chart>>(&item);
    return chart != nullptr && *chart == nullptr;
  });
}

void append_outline(std::string& outline, const Section& section) {
  for (const output::Item& item : section.items) {
    if (!outline.empty() && outline.back() != '[') outline += ' ';
    if (const Section* inner = as<Section>(item)) {
      outline += '[';
      append_outline(outline, *inner);
      outline += ']';
    } else if (const output::Table* table = as<output::Table>(item)) {
      outline += table->subtype;
    } else {
      outline += '!';
    }
  }
}

const output::Table* find_table(const Section& section, const std::string& subtype) {
  for (const output::Item& item : section.items) {
    const output::Table* table = as<output::Table>(item);
    if (table != nullptr && table->subtype == subtype) return table;
    const Section* inner = as<Section>(item);
    const output::Table* found = inner != nullptr ? find_table(*inner, subtype) : nullptr;
    if (found != nullptr) return found;
  }
  return nullptr;
}

bool crosses(const output::Table& table, std::size_t cell, const std::vector<std::string>& labels) {
  const uint32_t* leaves = table.cells.at(cell);
  for (std::size_t d = 0; d < labels.size(); ++d) {
    const output::Dimension& dimension = table.dimensions[d];
    if (leaves[d] == output::kNone) return false;
    if (dimension.nodes[dimension.leaves[leaves[d]]].label.shown != labels[d]) return false;
  }
  return true;
}

}  // namespace

DocumentFiles example_files(const std::string& name) {
  const std::string folder = kSource + "/examples/" + name;
  DocumentFiles files{text_of(folder + "/model.pmml"), text_of(folder + "/result.xml"), {}};
  const std::string dictionary = folder + "/dictionary.json";
  if (std::filesystem::exists(dictionary)) files.dictionary = text_of(dictionary);
  return files;
}

DocumentFiles document_files(const std::string& name) {
  const std::string folder = kSource + "/tests/documents/";
  return {text_of(folder + "model.pmml"), text_of(folder + name + ".xml"), {}};
}

std::string TableRun::outline() const {
  std::string outline;
  append_outline(outline, document.content);
  return outline;
}

const output::Table* TableRun::table(const std::string& subtype) const {
  return find_table(document.content, subtype);
}

std::string TableRun::cell(const std::string& subtype,
                           const std::vector<std::string>& labels) const {
  const output::Table* found = table(subtype);
  if (found == nullptr || labels.size() != found->dimensions.size()) return "(none)";
  for (std::size_t cell = 0; cell < found->cells.size(); ++cell) {
    if (!crosses(*found, cell, labels)) continue;
    const output::CellValue& value = found->cells.values[cell];
    if (const auto* text = std::get_if<uint32_t>(&value)) return found->texts[*text].shown;
    return output::shown(std::get<output::Number>(value), document.numbers);
  }
  return "(none)";
}

TableRun run(const DocumentFiles& files, const std::string& language) {
  std::ostringstream journal;
  Session session({.pmml_name = "model",
                   .pmml = files.model,
                   .statxml_name = "result",
                   .statxml = files.result,
                   .dictionary_name = "dictionary",
                   .dictionary = files.dictionary},
                  {.language = language,
                   .resource_directory = HIERFIT_BINARY_DIR "/share/hierfit",
                   .journal = &journal});
  HFITProcCustom procedure;
  TableRun left;
  try {
    session.run(procedure);
    left.reads = true;
  } catch (const DocumentError&) {
    left.reads = false;
  }
  left.document = session.take_document();
  take_charts(left.document.content, left.charts);
  left.journal = journal.str();
  return left;
}

}  // namespace hierfit::test
