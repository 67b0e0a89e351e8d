// The virtual machine and the headless editor over the editor of the session.
#include "embedded/editor/editor.h"

#include "host/editor.h"

#include "embedded/editor/embed_histogram.h"
#include "embedded/session_state.h"

struct JNIEnvironment {};

namespace {

using namespace hierfit;
using journal::Receiver;

Handles& handles() { return Session::current().handles; }

Receiver machine() { return Receiver(journal_of_thread(), journal::Id{"VeltJVM", 1}); }
Receiver glyph_editor() { return Receiver(journal_of_thread(), journal::Id{"GlyphEditor", 1}); }

JNIEnvironment* only_environment() {
  static JNIEnvironment only;
  return &only;
}

class EditorInPlace final : public editor::Editor {
 public:
  bool start_machine() override { return true; }
  std::string embed_histogram(std::string_view graph,
                              std::string_view histogram,
                              std::string_view stream,
                              int32_t field_type) override {
    return editor::embed_histogram(graph, histogram, stream, field_type);
  }
};

}  // namespace

std::unique_ptr<editor::Editor> editor::make_editor() { return std::make_unique<EditorInPlace>(); }

VeltJVM& VeltJVM::GetInstance() {
  static VeltJVM machine;
  return machine;
}

bool VeltJVM::IsStarted() const { return handles().machine_is_started; }

void VeltJVM::StartJVM() {
  machine().note("VeltJVM::StartJVM");
  handles().machine_is_started = handles().editor->start_machine();
}

void VeltJVM::AttachCurrentThread(JNIEnvironment** environment) {
  machine().note("VeltJVM::AttachCurrentThread");
  if (environment != nullptr) *environment = GetEnv();
}

JNIEnvironment* VeltJVM::GetEnv() { return IsStarted() ? only_environment() : nullptr; }

GlyphEditor& GlyphEditor::GetInstance() {
  static GlyphEditor editor;
  return editor;
}

bool GlyphEditor::IsStartedHeadless() const { return handles().editor_is_started; }

void GlyphEditor::StartEditorHeadless(JNIEnvironment* environment) {
  glyph_editor().note("GlyphEditor::StartEditorHeadless", environment != nullptr);
  handles().editor_is_started = environment != nullptr;
}

std::string GlyphEditor::EmbedHistogramInGraph(const std::string& graph,
                                               const std::string& histogram,
                                               const char* data,
                                               int32_t length,
                                               int32_t fieldType) {
  journal::Line line(journal_of_thread(), "GlyphEditor::EmbedHistogramInGraph");
  line.on(glyph_editor().id()).add(graph, histogram, length, fieldType);
  std::string text;
  if (IsStartedHeadless() && data != nullptr && length >= 0) {
    const std::string_view stream(data, static_cast<size_t>(length));
    text = handles().editor->embed_histogram(graph, histogram, stream, fieldType);
  }
  line.add(journal::Result{text});
  return text;
}
