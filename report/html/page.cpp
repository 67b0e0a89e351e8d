#include "report/html/page.h"

#include "report/append.h"
#include "report/html/assets.h"
#include "report/html/markup.h"

namespace hierfit::report::html {
namespace {

void append_head(std::string& out,
                 const output::Document& document,
                 std::string_view title,
                 std::string_view theme) {
  out += "<!doctype html>\n<html";
  append_attribute(out, "lang", document.language);
  out += document.right_to_left ? " dir=\"rtl\"" : " dir=\"ltr\"";
  if (theme == "light" || theme == "dark") append_attribute(out, "data-theme", theme);
  out += ">\n<head>\n<meta charset=\"utf-8\">\n";
  out += "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src '";
  out += kStyle.source;
  out += "'; script-src '";
  out += kScript.source;
  out += "'; img-src data:; base-uri 'none'; form-action 'none'\">\n";
  out += "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>";
  append_escaped(out, title);
  out += "</title>\n<style>";
  out += kStyle.content;
  out += "</style>\n</head>\n";
}

}  // namespace

void append_attribute(std::string& out, std::string_view name, std::string_view value) {
  append(out, ' ', name, "=\"");
  append_escaped(out, value);
  out += '"';
}

void append_page_begin(std::string& out,
                       const output::Document& document,
                       std::string_view title,
                       std::string_view theme) {
  append_head(out, document, title, theme);
  out += "<body>\n<a class=\"skip\" href=\"#main\">";
  append_escaped(out, document.word("Skip to the results"));
  out += "</a>\n<header>\n<h1>";
  append_escaped(out, title);
  out += "</h1>\n<button id=\"theme\" type=\"button\" hidden";
  append_attribute(out, "data-auto", document.word("Theme: automatic"));
  append_attribute(out, "data-light", document.word("Theme: light"));
  append_attribute(out, "data-dark", document.word("Theme: dark"));
  out += "></button>\n</header>\n";
}

void append_page_end(std::string& out) {
  out += "<script>";
  out += kScript.content;
  out += "</script>\n</body>\n</html>\n";
}

}  // namespace hierfit::report::html
