#include "tests/report/markup_reader.h"

#include <doctest/doctest.h>
#include <zip.h>

#include "embedded/chart/parse_markup.h"

namespace hierfit::test {

Markup markup_of(const std::string& text) {
  Markup markup;
  output::Element root = chart::parse_markup(text, "picture");
  for (const output::Element* element : output::elements_of(root)) {
    markup.tags.insert(element->name);
    for (const auto& [key, value] : element->attributes) {
      if (key == "id") markup.ids.insert(value);
      if (key == "style" || key.starts_with("on")) markup.styled = true;
    }
    const bool reached = element->attribute("tabindex") != nullptr;
    markup.reachable += reached ? 1 : 0;
    markup.unnamed += reached && element->value("aria-label").empty() ? 1 : 0;
  }
  return markup;
}

std::string part(const std::string& package, const std::string& name) {
  zip_source_t* source = zip_source_buffer_create(package.data(), package.size(), 0, nullptr);
  zip_t* archive = zip_open_from_source(source, ZIP_RDONLY, nullptr);
  REQUIRE(archive != nullptr);
  std::string content;
  zip_stat_t stat;
  if (zip_stat(archive, name.c_str(), 0, &stat) == 0) {
    content.resize(stat.size);
    zip_file_t* file = zip_fopen(archive, name.c_str(), 0);
    CHECK(zip_fread(file, content.data(), content.size()) == static_cast<zip_int64_t>(stat.size));
    zip_fclose(file);
  }
  zip_discard(archive);
  return content;
}

}  // namespace hierfit::test
