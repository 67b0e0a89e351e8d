// The virtual machine and the headless editor, which stand in for a process of their own: what they
// do is done in place.
#include "host/editor.h"

#include "embedded/editor/embed_histogram.h"
#include "embedded/session_state.h"

struct JNIEnvironment {};

namespace {

using namespace hierfit;
using journal::Receiver;

Receiver machine_receiver() { return Receiver(journal_of_thread(), journal::Id{"VeltJVM", 1}); }
Receiver editor_receiver() { return Receiver(journal_of_thread(), journal::Id{"GlyphEditor", 1}); }

JNIEnvironment* environment() {
  static JNIEnvironment one;
  return &one;
}

}  // namespace

VeltJVM& VeltJVM::GetInstance() {
  static VeltJVM machine;
  return machine;
}

bool VeltJVM::IsStarted() const {
  const Session::State* state = state_of_thread();
  return state != nullptr && state->editor.machine_is_started;
}

void VeltJVM::StartJVM() {
  machine_receiver().note("VeltJVM::StartJVM");
  Session::State* state = state_of_thread();
  if (state != nullptr) state->editor.machine_is_started = state->editor.machine_can_start;
}

void VeltJVM::AttachCurrentThread(JNIEnvironment** attached) {
  machine_receiver().note("VeltJVM::AttachCurrentThread");
  if (attached != nullptr) *attached = GetEnv();
}

JNIEnvironment* VeltJVM::GetEnv() { return IsStarted() ? environment() : nullptr; }

GlyphEditor& GlyphEditor::GetInstance() {
  static GlyphEditor editor;
  return editor;
}

bool GlyphEditor::IsStartedHeadless() const {
  const Session::State* state = state_of_thread();
  return state != nullptr && state->editor.editor_is_started;
}

void GlyphEditor::StartEditorHeadless(JNIEnvironment* attached) {
  editor_receiver().note("GlyphEditor::StartEditorHeadless", attached != nullptr);
  Session::State* state = state_of_thread();
  if (state != nullptr) state->editor.editor_is_started = attached != nullptr;
}

std::string GlyphEditor::EmbedHistogramInGraph(const std::string& graph,
                                               const std::string& histogram,
                                               const char* data,
                                               int32_t length,
                                               int32_t fieldType) {
  const Session::State* state = state_of_thread();
  const bool throws = state != nullptr && state->editor.embedding_throws;
  std::string text;
  if (!throws && IsStartedHeadless() && data != nullptr && length >= 0) {
    text =
        editor::embed_histogram(graph, histogram, {data, static_cast<size_t>(length)}, fieldType);
  }
  journal::Line line(journal_of_thread(), "GlyphEditor::EmbedHistogramInGraph");
  line.on(editor_receiver().id()).add(graph, histogram, length, fieldType);
  if (!throws) line.add(journal::Result{text});
  if (throws) throw JNIException("the editor refuses");
  return text;
}
