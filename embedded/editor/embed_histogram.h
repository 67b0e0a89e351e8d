// Sets a histogram with its data into a graph.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace hierfit::editor {

/// The graph's text with the histogram in the first `inset` of its document, behind all that stands
/// ahead of that element; the rest of the text stays byte for byte. `stream` holds the data of the
/// histogram, as `chart::write_data_stream` gives them. Empty when one of the two texts is no chart
/// document, the bytes are no stream, or the graph has no place that is free.
std::string embed_histogram(std::string_view graph,
                            std::string_view histogram,
                            std::string_view stream,
                            int32_t field_type);

}  // namespace hierfit::editor
