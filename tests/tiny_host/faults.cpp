#include "tests/tiny_host/faults.h"

#include <stdexcept>

#include "tests/tiny_host/tiny_host.h"

namespace {

tiny::Fault planned = tiny::Fault::None;
long place = 0;
long made = 0;
int depth = 0;

/// The fault of the operation that begins. Those that this host uses itself are its own business.
tiny::Fault next_fault() {
  const bool is_planned = depth == 0 && ++made == place;
  if (is_planned && planned == tiny::Fault::Throws) throw std::runtime_error("a planned fault");
  return is_planned ? planned : tiny::Fault::None;
}

}  // namespace

namespace tiny {

void plan(Fault fault, long at) {
  planned = fault;
  place = at;
  made = 0;
}

long operations() { return made; }
bool is_inside() { return depth > 0; }

Inside::Inside() { ++depth; }
Inside::~Inside() { --depth; }

Call::Call(const char* name) : fault_(next_fault()) {
  if (name != nullptr) count(name);
}

}  // namespace tiny
