#include "bench/fit_documents.h"

#include <cmath>
#include <cstdio>
#include <functional>

namespace hierfit::bench {
namespace {

/// Digits as an engine writes them: all of a double's.
std::string digits(size_t seed) {
  char buffer[40];
  const double value = std::sin(static_cast<double>(seed) + 0.5) * 12.5;
  const int length = std::snprintf(buffer, sizeof buffer, "%.15g", value);
  return {buffer, static_cast<size_t>(length)};
}

std::string list(size_t count, const std::function<std::string(size_t)>& item) {
  std::string text = "[";
  for (size_t at = 0; at < count; ++at)
    (text += at > 0 ? ", " : "") += item(at);
  return text + "]";
}

std::string document(const std::string& levels, const std::string& parts) {
  return R"({"hierfit": "hierfit-fit-1", "variables": [{"name": "y"}, {"name": "x"},
{"name": "s", "level": "nominal"}, {"name": "g", "values": )" +
         levels + R"(}], "target": {"variable": "y"}, "distribution": "normal", "link": "identity",
)" + parts +
         "}";
}

std::string coefficient(size_t at) {
  const std::string row = R"("estimate": )" + digits(at) + R"(, "std.error": 0.25, "df": 20})";
  if (at == 0) return "{" + row;
  return R"({"effect": 0, "levels": {"g": )" + std::to_string(at) + "}, " + row;
}

constexpr const char* kIntercept = R"("coefficients": [{"estimate": 1, "std.error": 0.5}],
)";

}  // namespace

std::string fit_of_coefficients(size_t count) {
  const auto level = [](size_t at) { return std::to_string(at); };
  return document(
      list(count + count / 2, level),
      R"("fixed": {"effects": [{"fields": ["g"]}]}, "coefficients": )" + list(count, coefficient));
}

std::string fit_of_records(size_t count) {
  const auto subject = [](size_t at) { return "\"s" + std::to_string(at / 10 % 5000) + "\""; };
  const auto target = [](size_t at) { return digits(at); };
  const auto predicted = [](size_t at) { return digits(at / 3); };
  return document("[1, 2]", kIntercept + std::string(R"("residual": {"subjects": ["s"]},
"data": {"columns": {"y": )") + list(count, target) +
                                R"(, "s": )" + list(count, subject) + R"(}, "predicted": )" +
                                list(count, predicted) + "}");
}

std::string fit_of_pairs(size_t count) {
  return document("[1, 2]",
                  kIntercept + std::string(R"("summaries": {"predicted": {"observed": )") +
                      list(count, digits) + R"(, "predicted": )" + list(count, digits) + "}}");
}

}  // namespace hierfit::bench
