# Writes the source that holds the built-in templates and the style sheet:
# cmake -DDIRECTORY=... -DNAMES=... -DOUTPUT=... -P embed_templates.cmake
set(rows "")
foreach(name ${NAMES})
  file(READ ${DIRECTORY}/${name}.xml text)
  string(APPEND rows "    {\"${name}\", R\"_xml_(${text})_xml_\"},\n")
endforeach()
file(READ ${DIRECTORY}/style.xml style)
file(WRITE ${OUTPUT} "// Made from templates/.
#include \"embedded/chart/style.h\"

namespace hierfit::chart {
namespace {

struct BuiltIn {
  std::string_view name;
  std::string_view text;
};
constexpr BuiltIn kBuiltIns[] = {
${rows}};

}  // namespace

std::string_view built_in_template(std::string_view name) {
  for (const BuiltIn& each : kBuiltIns) {
    if (each.name == name) return each.text;
  }
  return {};
}

const std::string_view kStyleSheet = R\"_xml_(${style})_xml_\";

}  // namespace hierfit::chart
")
