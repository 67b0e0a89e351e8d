// Folders of files: made where they are missing, and rid of what an earlier report left in them.
#pragma once

#include <filesystem>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "app/new_file.h"

namespace hierfit::app {

/// The folders that a run makes; those that have nothing in them in the end go. For any thread.
class NewFolders {
 public:
  NewFolders() = default;
  ~NewFolders();
  NewFolders(const NewFolders&) = delete;
  NewFolders& operator=(const NewFolders&) = delete;

  /// Makes a folder and those around it, where they are not there yet. Throws `FileError`.
  void make(const std::string& path);

 private:
  std::mutex mutex_;
  std::vector<std::filesystem::path> made_;  ///< each behind the one that it is in
};

/// The files of reports in a folder. A list in the folder, ".hierfit", has the names of those that
/// were written there, by form, so that the next report takes away those of its forms that it has
/// no more. Other files in the folder stay.
class ReportFiles {
 public:
  /// Reads the list. Throws `FileError`, as all operations do.
  explicit ReportFiles(std::string folder);

  const std::string& folder() const { return folder_; }
  /// The report has this file of this form now.
  void add(std::string_view form, const std::string& name);
  /// Has the disk take the new list, which counts once it is in place.
  void write_list();
  /// Takes the old files away that are of the same forms as the new ones, and then the old list.
  void replace_old();

 private:
  /// A file is "FORM NAME".
  using Entries = std::set<std::string>;

  bool is_of_this_report(std::string_view entry) const;

  std::string folder_;
  Entries old_;
  Entries new_;
  std::set<std::string, std::less<>> forms_;
  NewFile list_;
};

}  // namespace hierfit::app
