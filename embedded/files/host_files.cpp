// File access and the directories of the host.
#include <filesystem>

#include "host/files.h"
#include "host/string_table.h"

#include "embedded/chart/parse_markup.h"
#include "embedded/error.h"
#include "embedded/files/paths.h"
#include "embedded/files/whole_file.h"
#include "embedded/session_state.h"

namespace {

using hierfit::Session;

/// Directories of one session.
class SessionPaths final : public PathFinder {
 public:
  SessionPaths(std::string resources, const std::string& language)
      : resources_(std::move(resources)), table_(LanguagePath() + language + ".mo") {}

  std::string ProgramPath() const override {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    return program.parent_path().string() + "/";
  }
  std::string ResourcePath() const override { return resources_ + "/"; }
  std::string TemporaryPath() const override {
    std::error_code error;
    return std::filesystem::temp_directory_path(error).string() + "/";
  }
  std::string LanguagePath() const override { return resources_ + "/locale/"; }
  std::string StringTablePath() const override { return table_; }

 private:
  std::string resources_;
  std::string table_;
};

/// The text of a chart template; nothing when the file is of no use.
std::string text_or_nothing(const std::string& path) {
  try {
    std::string text = hierfit::read_whole_file(path);
    const hierfit::chart::Element root = hierfit::chart::parse_markup(text, path);
    if (root.name != "chart") throw hierfit::FileError({path, 1, 1}, "the root is no chart");
    return text;
  } catch (const hierfit::Error& error) {
    hierfit::note_shortfall(hierfit::Shortfall::Of::ProgramFile, error);
    return {};
  }
}

}  // namespace

namespace hierfit {

std::shared_ptr<PathFinder> make_paths(const std::string& resources, const std::string& language) {
  return std::make_shared<SessionPaths>(resources, language);
}

}  // namespace hierfit

std::string FetchFile::fetch(const std::string& path, bool asText, bool quiet) {
  std::string text = text_or_nothing(path);
  hierfit::journal::note(hierfit::journal_of_thread(), "FetchFile::fetch", path, asText, quiet,
                         hierfit::journal::Result{text});
  return text;
}

PathFinder* PathFactory::getPathInstance() { return Session::current().inputs.paths.get(); }

PathFinder* PathFactory::getPathInstance(int32_t) { return getPathInstance(); }
