// What the values of the chart libraries look like in the journal.
#pragma once

#include <string>
#include <string_view>

#include "host/chart_document.h"
#include "host/dictionary.h"

#include "embedded/journal/journal.h"

inline void append_json(std::string& out, const VELT_Format& format) {
  using hierfit::journal::append_json;
  out += "{\"width\":";
  append_json(out, static_cast<int32_t>(format.width));
  out += ",\"type\":";
  append_json(out, static_cast<int32_t>(format.type));
  out += ",\"decimals\":";
  append_json(out, static_cast<int32_t>(format.decimals));
  out += '}';
}

inline void append_json(std::string& out, const VELT_Format* format) {
  if (format == nullptr) return hierfit::journal::append_json(out, nullptr);
  append_json(out, *format);
}

inline void append_json(std::string& out, VELT_Variable* variable) {
  using hierfit::journal::append_json;
  if (variable == nullptr) return append_json(out, nullptr);
  out += "{\"variable\":";
  append_json(out, variable->GetName());
  out += '}';
}

inline void append_json(std::string& out, const ChartString& text) {
  hierfit::journal::append_json(out, std::u16string_view(text.xc_str()));
}
