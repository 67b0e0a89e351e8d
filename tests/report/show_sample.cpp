// Prints a sample document, for looking at the forms and timing them:
// show_sample (procedure|awkward|large|rtl|many) FORM [width]
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "report/report.h"
#include "tests/report/chart_samples.h"
#include "tests/report/sample_documents.h"

namespace {

using hierfit::output::Document;

/// A report of 21 sections, with tables and two charts in each.
Document document_of_many() {
  Document document;
  for (size_t block = 1; block <= 21; ++block) {
    Document part = hierfit::test::procedure_document();
    auto section = std::make_unique<hierfit::output::Section>();
    section->title.shown = "Random effect block " + std::to_string(block);
    section->items = std::move(part.content.items);
    for (hierfit::output::Chart chart :
         {hierfit::test::scatter_chart(block * 10), hierfit::test::means_chart(block, 2)}) {
      section->items.emplace_back(std::make_unique<hierfit::output::Chart>(std::move(chart)));
    }
    document.content.items.emplace_back(std::move(section));
  }
  return document;
}

Document document_named(std::string_view name) {
  if (name == "awkward") return hierfit::test::awkward_document();
  if (name == "large") return hierfit::test::large_document(100000);
  if (name == "many") return document_of_many();
  Document document = hierfit::test::procedure_document();
  document.right_to_left = name == "rtl";
  return document;
}

}  // namespace

int main(int argc, char** argv) {
  const hierfit::report::Form* form = argc > 2 ? hierfit::report::form_by_name(argv[2]) : nullptr;
  if (form == nullptr) {
    std::fputs("usage: show_sample (procedure|awkward|large|rtl|many) FORM [width]\n", stderr);
    return 2;
  }
  hierfit::report::Options options;
  if (argc > 3) options.width = std::strtoul(argv[3], nullptr, 10);
  const std::string report = form->render(document_named(argv[1]), options);
  std::fwrite(report.data(), 1, report.size(), stdout);
  return 0;
}
