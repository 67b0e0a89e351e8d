// The string table library over the tables of the session.
#include <array>

#include "host/string_table.h"

#include "embedded/session_state.h"
#include "embedded/strings/pattern.h"
#include "embedded/strings/string_table.h"

using hierfit::StringTable;

namespace {

const hierfit::Inputs& inputs() { return hierfit::Session::current().inputs; }

hierfit::PatternArgument argument(const char* text) {
  return hierfit::output::Text{text == nullptr ? "" : text, {}};
}

/// The table at a path: that of the session, or a file of its own.
struct OpenTable {
  explicit OpenTable(const std::string& path)
      : table(path == inputs().paths->StringTablePath() ? nullptr
                                                        : std::make_unique<StringTable>(path)) {}

  const StringTable& get() const { return table ? *table : inputs().strings; }

  std::unique_ptr<StringTable> table;
};

}  // namespace

struct ParserMessage::Impl {
  std::string command;
  std::string procedure;
};

ParserMessage::ParserMessage() : impl_(std::make_unique<Impl>()) {}
ParserMessage::~ParserMessage() = default;

void ParserMessage::SetCommandName(const std::string& name) { impl_->command = name; }
void ParserMessage::SetProcedureTitle(const std::string& title) { impl_->procedure = title; }

std::string ParserMessage::GetTranslatedText(const std::string& key,
                                             const char* p1,
                                             const char* p2,
                                             const char* p3,
                                             const char* p4,
                                             const char* p5) const {
  const std::array arguments = {argument(p1), argument(p2), argument(p3), argument(p4),
                                argument(p5)};
  return hierfit::fill_pattern(inputs().strings.text(key), arguments).shown;
}

struct FacSTDictionary::Impl {
  OpenTable table;
  std::unique_ptr<OpenTable> global;  ///< asked when the first table does not hold a key
  std::string procedure;
};

FacSTDictionary::FacSTDictionary(const std::string& path)
    : impl_(std::make_unique<Impl>(Impl{OpenTable(path), nullptr, {}})) {}
FacSTDictionary::~FacSTDictionary() = default;

void FacSTDictionary::SetProcedure(const std::string& title) { impl_->procedure = title; }

void FacSTDictionary::SetGlobalStringTable(const std::string& path) {
  impl_->global = std::make_unique<OpenTable>(path);
}

std::string FacSTDictionary::LookUp(const std::string& key) const {
  int32_t code = 0;
  return LookUp(key, code);
}

std::string FacSTDictionary::LookUp(const std::string& key, int32_t& code) const {
  const StringTable* table = &impl_->table.get();
  if (!table->holds(key) && impl_->global) table = &impl_->global->get();
  code = table->holds(key) ? 0 : 1;
  return std::string(table->text(key));
}
