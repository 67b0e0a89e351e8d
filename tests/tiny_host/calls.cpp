// What this host does with a call: it prints or counts it.
#include <iostream>

#include "tests/tiny_host/tiny_host.h"

namespace tiny {
namespace {

std::map<std::string, int>& counters() {
  static std::map<std::string, int> counters;
  return counters;
}

}  // namespace

void count(const std::string& operation) { ++counters()[operation]; }

void print(const std::string& operation, const std::string& text) {
  count(operation);
  std::cout << operation << ' ' << text.substr(0, text.find('\n')) << '\n';
}

const std::map<std::string, int>& counts() { return counters(); }

}  // namespace tiny
