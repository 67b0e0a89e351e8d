#include "app/collisions.h"

#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace hierfit::app {
namespace {

namespace fs = std::filesystem;

/// What the system tells a file by.
using Identity = std::pair<dev_t, ino_t>;

std::optional<struct stat> facts_of(const std::string& path, int stream) {
  struct stat facts {};
  const int failed =
      path == kStandardStream ? ::fstat(stream, &facts) : ::stat(path.c_str(), &facts);
  if (failed != 0) return std::nullopt;
  return facts;
}

/// Devices and pipes are no files: what goes to them replaces nothing.
std::optional<Identity> file_of(const std::string& path, int stream) {
  const auto facts = facts_of(path, stream);
  if (!facts || !S_ISREG(facts->st_mode)) return std::nullopt;
  return Identity(facts->st_dev, facts->st_ino);
}

bool is_device(const std::string& path) {
  const auto facts = facts_of(path, STDOUT_FILENO);
  return path != kStandardStream && facts && !S_ISREG(facts->st_mode) && !S_ISDIR(facts->st_mode);
}

/// One name of a path that may not be there yet.
std::string settled(const std::string& path) {
  std::error_code error;
  const fs::path whole = fs::weakly_canonical(fs::absolute(path), error);
  const std::string name = (error ? fs::path(path) : whole).lexically_normal().string();
  return name.ends_with('/') ? name.substr(0, name.size() - 1) : name;
}

/// Finds collisions among the outputs that it is told of.
class Collisions {
 public:
  void read(const std::string& path) {
    if (const auto file = file_of(path, STDIN_FILENO)) inputs_.emplace(*file, path);
  }

  void write_file(const std::string& path) {
    const auto file = file_of(path, STDOUT_FILENO);
    const auto input = file ? inputs_.find(*file) : inputs_.end();
    if (input != inputs_.end()) {
      throw UsageError("the output \"" + path + "\" would replace the input \"" + input->second +
                       "\"");
    }
    if (is_device(path)) return;
    take(path == kStandardStream ? path : settled(path), path);
  }

  /// Files of two forms in one folder have different endings.
  void write_folder(const std::string& path, std::string_view form) {
    take(settled(path) + "/*." + std::string(form), path);
  }

 private:
  void take(const std::string& place, const std::string& path) {
    if (!places_.insert(place).second) throw UsageError("two outputs go to \"" + path + "\"");
  }

  std::map<Identity, std::string> inputs_;
  std::set<std::string> places_;
};

void write_all(const Job& job, Collisions& collisions) {
  for (const Output& output : job.outputs) {
    if (output.folder) {
      collisions.write_folder(output.path, output.form->name);
    } else {
      collisions.write_file(output.path);
    }
  }
  for (const report::ChartForm* form : job.chart_forms)
    collisions.write_folder(job.charts_folder, form->name);
  if (!job.journal.empty()) collisions.write_file(job.journal);
}

}  // namespace

void refuse_collisions(std::span<const Job> jobs, const std::string& index) {
  Collisions collisions;
  for (const Job& job : jobs) {
    for (const std::string& input :
         {job.pair.fit, job.pair.model, job.pair.result, job.pair.dictionary}) {
      if (!input.empty()) collisions.read(input);
    }
  }
  for (const Job& job : jobs)
    write_all(job, collisions);
  if (!index.empty()) collisions.write_file(index);
}

}  // namespace hierfit::app
