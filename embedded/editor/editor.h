// The editor of a session, which sets a histogram into a diagram.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace hierfit::editor {

/// What does the work of the virtual machine and of the headless editor in it.
class Editor {
 public:
  virtual ~Editor() = default;

  /// Whether the machine runs now.
  virtual bool start_machine() = 0;
  /// The graph's text with the histogram and its data inside it, as `editor::embed_histogram` gives
  /// it. May throw `JNIException`.
  virtual std::string embed_histogram(std::string_view graph,
                                      std::string_view histogram,
                                      std::string_view stream,
                                      int32_t field_type) = 0;
};

/// The editor that does it in place and needs no machine.
std::unique_ptr<Editor> make_editor();

}  // namespace hierfit::editor
