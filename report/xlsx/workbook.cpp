#include "report/xlsx/workbook.h"

#include <algorithm>
#include <stdexcept>
#include <sys/mman.h>
#include <unistd.h>

#include "output/utf8.h"

namespace hierfit::report::xlsx {
namespace {

constexpr char kFontName[] = "Arial";
constexpr lxw_color_t kLinkColour = 0x1D4F91;
constexpr lxw_color_t kQuietColour = 0x555B63;
constexpr std::string_view kEllipsis = "\u2026";

constexpr uint8_t kRules[] = {LXW_BORDER_NONE, LXW_BORDER_HAIR, LXW_BORDER_THIN, LXW_BORDER_MEDIUM};

[[noreturn]] void fail(const char* reason) {
  throw std::runtime_error(std::string("the workbook cannot be made: ") + reason);
}

void require(lxw_error error) {
  if (error != LXW_NO_ERROR) fail(lxw_strerror(error));
}

/// As much of the runs as a cell takes, those that are empty left out.
std::vector<Run> fitting(const std::vector<Run>& runs) {
  std::vector<Run> shown;
  size_t left = kMostCharacters - 1;
  for (const Run& run : runs) {
    std::string text = first_units(run.text, left);
    const bool cut = text.size() < run.text.size();
    left -= utf8::to_utf16(text).size();
    if (cut) text += kEllipsis;
    if (!text.empty()) shown.push_back({std::move(text), run.look});
    if (cut) break;
  }
  return shown;
}

/// What the file reads back as it was written, whatever its size.
std::string contents_of(int file) {
  std::string bytes(static_cast<size_t>(lseek(file, 0, SEEK_END)), '\0');
  for (size_t at = 0; at < bytes.size();) {
    const ssize_t got = pread(file, bytes.data() + at, bytes.size() - at, static_cast<off_t>(at));
    if (got <= 0) fail("it does not read back");
    at += static_cast<size_t>(got);
  }
  return bytes;
}

}  // namespace

Workbook::Workbook(bool sequential, bool right_to_left)
    : right_to_left_(right_to_left), file_(memfd_create("workbook", MFD_CLOEXEC)) {
  if (file_ < 0) fail("no memory for it");
  lxw_workbook_options options = {};
  options.constant_memory = sequential ? LXW_TRUE : LXW_FALSE;
  options.use_zip64 = LXW_FALSE;
  workbook_ = workbook_new_opt(("/proc/self/fd/" + std::to_string(file_)).c_str(), &options);
  if (workbook_ == nullptr) {
    close(file_);
    fail("no memory for it");
  }
  // Programs measure columns in digits of the first format's font.
  set(STAILQ_FIRST(workbook_->formats), {});
}

Workbook::~Workbook() {
  if (workbook_ != nullptr) lxw_workbook_free(workbook_);
  close(file_);
}

void Workbook::set(lxw_format* format, const Look& look) const {
  format_set_font_name(format, kFontName);
  format_set_font_size(format, look.size);
  if (look.bold) format_set_bold(format);
  if (look.italic) format_set_italic(format);
  if (look.raised) format_set_font_script(format, LXW_FONT_SUPERSCRIPT);
  if (look.link) format_set_font_color(format, kLinkColour);
  if (look.quiet) format_set_font_color(format, kQuietColour);
  if (look.wraps) format_set_text_wrap(format);
  if (!look.number.empty()) format_set_num_format(format, look.number.c_str());
  if (look.side == Side::Centre) {
    format_set_align(format, LXW_ALIGN_CENTER);
  } else if (look.side == Side::End || right_to_left_) {
    format_set_align(format, LXW_ALIGN_RIGHT);
  }
  format_set_align(format, look.low ? LXW_ALIGN_VERTICAL_BOTTOM : LXW_ALIGN_VERTICAL_TOP);
  if (look.indent > 0) format_set_indent(format, look.indent);
  format_set_top(format, kRules[static_cast<size_t>(look.above)]);
  format_set_bottom(format, kRules[static_cast<size_t>(look.below)]);
}

lxw_worksheet* Workbook::add_sheet(const std::string& name) {
  lxw_worksheet* sheet = workbook_add_worksheet(workbook_, name.c_str());
  if (sheet == nullptr) fail("a sheet cannot be added");
  return sheet;
}

lxw_format* Workbook::format(const Look& look) {
  const auto [found, fresh] = formats_.try_emplace(look, nullptr);
  if (fresh) {
    found->second = workbook_add_format(workbook_);
    if (found->second == nullptr) fail("no memory for a format");
    set(found->second, look);
  }
  return found->second;
}

std::string Workbook::take() {
  lxw_workbook* ended = workbook_;
  workbook_ = nullptr;
  require(workbook_close(ended));
  return contents_of(file_);
}

std::string first_units(std::string_view text, size_t units) {
  return std::string(utf8::first_units(text, units));
}

void write_runs(Workbook& workbook,
                lxw_worksheet* sheet,
                uint32_t row,
                uint32_t column,
                const std::vector<Run>& runs,
                const Look& cell) {
  std::vector<Run> shown = fitting(runs);
  const auto at = static_cast<lxw_col_t>(column);
  lxw_format* format = workbook.format(cell);
  if (shown.empty()) return require(worksheet_write_blank(sheet, row, at, format));
  if (shown.size() == 1 && !shown[0].look.raised) {
    Look alone = cell;
    alone.bold = shown[0].look.bold;
    alone.italic = shown[0].look.italic;
    return require(
        worksheet_write_string(sheet, row, at, shown[0].text.c_str(), workbook.format(alone)));
  }
  // A rich text has two parts at least; a lone one stands ahead of a space of no width.
  if (shown.size() == 1) shown.push_back({"\u200B", cell});
  std::vector<lxw_rich_string_tuple> parts(shown.size());
  std::vector<lxw_rich_string_tuple*> list;
  for (size_t i = 0; i < shown.size(); ++i) {
    parts[i] = {workbook.format(shown[i].look), shown[i].text.data()};
    list.push_back(&parts[i]);
  }
  list.push_back(nullptr);
  require(worksheet_write_rich_string(sheet, row, at, list.data(), format));
}

std::string sheet_name(std::string_view text) {
  std::string name;
  for (const char character : text) {
    const bool divides =
        std::string_view(" []:*?/\\'\n\"").find(character) != std::string_view::npos;
    if (!divides) {
      name += character;
    } else if (!name.empty() && name.back() != ' ') {
      name += ' ';
    }
  }
  name = first_units(name, kMostNameUnits);
  while (!name.empty() && name.back() == ' ')
    name.pop_back();
  return name;
}

double column_width(double points) {
  constexpr double kPixelsPerPoint = 96.0 / 72.0;
  constexpr double kPixelsPerUnit = 7;
  constexpr double kPadding = 16;
  return (points * kPixelsPerPoint + kPadding) / kPixelsPerUnit;
}

}  // namespace hierfit::report::xlsx
