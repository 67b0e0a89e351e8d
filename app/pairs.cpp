#include "app/pairs.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <iterator>
#include <map>
#include <unordered_map>

#include "app/options.h"
#include "embedded/error.h"

namespace hierfit::app {
namespace {

namespace fs = std::filesystem;

constexpr const char* kDictionary = "dictionary.json";
constexpr const char* kFit = "fit.json";
constexpr std::string_view kFitEnding = ".json";
/// The index of the reports has this name.
constexpr const char* kIndex = "index";

std::string lower_case(std::string text) {
  std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

/// Other files in a folder end in .json, too.
bool is_fit_of_folder(const fs::path& path) {
  const std::string name = lower_case(path.filename().string());
  return name == kFit || name.ends_with(std::string(".") + kFit);
}

/// The documents that lie side by side.
struct Neighbours {
  std::vector<fs::path> models;
  std::vector<fs::path> results;
  std::vector<fs::path> fits;
  bool dictionary = false;
};

/// All documents below a folder, by the folder they are in, and the folders that cannot be read.
struct Tree {
  std::map<fs::path, Neighbours> documents;
  std::vector<FileError> unreadable;
};

void add_document(const fs::path& path, Neighbours& here) {
  const std::string ending = lower_case(path.extension().string());
  if (ending == ".pmml") here.models.push_back(path);
  if (ending == ".xml") here.results.push_back(path);
  if (path.filename() == kDictionary) here.dictionary = true;
  if (is_fit_of_folder(path)) here.fits.push_back(path);
}

/// Adds what is in one folder to the tree, and the folders in it to those that are left to read.
void read_folder(const fs::path& here, Tree& tree, std::vector<fs::path>& left) {
  std::error_code error;
  std::error_code unknown;
  fs::directory_iterator entry(here, error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    if (entry->is_directory(unknown) && !entry->is_symlink(unknown)) {
      left.push_back(entry->path());
    } else if (entry->is_regular_file(unknown)) {
      add_document(entry->path(), tree.documents[here]);
    }
  }
  if (error) {
    tree.unreadable.push_back({{here.string(), 0, 0}, "cannot be read: " + error.message()});
  }
}

Tree tree_below(const fs::path& folder) {
  Tree tree;
  for (std::vector<fs::path> left = {folder}; !left.empty();) {
    const fs::path here = std::move(left.back());
    left.pop_back();
    read_folder(here, tree, left);
  }
  for (auto& [path, here] : tree.documents) {
    std::ranges::sort(here.models);
    std::ranges::sort(here.results);
    std::ranges::sort(here.fits);
  }
  std::ranges::sort(tree.unreadable, {}, [](const FileError& error) { return error.where().file; });
  return tree;
}

/// The result document of a model document, or nothing.
fs::path result_of(const fs::path& model, const Neighbours& here) {
  const auto same = std::ranges::find(here.results, model.stem(), &fs::path::stem);
  if (same != here.results.end()) return *same;
  if (here.models.size() == 1 && here.results.size() == 1) return here.results[0];
  return {};
}

/// The name of a document without its ending, never one that stands for a folder, as of "...pmml".
std::string stem_of(const fs::path& document) {
  const std::string stem = document.stem().string();
  return stem.find_first_not_of('.') == std::string::npos ? "_" + stem : stem;
}

/// A model document that is alone in its folder is called as the folder.
std::string name_of(const fs::path& model, const fs::path& folder, const Neighbours& here) {
  const fs::path inside = model.lexically_relative(folder);
  const fs::path parent = inside.parent_path();
  if (here.models.size() == 1 && !parent.empty()) return parent.generic_string();
  return (parent / stem_of(inside)).generic_string();
}

/// "a/fit.json" is called "a", "a/x.fit.json" and "a/x.json" are called "a/x".
std::string name_of_fit(const fs::path& inside) {
  const fs::path parent = inside.parent_path();
  fs::path name = inside.stem();
  if (lower_case(inside.filename().string()) == kFit)
    return parent.empty() ? "fit" : parent.generic_string();
  if (lower_case(name.extension().string()) == ".fit") name = name.stem();
  return (parent / name).generic_string();
}

/// Whether an input is a fit and needs no other beside it.
bool is_fit(const std::vector<std::string>& inputs, size_t at) {
  if (inputs[at] == "-" && inputs.size() == 1) return true;
  return lower_case(inputs[at]).ends_with(kFitEnding);
}

/// Collects pairs and keeps their names apart.
class Collector {
 public:
  explicit Collector(const std::string& dictionary) : dictionary_(dictionary) {}

  void add_folder(const std::string& input) {
    const fs::path folder = fs::path(input).lexically_normal();
    const size_t before = found_.pairs.size();
    const Tree tree = tree_below(folder);
    for (const auto& [path, here] : tree.documents) {
      for (const fs::path& model : here.models) {
        const bool own = dictionary_.empty() && here.dictionary;
        add({{},
             model.string(),
             result_of(model, here).string(),
             own ? (path / kDictionary).string() : dictionary_,
             name_of(model, folder, here)});
      }
      if (!here.models.empty()) continue;
      for (const fs::path& fit : here.fits)
        add_pair_of_fit(fit.string(), name_of_fit(fit.lexically_relative(folder)));
    }
    std::ranges::copy(tree.unreadable, std::back_inserter(found_.unreadable));
    if (found_.pairs.size() == before && tree.unreadable.empty()) {
      throw UsageError("the folder \"" + input +
                       "\" holds no model document (.pmml) and no fit (fit.json)");
    }
    found_.several = true;
  }

  void add_documents(const std::string& model, const std::string& result) {
    const fs::path path = fs::absolute(model).lexically_normal();
    std::string name = model == "-" ? "standard-input" : stem_of(path);
    const std::string longer = path.parent_path().filename().string() + "-" + name;
    if (uses_.contains(lower_case(name))) name = longer;
    add({{}, model, result, dictionary_, name});
  }

  void add_fit(const std::string& fit) {
    const fs::path path = fs::absolute(fit).lexically_normal();
    const bool is_of_folder = lower_case(path.filename().string()) == kFit;
    const fs::path inside =
        is_of_folder ? path.parent_path().filename() / path.filename() : path.filename();
    add_pair_of_fit(fit, fit == "-" ? "standard-input" : name_of_fit(inside));
  }

  Pairs take() {
    if (found_.pairs.empty()) throw found_.unreadable.front();
    found_.several = found_.several || found_.pairs.size() > 1;
    return std::move(found_);
  }

 private:
  void add_pair_of_fit(const std::string& fit, const std::string& name) {
    add({fit, {}, {}, dictionary_, name});
  }

  void add(Pair pair) {
    const std::string wanted = pair.name;
    while (uses_[lower_case(pair.name)]++ > 0) {
      pair.name = wanted + "-" + std::to_string(uses_[lower_case(wanted)]);
    }
    found_.pairs.push_back(std::move(pair));
  }

  const std::string& dictionary_;
  Pairs found_;
  std::unordered_map<std::string, size_t> uses_ = {{kIndex, 1}};  ///< by name in small letters
};

}  // namespace

Pairs find_pairs(const std::vector<std::string>& inputs, const std::string& dictionary) {
  Collector collector(dictionary);
  std::error_code unknown;
  for (size_t at = 0; at < inputs.size(); ++at) {
    if (fs::is_directory(inputs[at], unknown)) {
      collector.add_folder(inputs[at]);
    } else if (is_fit(inputs, at)) {
      collector.add_fit(inputs[at]);
    } else if (at + 1 == inputs.size() || fs::is_directory(inputs[at + 1], unknown)) {
      throw UsageError("\"" + inputs[at] + "\" needs a result document behind it");
    } else {
      collector.add_documents(inputs[at], inputs[at + 1]);
      ++at;
    }
  }
  return collector.take();
}

}  // namespace hierfit::app
