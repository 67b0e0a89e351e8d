// Writes the result document, part by part.
#pragma once

#include <string>
#include <string_view>

#include "import/prepared.h"
#include "import/xml_writer.h"

namespace hierfit::fit {

/// The result document, StatXML.
std::string result_document(const Prepared& prepared);

/// Its parts, in their order.
void write_settings(const Prepared& prepared, XmlWriter& xml);
void write_string_maps(const Prepared& prepared, XmlWriter& xml);
void write_diagnostics(const Prepared& prepared, XmlWriter& xml);
void write_means(const Prepared& prepared, XmlWriter& xml);
void write_estimates(const Prepared& prepared, XmlWriter& xml);

/// The number of the string map of the fixed part; that of random block k is one more than k.
inline constexpr size_t kFixedMap = 0;

/// "P3", the name of a fixed term; "e3", of a term of a random block.
std::string fixed_name(size_t term);
std::string random_name(size_t term);

/// A `RegressionParameter` element.
void write_term(const DesignTerm& term,
                std::string_view name,
                const std::vector<Effect>& effects,
                const Variables& variables,
                XmlWriter& xml);
/// A `Statistic` element; a number that does not exist is an empty text.
void write_statistic(std::string_view name, double value, XmlWriter& xml);
/// A `SegmentInfo` element.
void write_segment(const Levels& levels, XmlWriter& xml);
/// The elements of a list of messages with these keys.
void write_message(std::string_view key, std::string_view value, XmlWriter& xml);

}  // namespace hierfit::fit
