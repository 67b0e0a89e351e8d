#include "app/folders.h"

#include <cerrno>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "embedded/error.h"
#include "embedded/files/whole_file.h"

namespace hierfit::app {
namespace {

namespace fs = std::filesystem;

constexpr const char* kList = ".hierfit";
constexpr const char* kHead = "# Files of reports, by form. The next report may take them away.\n";

std::string path_in(const std::string& folder, std::string_view name) {
  return (fs::path(folder) / name).string();
}

std::string_view form_of(std::string_view entry) { return entry.substr(0, entry.find(' ')); }
std::string_view name_of(std::string_view entry) {
  return entry.substr(std::min(entry.find(' '), entry.size() - 1) + 1);
}

/// Whether a line of a list names a file of the folder, as our lists do.
bool is_entry(std::string_view line) {
  const std::string_view name = line.empty() ? line : name_of(line);
  return !line.starts_with('#') && !name.empty() && name.find('/') == std::string_view::npos &&
         name != "." && name != "..";
}

std::set<std::string> entries_of(const std::string& list) {
  std::set<std::string> entries;
  std::error_code unknown;
  if (!fs::exists(list, unknown)) return entries;
  const std::string text = read_whole_file(list);
  std::string_view rest = text;
  while (!rest.empty()) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    if (is_entry(line)) entries.emplace(line);
  }
  return entries;
}

}  // namespace

NewFolders::~NewFolders() {
  while (!made_.empty()) {
    ::rmdir(made_.back().c_str());  // fails when there is something in it
    made_.pop_back();
  }
}

void NewFolders::make(const std::string& path) {
  const std::lock_guard lock(mutex_);
  std::error_code error;
  std::vector<fs::path> missing;
  for (fs::path folder = path; !folder.empty() && !fs::is_directory(folder, error);
       folder = folder.parent_path()) {
    missing.push_back(folder);
  }
  error.clear();
  for (; !missing.empty() && !error; missing.pop_back()) {
    if (fs::create_directory(missing.back(), error)) made_.push_back(missing.back());
  }
  if (error) throw FileError({path, 0, 0}, "cannot be made: " + error.message());
}

ReportFiles::ReportFiles(std::string folder)
    : folder_(std::move(folder)),
      old_(entries_of(path_in(folder_, kList))),
      list_(path_in(folder_, kList)) {}

void ReportFiles::add(std::string_view form, const std::string& name) {
  forms_.emplace(form);
  new_.insert(std::string(form) + ' ' + name);
}

bool ReportFiles::is_of_this_report(std::string_view entry) const {
  return forms_.contains(form_of(entry));
}

void ReportFiles::write_list() {
  std::string text = kHead;
  Entries entries = new_;
  for (const std::string& entry : old_) {
    if (!is_of_this_report(entry)) entries.insert(entry);
  }
  for (const std::string& entry : entries)
    text += entry + '\n';
  list_.write(text);
  list_.flush();
}

void ReportFiles::replace_old() {
  for (const std::string& entry : old_) {
    if (!is_of_this_report(entry) || new_.contains(entry)) continue;
    const std::string file = path_in(folder_, name_of(entry));
    if (::unlink(file.c_str()) != 0 && errno != ENOENT) {
      throw FileError({file, 0, 0},
                      "cannot be taken away: " + std::generic_category().message(errno));
    }
  }
  list_.put_in_place();
}

}  // namespace hierfit::app
