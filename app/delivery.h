// What a job writes, on its way to its places.
#pragma once

#include <deque>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "app/folders.h"
#include "app/new_file.h"
#include "report/report.h"

namespace hierfit::app {

/// The journal on its way to a file. Throws `FileError`, as all of this does.
class JournalFile {
 public:
  explicit JournalFile(const std::string& path);

  std::ostream& stream() { return stream_; }
  /// Has the disk take it.
  void finish();
  void put_in_place() { file_.put_in_place(); }

 private:
  void check() const;

  std::string path_;
  NewFile file_;
  std::ofstream stream_;
};

/// Everything else that a job writes: first beside its place, then standard output, and only then
/// into place.
class Delivery {
 public:
  /// `folders` makes those that are not there.
  explicit Delivery(NewFolders& folders) : new_folders_(folders) {}

  void add_file(const std::string& path, std::string_view text);
  void add_folder(const std::string& path,
                  std::string_view form,
                  const std::vector<report::File>& files);
  void add_standard_output(std::string text);

  /// The last that may fail or take its time.
  void write_out();
  void put_in_place();

 private:
  ReportFiles& report_files_of(const std::string& path);

  NewFolders& new_folders_;
  std::deque<NewFile> files_;
  std::deque<ReportFiles> folders_;
  std::vector<std::string> standard_output_;
};

}  // namespace hierfit::app
