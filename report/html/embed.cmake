# Writes the source that embeds the style sheets, one behind the other, and the script, with their
# digests: cmake -DSTYLE=...,... -DSCRIPT=... -DFRAGMENT=... -DOUTPUT=... -P embed.cmake

# The base 64 form of the SHA-256 digest of a file.
function(digest_of file result)
  set(alphabet ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/)
  file(SHA256 ${file} hex)
  # 64 hexadecimal digits and two zeros are 22 groups of three digits, two characters each; the last
  # character is padding.
  string(APPEND hex 00)
  set(text "")
  foreach(at RANGE 0 63 3)
    string(SUBSTRING ${hex} ${at} 3 digits)
    math(EXPR bits 0x${digits})
    math(EXPR high "${bits} >> 6")
    math(EXPR low "${bits} & 63")
    foreach(index ${high} ${low})
      string(SUBSTRING ${alphabet} ${index} 1 character)
      string(APPEND text ${character})
    endforeach()
  endforeach()
  string(SUBSTRING ${text} 0 43 text)
  set(${result} ${text}= PARENT_SCOPE)
endfunction()

function(embed name file result)
  digest_of(${file} digest)
  file(READ ${file} content)
  set(${result} "const Asset ${name} = {R\"_asset_(${content})_asset_\", \"sha256-${digest}\"};\n" PARENT_SCOPE)
endfunction()

set(sheets "")
string(REPLACE "," ";" STYLE "${STYLE}")
foreach(sheet ${STYLE})
  file(READ ${sheet} content)
  string(APPEND sheets "${content}")
endforeach()
file(WRITE ${OUTPUT}.css "${sheets}")

embed(kStyle ${OUTPUT}.css style)
embed(kScript ${SCRIPT} script)
embed(kFragment ${FRAGMENT} fragment)
file(WRITE ${OUTPUT} "// Made from the style sheets and the script.
#include \"report/html/assets.h\"

namespace hierfit::report::html {

${style}
${script}
${fragment}
}  // namespace hierfit::report::html
")
