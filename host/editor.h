// The headless chart editor and the virtual machine that it runs in.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

/// The environment of a thread that is attached to the virtual machine; opaque.
struct JNIEnvironment;

/// What the editor throws when its virtual machine reports a failure.
class JNIException {
 public:
  explicit JNIException(std::string what) : what_(std::move(what)) {}
  virtual ~JNIException() = default;
  const std::string& What() const { return what_; }

 private:
  std::string what_;
};

/// The one shared virtual machine.
class VeltJVM {
 public:
  static VeltJVM& GetInstance();

  bool IsStarted() const;
  /// Starts the machine; whether it worked, `IsStarted` tells.
  void StartJVM();
  /// Attaches the calling thread and gives its environment.
  void AttachCurrentThread(JNIEnvironment** environment);
  JNIEnvironment* GetEnv();
};

/// The one shared editor, which runs without a screen.
class GlyphEditor {
 public:
  static GlyphEditor& GetInstance();

  bool IsStartedHeadless() const;
  void StartEditorHeadless(JNIEnvironment* environment);
  /// The graph's text with the histogram and its data inside it, a complete document that can stand
  /// in the graph's place; empty when it cannot be done. `data` is a stream of `length` bytes from
  /// `VarDataProcessor`; `fieldType` is the target's type code, 6 for an unknown one. May throw
  /// `JNIException`.
  std::string EmbedHistogramInGraph(const std::string& graph,
                                    const std::string& histogram,
                                    const char* data,
                                    int32_t length,
                                    int32_t fieldType);
};
