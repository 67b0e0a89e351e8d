// A chart on paper: its picture, and the texts that stand around it.
#pragma once

#include <string>
#include <vector>

#include "output/document.h"

namespace hierfit::report {

struct PageChart {
  std::string title;
  std::string sub_title;           ///< empty for none
  std::vector<std::string> notes;  ///< what stands beneath
  std::string svg;                 ///< the picture without these texts
  std::string description;         ///< what it shows, for those who do not see it
};

/// Draws a chart for a page, `width` pixels wide. Texts are clean.
PageChart page_chart(const output::Chart& chart, const output::Document& document, double width);

}  // namespace hierfit::report
