// Finds and loads the module.
#pragma once

#include <memory>
#include <string>

#include "host/framework.h"

namespace hierfit::app {

/// Where the parts of the program lie, beside the command: in a build tree and in an installed
/// tree.
struct ProgramPaths {
  std::string module;     ///< the loadable library
  std::string resources;  ///< the directory that holds `locale/` and `template/`
};

/// The places in use. They need not exist. Throws `FileError` when the system does not tell where
/// the command is.
ProgramPaths find_program();

/// The loaded module; it stays loaded as long as this object. What it makes goes first.
class Module {
 public:
  /// Throws `FileError` when the file cannot be loaded or has no factory.
  explicit Module(const std::string& file);

  /// A procedure of the module. Throws `std::bad_alloc` when there is none to be had.
  std::unique_ptr<CFProcCustom> make_procedure() const;

 private:
  struct Unloader {
    void operator()(void* handle) const;
  };
  using Factory = CFProcCustom* (*)();

  std::unique_ptr<void, Unloader> handle_;
  Factory factory_ = nullptr;
};

}  // namespace hierfit::app
