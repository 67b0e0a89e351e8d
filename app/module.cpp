#include "app/module.h"

#include <dlfcn.h>
#include <filesystem>
#include <initializer_list>
#include <new>

#include "embedded/error.h"

namespace hierfit::app {
namespace {

namespace fs = std::filesystem;

/// Parts of the program lie around it and nowhere else: code is never loaded from a path that the
/// current folder has a say in.
fs::path program_directory() {
  constexpr const char* kProgram = "/proc/self/exe";
  std::error_code error;
  const fs::path program = fs::read_symlink(kProgram, error);
  if (!program.is_absolute()) {
    throw FileError({kProgram, 0, 0}, "does not tell where the program is");
  }
  return program.parent_path();
}

/// The first of the paths, each seen from `directory`, that exists; the first when none does.
std::string first_existing(const fs::path& directory, std::initializer_list<const char*> paths) {
  std::error_code error;
  for (const char* path : paths) {
    const fs::path candidate = (directory / path).lexically_normal();
    if (fs::exists(candidate, error)) return candidate.string();
  }
  return (directory / *paths.begin()).lexically_normal().string();
}

}  // namespace

ProgramPaths find_program() {
  const fs::path directory = program_directory();
  return {
      first_existing(directory, {"../lib/hierfit.so", "../" HIERFIT_LIBDIR "/hierfit/hierfit.so",
                                 "../lib/hierfit/hierfit.so", "../lib64/hierfit/hierfit.so"}),
      first_existing(directory, {"../share/hierfit", "../" HIERFIT_DATADIR "/hierfit"})};
}

void Module::Unloader::operator()(void* handle) const { ::dlclose(handle); }

Module::Module(const std::string& file) : handle_(::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (handle_ == nullptr) {
    throw FileError({file, 0, 0}, std::string("the module cannot be loaded: ") + ::dlerror());
  }
  factory_ = reinterpret_cast<Factory>(::dlsym(handle_.get(), "GetCFProcCustom"));
  if (factory_ == nullptr) throw FileError({file, 0, 0}, "is no module: it lacks GetCFProcCustom");
}

std::unique_ptr<CFProcCustom> Module::make_procedure() const {
  std::unique_ptr<CFProcCustom> procedure(factory_());
  if (procedure == nullptr) throw std::bad_alloc();
  return procedure;
}

}  // namespace hierfit::app
