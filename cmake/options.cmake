# One interface target that every target of ours links: warnings and sanitizers.
add_library(hierfit_options INTERFACE)
target_compile_options(hierfit_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  # g++ 12 takes short std::string operations for overlapping copies.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
  $<$<BOOL:${HIERFIT_WARNINGS_AS_ERRORS}>:-Werror>
  $<$<BOOL:${HIERFIT_SANITIZE}>:-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer>
  $<$<BOOL:${HIERFIT_FUZZ}>:-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined>)
target_link_options(hierfit_options INTERFACE
  $<$<BOOL:${HIERFIT_FUZZ}>:-fsanitize=address,undefined>
  $<$<BOOL:${HIERFIT_SANITIZE}>:-fsanitize=address,undefined>)
target_include_directories(hierfit_options INTERFACE ${PROJECT_SOURCE_DIR})
