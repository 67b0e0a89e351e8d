#include "app/delivery.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include "embedded/error.h"

namespace hierfit::app {
namespace {

namespace fs = std::filesystem;

/// Files that stay open until the end; a folder may get any number of them, on several threads.
constexpr size_t kMostOpen = 16;

}  // namespace

JournalFile::JournalFile(const std::string& path)
    : path_(path), file_(path), stream_(file_.writable_path(), std::ios::binary) {
  check();
}

void JournalFile::finish() {
  stream_.close();
  check();
  file_.flush();
}

void JournalFile::check() const {
  if (!stream_) throw FileError({path_, 0, 0}, "the journal cannot be written");
}

void Delivery::add_file(const std::string& path, std::string_view text) {
  NewFile& file = files_.emplace_back(path);
  file.write(text);
  file.flush();
  if (files_.size() > kMostOpen) file.set_aside();
}

void Delivery::add_folder(const std::string& path,
                          std::string_view form,
                          const std::vector<report::File>& files) {
  new_folders_.make(path);
  ReportFiles& folder = report_files_of(path);
  for (const report::File& file : files) {
    add_file((fs::path(path) / file.name).string(), file.text);
    folder.add(form, file.name);
  }
}

void Delivery::add_standard_output(std::string text) {
  standard_output_.push_back(std::move(text));
}

/// Two outputs may be files of one folder.
ReportFiles& Delivery::report_files_of(const std::string& path) {
  const auto known = std::ranges::find_if(folders_, [&](const ReportFiles& folder) {
    std::error_code unknown;
    return fs::equivalent(folder.folder(), path, unknown);
  });
  return known != folders_.end() ? *known : folders_.emplace_back(path);
}

void Delivery::write_out() {
  for (ReportFiles& folder : folders_)
    folder.write_list();
  for (const std::string& text : standard_output_) {
    if (write_standard_output(text) == Written::PipeClosed) break;
  }
}

void Delivery::put_in_place() {
  for (NewFile& file : files_)
    file.put_in_place();
  for (ReportFiles& folder : folders_)
    folder.replace_old();
}

}  // namespace hierfit::app
