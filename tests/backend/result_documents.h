// A pair of small documents that reads, what a test changes in it, and what the module reads.
#pragma once

#include <initializer_list>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "backend/hierfit/frame/HFITProcCustom.h"
#include "backend/hierfit/reader/HFITParseOutXML.h"
#include "backend/hierfit/store/HFITOutputStats.h"
#include "embedded/session.h"

namespace hierfit::test {

/// The two documents. The base pair has a part of each kind, as short as it can be. Dictionary: `y`
/// (the target) and `x` continuous, `n` the trials, `g` with the levels 1 to 3, `s` a string with
/// the levels a and b, `t` with the levels 1 and 2, and `extra`, which is no variable of the model.
class ResultDocuments {
 public:
  ResultDocuments();

  /// Replaces the first `from` of the result document, which must be there.
  ResultDocuments& replace(std::string_view from, std::string_view to);
  /// Replaces everything from the first `from` up to and with the next `end`.
  ResultDocuments& replace_range(std::string_view from, std::string_view end, std::string_view to);
  /// Puts a text in front of the first `where`.
  ResultDocuments& insert_before(std::string_view where, std::string_view text);

  std::string model;
  std::string result;
};

/// A read of both documents, with everything that it left. One at a time.
class Reading {
 public:
  explicit Reading(const ResultDocuments& documents);

  const BuildSettingsStruct& settings() const { return *store.GetBuildSettings(); }
  const ModelDiagnostics& diagnostics() const { return *store.GetModelDiagnostics(); }
  const StructuredData& structured() const { return *store.GetStructuredData(); }
  const ParamCollect& estimates() const { return *store.GetParamCollect(); }

  BpProcedure* procedure() { return procedure_.fpProcedure; }
  ProcedureDataSource* data_source() { return procedure_.fpDataSource; }
  /// The host calls so far, one a line.
  std::string journal() const { return journal_.str(); }
  /// The number of messages that the read put into the output. Asked for once.
  std::size_t messages();

 private:
  /// A procedure that is connected and has not run.
  struct Procedure : HFITProcCustom {
    explicit Procedure(Session& session) { session.connect(*this); }
  };

  ResultDocuments documents_;
  std::ostringstream journal_;
  Session session_;
  Procedure procedure_;

 public:
  HFITOutputStats store;
  HFITParseOutXML reader;
  bool reads = false;
};

/// What becomes of a changed document.
enum class Read { Fails, Works };

/// One change of the base documents: `from` becomes `to`, or all from `from` up to and with `end`.
struct Change {
  const char* what;
  const char* from;
  const char* to;
  Read read = Read::Fails;
  const char* end = nullptr;
};

/// Reads the base documents with each of the changes alone. A read that fails has one message.
void check_changes(std::initializer_list<Change> changes);

/// The texts of values, as they stand in the document.
std::vector<std::string> texts(const std::vector<CFStatVariableValue>& values);

/// The number of a value that is loaded; a failed check when it is not.
double number(const CFStatVariableValue& value);

}  // namespace hierfit::test
