#include "report/docx/package.h"

#include <memory>
#include <stdexcept>
#include <zip.h>

namespace hierfit::report::docx {
namespace {

/// The first day that an archive can name.
constexpr zip_uint16_t kDate = (1 << 5) | 1;

struct Release {
  void operator()(zip_t* archive) const { zip_discard(archive); }
  void operator()(zip_source_t* source) const { zip_source_free(source); }
};

[[noreturn]] void fail() { throw std::runtime_error("the document cannot be packed"); }

void add(zip_t* archive, const Part& part) {
  zip_source_t* source = zip_source_buffer(archive, part.content.data(), part.content.size(), 0);
  if (source == nullptr) fail();
  const zip_int64_t index = zip_file_add(archive, part.name.c_str(), source, ZIP_FL_ENC_UTF_8);
  if (index < 0) {
    zip_source_free(source);
    fail();
  }
  if (zip_file_set_dostime(archive, static_cast<zip_uint64_t>(index), 0, kDate, 0) != 0) fail();
}

std::string contents_of(zip_source_t* source) {
  zip_stat_t stat;
  if (zip_source_stat(source, &stat) != 0 || zip_source_open(source) != 0) fail();
  std::string bytes(static_cast<size_t>(stat.size), '\0');
  const zip_int64_t got = zip_source_read(source, bytes.data(), bytes.size());
  zip_source_close(source);
  if (got != static_cast<zip_int64_t>(bytes.size())) fail();
  return bytes;
}

}  // namespace

std::string packed(const std::vector<Part>& parts) {
  const std::unique_ptr<zip_source_t, Release> source(
      zip_source_buffer_create(nullptr, 0, 0, nullptr));
  if (source == nullptr) fail();
  std::unique_ptr<zip_t, Release> archive(
      zip_open_from_source(source.get(), ZIP_TRUNCATE, nullptr));
  if (archive == nullptr) fail();
  zip_source_keep(source.get());  // the archive lets go of it when it is closed
  for (const Part& part : parts)
    add(archive.get(), part);
  if (zip_close(archive.get()) != 0) fail();
  static_cast<void>(archive.release());
  return contents_of(source.get());
}

}  // namespace hierfit::report::docx
