// The string table library: the wording of keys in the output language, and where it lies.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

/// Turns message keys into text, in the context of one command.
class ParserMessage {
 public:
  ParserMessage();
  ~ParserMessage();
  ParserMessage(const ParserMessage&) = delete;
  ParserMessage& operator=(const ParserMessage&) = delete;

  void SetCommandName(const std::string& name);
  void SetProcedureTitle(const std::string& title);

  /// The key's text with "^1" to "^5" replaced by the parameters, in one pass. A null parameter
  /// leaves nothing at its place. A key that the table does not hold stands for itself.
  std::string GetTranslatedText(const std::string& key,
                                const char* p1,
                                const char* p2,
                                const char* p3,
                                const char* p4,
                                const char* p5) const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

/// A dictionary open on a string table. Its texts come back as they stand there, with their
/// placeholders, in the encoding of the output language.
class FacSTDictionary {
 public:
  explicit FacSTDictionary(const std::string& path);
  virtual ~FacSTDictionary();
  FacSTDictionary(const FacSTDictionary&) = delete;
  FacSTDictionary& operator=(const FacSTDictionary&) = delete;

  void SetProcedure(const std::string& title);
  void SetGlobalStringTable(const std::string& path);

  /// The key's text; a key that the table does not hold stands for itself.
  std::string LookUp(const std::string& key) const;
  /// The same. `code` is 0 on entry and says how the look-up went: 0 found, 1 not found.
  std::string LookUp(const std::string& key, int32_t& code) const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

/// Directories and files of the host. The order of the operations is part of the interface.
class PathFinder {
 public:
  /// Directory of the host's programs.
  virtual std::string ProgramPath() const = 0;
  /// Directory that holds the folder "template", with a path separator at its end.
  virtual std::string ResourcePath() const = 0;
  /// Directory for files of the run alone.
  virtual std::string TemporaryPath() const = 0;
  /// Directory of the output language's files.
  virtual std::string LanguagePath() const = 0;
  /// The string table of the output language.
  virtual std::string StringTablePath() const = 0;

 protected:
  ~PathFinder() = default;
};

/// Hands out the path finder of the host, which owns it.
class PathFactory {
 public:
  static PathFinder* getPathInstance();
  /// The path finder of one area of the host; 3 is that of the output.
  static PathFinder* getPathInstance(int32_t area);
};
