// Runs the module on this host: tiny_host_run MODULE MODEL RESULT. Prints a line for each pivot
// call, an empty line, and how often each operation was called.
#include <dlfcn.h>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>

#include "tests/tiny_host/tiny_host.h"

namespace {

std::string text_of(const char* path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

int complain(const std::string& sentence) {
  std::cerr << "tiny_host_run: " << sentence << '\n';
  return 1;
}

}  // namespace

int main(int argument_count, char** arguments) {
  if (argument_count != 4) return complain("a module, a model and a result are needed");
  // The module's own need of a host library is met by the one that this program is linked with.
  void* module = ::dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
  if (module == nullptr) return complain(::dlerror());
  const auto make = reinterpret_cast<CFProcCustom* (*)()>(::dlsym(module, "GetCFProcCustom"));
  if (make == nullptr) return complain(::dlerror());

  const std::string model = text_of(arguments[2]);
  BpProcedure output = tiny::make_procedure();
  tiny::Dictionary dictionary(model);
  const std::unique_ptr<CFProcCustom> procedure(make());
  procedure->fpProcedure = &output;
  procedure->fpDataSource = &dictionary;
  procedure->fpMetaData = &dictionary;
  if (!procedure->GenerateOutput({model}, {{text_of(arguments[3])}}, {})) {
    return complain("the documents cannot be read");
  }

  std::cout << '\n';
  for (const auto& [operation, calls] : tiny::counts()) {
    std::cout << calls << ' ' << operation << '\n';
  }
  return 0;
}
