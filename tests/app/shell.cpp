#include "tests/app/shell.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sys/wait.h>
#include <vector>

namespace shell_test {

namespace fs = std::filesystem;

const std::string kCommand = HIERFIT_BINARY_DIR "/bin/hierfit";
const std::string kExample = HIERFIT_SOURCE_DIR "/examples/salamanders/";
const std::string kDocuments = kExample + "model.pmml " + kExample + "result.xml";

std::string text_of(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void write(const fs::path& file, const std::string& text) {
  std::ofstream(file, std::ios::binary) << text;
}

std::string results_of(const std::string& report) {
  const size_t content = report.find(",\"content\":[");
  const size_t begin = content != std::string::npos ? content : report.find("\nTable 1\n");
  return begin == std::string::npos ? "(no results)" : report.substr(begin);
}

Directory::Directory() : path_(HIERFIT_BINARY_DIR "/command-test") {
  fs::remove_all(path_);
  fs::create_directories(path_);
}

Directory::~Directory() { fs::remove_all(path_); }

std::string Directory::listing() const {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(path_)) {
    names.push_back(entry.path().filename());
  }
  std::ranges::sort(names);
  std::string all;
  for (const std::string& name : names) {
    all += name + " ";
  }
  return all;
}

Outcome shell(const std::string& line) {
  const std::string base = HIERFIT_BINARY_DIR "/command-test-streams";
  write(base + ".sh",
        "set -o pipefail\nexport LANG=C\nunset LC_ALL LC_MESSAGES\n"
        "hierfit() { \"" +
            kCommand + "\" \"$@\"; }\n" + line + "\n");
  const std::string run = "bash " + base + ".sh >" + base + ".out 2>" + base + ".err";
  const int status = std::system(run.c_str());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, text_of(base + ".out"),
          text_of(base + ".err")};
}

}  // namespace shell_test
