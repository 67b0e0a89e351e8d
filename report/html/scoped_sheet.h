// The style sheet of the page, held to one element of another page.
#pragma once

#include <string>
#include <string_view>

namespace hierfit::report::html {

/// The rules of a sheet as they hold inside elements of the class `scope`, which stands for the
/// root of the page. Rules for what only a whole page has (its body, contents, tools and paper) and
/// comments are left out. For style sheets as this folder has them: no braces, brackets or commas
/// in strings.
std::string scoped_sheet(std::string_view sheet, std::string_view scope);

}  // namespace hierfit::report::html
