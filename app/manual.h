// The manual page and the completions of shells, made from the option table.
#pragma once

#include <string>
#include <string_view>

namespace hierfit::app {

/// The manual page, section 1, in mdoc.
std::string manual_page();

/// The completions for "bash", "zsh" or "fish"; of another shell, nothing.
std::string completion(std::string_view shell);

}  // namespace hierfit::app
