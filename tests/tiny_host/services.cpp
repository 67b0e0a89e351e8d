// The small libraries: a string table without texts, so that every key stands for itself; a path
// finder without directories; one template for every file.
#include "host/files.h"
#include "host/string_table.h"
#include "host/text.h"

#include "tests/tiny_host/faults.h"
#include "tests/tiny_host/tiny_host.h"

using tiny::Call;

struct ParserMessage::Impl {};
struct FacSTDictionary::Impl {};

namespace {

class NoPaths final : public PathFinder {
 public:
  std::string ProgramPath() const override {
    const Call call;
    return {};
  }
  std::string ResourcePath() const override {
    const Call call;
    return {};
  }
  std::string TemporaryPath() const override {
    const Call call;
    return {};
  }
  std::string LanguagePath() const override {
    const Call call;
    return {};
  }
  std::string StringTablePath() const override {
    const Call call;
    return {};
  }
};

}  // namespace

ParserMessage::ParserMessage() { const Call call; }
ParserMessage::~ParserMessage() = default;
void ParserMessage::SetCommandName(const std::string&) { const Call call; }
void ParserMessage::SetProcedureTitle(const std::string&) { const Call call; }
std::string ParserMessage::GetTranslatedText(
    const std::string& key, const char*, const char*, const char*, const char*, const char*) const {
  const Call call;
  return call.gives_nothing() ? std::string() : key;
}

FacSTDictionary::FacSTDictionary(const std::string&) { const Call call; }
FacSTDictionary::~FacSTDictionary() = default;
void FacSTDictionary::SetProcedure(const std::string&) { const Call call; }
void FacSTDictionary::SetGlobalStringTable(const std::string&) { const Call call; }
std::string FacSTDictionary::LookUp(const std::string& key) const {
  const Call call;
  return call.gives_nothing() ? std::string() : key;
}
std::string FacSTDictionary::LookUp(const std::string& key, int32_t& code) const {
  const Call call;
  code = 1;
  return call.gives_nothing() ? std::string() : key;
}

PathFinder* PathFactory::getPathInstance() {
  static NoPaths paths;
  const Call call;
  return call.gives_nothing() ? nullptr : &paths;
}
PathFinder* PathFactory::getPathInstance(int32_t) { return getPathInstance(); }

std::string FetchFile::fetch(const std::string&, bool, bool) {
  const Call call("FetchFile::fetch");
  return call.gives_nothing() ? "" : "<chart/>";
}

int VELTMBmbclen_A(const char*) {
  const Call call;
  return call.result(1, 0, 1 << 30);
}
