// Prints a sample document, for looking at the forms and timing them:
// show_sample (procedure|awkward|large|rtl) (html|text|json) [width]
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "report/report.h"
#include "tests/report/sample_documents.h"

namespace {

hierfit::output::Document document_named(std::string_view name) {
  if (name == "awkward") return hierfit::tests::awkward_document();
  if (name == "large") return hierfit::tests::large_document(100000);
  hierfit::output::Document document = hierfit::tests::procedure_document();
  document.right_to_left = name == "rtl";
  return document;
}

}  // namespace

int main(int argc, char** argv) {
  const hierfit::report::Form* form = argc > 2 ? hierfit::report::form_by_name(argv[2]) : nullptr;
  if (form == nullptr) {
    std::fputs("usage: show_sample (procedure|awkward|large|rtl) (html|text|json) [width]\n",
               stderr);
    return 2;
  }
  hierfit::report::Options options;
  if (argc > 3) options.width = std::strtoul(argv[3], nullptr, 10);
  const std::string report = form->render(document_named(argv[1]), options);
  std::fwrite(report.data(), 1, report.size(), stdout);
  return 0;
}
