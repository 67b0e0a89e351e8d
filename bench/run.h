// A run of the module's own parts on the embedded host, step by step.
#pragma once

#include <memory>
#include <string>

#include "backend/hierfit/store/HFITOutputStats.h"
#include "embedded/session.h"

namespace hierfit::bench {

/// A session with a model document, else that of the benchmarks, and a store.
class Run {
 public:
  explicit Run(std::string statxml);
  Run(std::string statxml, std::string pmml);
  ~Run();

  /// Reads both documents into a fresh store.
  bool read();
  /// Writes all output from the store; gives the document of it.
  output::Document write();

 private:
  class Hands;

  const std::string pmml_;
  const std::string statxml_;
  std::unique_ptr<Session> session_;
  std::unique_ptr<Hands> hands_;
  std::unique_ptr<HFITOutputStats> store_;
};

}  // namespace hierfit::bench
