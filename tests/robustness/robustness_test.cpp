// No document crashes the command, hangs it, or gets markup into a report.
#include <algorithm>
#include <chrono>
#include <doctest/doctest.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sys/wait.h>

#include "report/report.h"
#include "tests/robustness/hostile_documents.h"

using namespace hierfit;
using namespace hierfit::test;

namespace {

namespace fs = std::filesystem;

constexpr int kMostSeconds = 120;  // with sanitizers, on a busy machine

std::string text_of(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void write(const fs::path& file, const std::string& text) {
  std::ofstream(file, std::ios::binary) << text;
}

struct Outcome {
  int status = -1;
  std::string errors;
  std::string page;
  size_t largest = 0;  ///< of the outputs, in bytes
};

/// Runs the command on files of its own; it ends by itself, or is ended.
Outcome run_command(const DocumentFiles& files) {
  const fs::path folder = HIERFIT_BINARY_DIR "/robustness-test";
  fs::remove_all(folder);
  fs::create_directories(folder);
  write(folder / "model.pmml", files.model);
  write(folder / "result.xml", files.result);
  const std::string command = "cd " + folder.string() + " && timeout " +
                              std::to_string(kMostSeconds) +
                              " " HIERFIT_BINARY_DIR
                              "/bin/hierfit --quiet model.pmml result.xml -o r.html -o r.txt "
                              "-o r.json -o r.csv -o r.vl.json 2>errors";
  const int status = std::system(command.c_str());
  Outcome outcome{WIFEXITED(status) ? WEXITSTATUS(status) : -1, text_of(folder / "errors"),
                  text_of(folder / "r.html")};
  for (const fs::directory_entry& file : fs::directory_iterator(folder)) {
    if (file.path().filename().string().starts_with("r.")) {
      outcome.largest = std::max(outcome.largest, static_cast<size_t>(file.file_size()));
    }
  }
  fs::remove_all(folder);
  return outcome;
}

/// The lines that are no warnings.
ptrdiff_t sentences_in(const std::string& errors) {
  ptrdiff_t count = std::ranges::count(errors, '\n');
  constexpr std::string_view kWarning = ": warning: ";
  for (size_t at = errors.find(kWarning); at != std::string::npos;
       at = errors.find(kWarning, at + 1))
    --count;
  return count;
}

}  // namespace

TEST_CASE("the command and hostile documents") {
  for (const HostileCase& item : hostile_cases()) {
    CAPTURE(item.what);
    const Outcome outcome = run_command(item.files);
    CAPTURE(outcome.errors);
    CHECK(outcome.status == (item.reads ? 0 : 1));
    CHECK(sentences_in(outcome.errors) == (item.reads ? 0 : 1));
    CHECK(outcome.page.empty() == !item.reads);
    CHECK(outcome.page.find("<img") == std::string::npos);
  }
}

TEST_CASE("values that are none, out of range or too large") {
  for (const DocumentFiles& files : altered_documents()) {
    const TableRun left = run(files, "en");
    for (const report::Form& form : report::kForms)
      CHECK_FALSE(form.render(left.document, {}).empty());
  }
}

TEST_CASE("what stands for much is cut, and the report says so") {
  constexpr size_t kMost = size_t{64} << 20;  // for documents of a megabyte; these are smaller
  for (const DocumentFiles& files : documents_that_stand_for_much()) {
    CAPTURE(files.model.size());
    REQUIRE(files.model.size() + files.result.size() < size_t{1} << 20);
    const Outcome outcome = run_command(files);
    CAPTURE(outcome.errors);
    CHECK(outcome.status == 0);
    CHECK(outcome.largest < kMost);
    // Labels of values that no chart shows are missed by nobody.
    const bool is_cut = outcome.page.find("out of proportion") != std::string::npos;
    CHECK(is_cut == (files.model.find("label 1") == std::string::npos));
  }
}
