// Numbers and texts of the charts: how they are printed, read and escaped.
#pragma once

#include <string>
#include <string_view>

#include "host/chart_document.h"
#include "host/dictionary.h"

/// The print formats that the charts make themselves.
inline constexpr VELT_Format kPlainFormat{.width = 40, .type = 5, .decimals = 2};
inline constexpr VELT_Format kFineFormat{.width = 40, .type = 5, .decimals = 3};

/// Whether a variable holds strings. False without a variable.
bool IsString(const VELT_Variable* variable);

/// A number with six significant digits, as an output stream prints it by default, in any locale.
std::string NumberText(double number);

/// A number in a print format.
std::string FormattedNumber(double number, VELT_Format format);

/// Reads a number from the start of a text, as an input stream of the classic locale does: blanks
/// ahead of it are skipped, and a number out of range is the greatest of its sign. True when the
/// whole text is a number. `number` is in any case what was read, 0 when nothing could be.
bool ParseNumber(std::string_view text, double& number);

/// The same without the answer, for those who need a number for every text.
double NumberIn(std::string_view text);

/// Rewrites a text of a label for XML text: markup characters become entities, line ends become
/// "<BR/>", and the host's line-drawing bytes the characters that they draw.
void EscapeChartText(std::string& text);

/// A text of a document as XML text or attribute value that reads back as it was.
std::string EscapeXmlText(std::string_view text);

/// A text as it goes into a chart document: UTF-8 without the characters that XML does not know.
std::string DocumentText(std::string text);
std::string DocumentText(const ChartString& text);

/// The label of a variable, or its name without one, escaped.
ChartString VariableChartLabel(const VELT_Variable& variable);
