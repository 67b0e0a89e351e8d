// For builds with the leak sanitizer: what the font and page libraries keep until the process ends,
// and that nothing is said of it. The names are the sanitizer's.

// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libfontconfig\nleak:libcairo\n";
}
extern "C" const char* __lsan_default_options();
extern "C" const char* __lsan_default_options() { return "print_suppressions=0"; }
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
