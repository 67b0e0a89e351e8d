// The small libraries: a string table without texts, so that every key stands for itself; a path
// finder without directories; one template for every file.
#include "host/files.h"
#include "host/string_table.h"
#include "host/text.h"

#include "tests/tiny_host/tiny_host.h"

struct ParserMessage::Impl {};
struct FacSTDictionary::Impl {};

namespace {

class NoPaths final : public PathFinder {
 public:
  std::string ProgramPath() const override { return {}; }
  std::string ResourcePath() const override { return {}; }
  std::string TemporaryPath() const override { return {}; }
  std::string LanguagePath() const override { return {}; }
  std::string StringTablePath() const override { return {}; }
};

}  // namespace

ParserMessage::ParserMessage() = default;
ParserMessage::~ParserMessage() = default;
void ParserMessage::SetCommandName(const std::string&) {}
void ParserMessage::SetProcedureTitle(const std::string&) {}
std::string ParserMessage::GetTranslatedText(
    const std::string& key, const char*, const char*, const char*, const char*, const char*) const {
  return key;
}

FacSTDictionary::FacSTDictionary(const std::string&) {}
FacSTDictionary::~FacSTDictionary() = default;
void FacSTDictionary::SetProcedure(const std::string&) {}
void FacSTDictionary::SetGlobalStringTable(const std::string&) {}
std::string FacSTDictionary::LookUp(const std::string& key) const { return key; }
std::string FacSTDictionary::LookUp(const std::string& key, int32_t& code) const {
  code = 1;
  return key;
}

PathFinder* PathFactory::getPathInstance() {
  static NoPaths paths;
  return &paths;
}
PathFinder* PathFactory::getPathInstance(int32_t) { return getPathInstance(); }

std::string FetchFile::fetch(const std::string&, bool, bool) {
  tiny::count("FetchFile::fetch");
  return "<chart/>";
}

int VELTMBmbclen_A(const char*) { return 1; }
