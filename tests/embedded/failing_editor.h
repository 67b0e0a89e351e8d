// An editor for tests of what happens without one.
#pragma once

#include <memory>

#include "host/editor.h"

#include "embedded/session_state.h"

namespace hierfit::test {

/// Its machine starts or not; what it is asked to embed it refuses.
class FailingEditor final : public editor::Editor {
 public:
  explicit FailingEditor(bool machine_starts) : machine_starts_(machine_starts) {}

  bool start_machine() override { return machine_starts_; }
  std::string embed_histogram(std::string_view,
                              std::string_view,
                              std::string_view,
                              int32_t) override {
    throw JNIException("the editor refuses");
  }

 private:
  bool machine_starts_;
};

/// Puts it in the place of the editor of this thread's session.
inline void use_failing_editor(bool machine_starts) {
  Session::current().handles.editor = std::make_unique<FailingEditor>(machine_starts);
}

}  // namespace hierfit::test
