// Has every operation of this host, and every allocation of the module, fail once, in a run of its
// own: tiny_host_sweep MODULE MODEL RESULT... The module neither crashes nor leaks, opens no table
// for documents that it did not read, leaves none open, and runs as ever afterwards.
#include <cstdlib>
#include <dlfcn.h>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <new>

#include "tests/tiny_host/faults.h"
#include "tests/tiny_host/tiny_host.h"

namespace {

long allocations = 0;
long failing_allocation = 0;  ///< 0 for none
bool counts_allocations = false;

/// Whether this allocation is one of the module's that fails. Those of the host are its own.
bool fails() {
  return counts_allocations && !tiny::is_inside() && ++allocations == failing_allocation;
}

void* allocate(std::size_t size) {
  void* memory = fails() ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

using Factory = CFProcCustom* (*)();

enum class Outcome { Reads, Refuses, Throws, NoProcedure };

struct Pair {
  std::string model;
  std::string result;
};

int calls_of(const char* operation) {
  const auto found = tiny::counts().find(operation);
  return found == tiny::counts().end() ? 0 : found->second;
}

Outcome run(Factory make, const Pair& pair, tiny::Dictionary& dictionary) {
  tiny::counts().clear();
  try {
    BpProcedure output = tiny::make_procedure();
    // The factory throws nothing whatever fails, so it does not stand in a block of its own.
    const std::unique_ptr<CFProcCustom> procedure(make());
    if (procedure == nullptr) return Outcome::NoProcedure;
    procedure->fpProcedure = &output;
    procedure->fpDataSource = &dictionary;
    procedure->fpMetaData = &dictionary;
    return procedure->GenerateOutput({pair.model}, {{pair.result}}, {}) ? Outcome::Reads
                                                                        : Outcome::Refuses;
  } catch (...) {
    return Outcome::Throws;  // what a host throws may come back to it
  }
}

/// The handles that are open: headings and tables less those released.
int open_handles() {
  return calls_of("BpHeading::Heading") + calls_of("BpHeading::PivotTable") +
         calls_of("XDocument::XDocument") + calls_of("XGlyphTemplate::XGlyphTemplate") +
         calls_of("VarDataProcessor::VarDataProcessor") - calls_of("release");
}

class Sweep {
 public:
  Sweep(Factory make, Pair pair) : make_(make), pair_(std::move(pair)), dictionary_(pair_.model) {}

  /// Every fault at every place; the number of runs.
  long all() {
    long runs = 0;
    tiny::plan(tiny::Fault::None, 0);
    expect(run(make_, pair_, dictionary_) == Outcome::Reads, "no fault", 0);
    run(make_, pair_, dictionary_);  // with all that is made once already there
    good_ = tiny::counts();
    for (const auto& [fault, name] : kFaults) {
      tiny::plan(tiny::Fault::None, 0);
      run(make_, pair_, dictionary_);
      const long places = tiny::operations();
      for (long at = 1; at <= places; ++at, ++runs) {
        tiny::plan(fault, at);
        check(run(make_, pair_, dictionary_), name, at);
      }
    }
    return runs + allocations_one_by_one();
  }

  bool failed() const { return failed_; }

 private:
  struct Kind {
    tiny::Fault fault;
    const char* name;
  };
  static constexpr Kind kFaults[] = {{tiny::Fault::Throws, "throws"},
                                     {tiny::Fault::GivesNothing, "gives nothing"},
                                     {tiny::Fault::GivesNonsense, "gives nonsense"}};

  long allocations_one_by_one() {
    tiny::plan(tiny::Fault::None, 0);
    failing_allocation = 0;
    run_counted();
    const long places = allocations;
    for (long at = 1; at <= places; ++at) {
      failing_allocation = at;
      check(run_counted(), "allocation fails", at);
    }
    return places;
  }

  Outcome run_counted() {
    allocations = 0;
    counts_allocations = true;
    const Outcome outcome = run(make_, pair_, dictionary_);
    counts_allocations = false;
    return outcome;
  }

  void check(Outcome outcome, const char* what, long at) {
    const bool has_output = calls_of("BpHeading::PivotTable") > 0 ||
                            calls_of("BpHeading::Heading") > 0 ||
                            calls_of("XDocument::SendChart") > 0;
    expect(open_handles() == 0, what, at);
    expect(outcome != Outcome::Refuses || (!has_output && calls_of("BpError") <= 1), what, at);
    tiny::plan(tiny::Fault::None, 0);
    // The next run is as good as the first.
    if (at % 64 != 0) return;
    expect(run(make_, pair_, dictionary_) == Outcome::Reads && tiny::counts() == good_, what, at);
  }

  void expect(bool isTrue, const char* what, long at) {
    if (isTrue) return;
    failed_ = true;
    std::cerr << "operation " << at << ' ' << what << '\n';
  }

  Factory make_;
  Pair pair_;
  tiny::Dictionary dictionary_;
  std::map<std::string, int> good_;
  bool failed_ = false;
};

std::string text_of(const char* path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return fails() ? nullptr : std::malloc(size == 0 ? 1 : size);
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

int main(int argument_count, char** arguments) {
  void* module = argument_count < 4 ? nullptr : ::dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
  void* make = module == nullptr ? nullptr : ::dlsym(module, "GetCFProcCustom");
  if (make == nullptr) {
    std::cerr << "tiny_host_sweep: a module, a model and results are needed\n";
    return 2;
  }
  tiny::prints = false;
  bool failed = false;
  for (int i = 3; i < argument_count; ++i) {
    Sweep sweep(reinterpret_cast<Factory>(make), {text_of(arguments[2]), text_of(arguments[i])});
    std::cout << arguments[i] << ": " << std::flush << sweep.all() << " faults\n";
    failed = failed || sweep.failed();
  }
  return failed ? 1 : 0;
}
