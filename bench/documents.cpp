#include "bench/documents.h"

#include <cmath>
#include <cstdio>
#include <functional>
#include <utility>
#include <vector>

namespace hierfit::bench {
namespace {

constexpr size_t kLevels = 1000;

std::string number(size_t value) { return std::to_string(value); }

/// Digits as an engine writes them: all of a double's.
std::string digits(size_t seed) {
  char buffer[40];
  const double value = std::sin(static_cast<double>(seed) + 0.5) * 12.5;
  const int length = std::snprintf(buffer, sizeof buffer, "%.15g", value);
  return {buffer, static_cast<size_t>(length)};
}

struct Parts {
  std::string settings;
  std::string diagnostics;
  std::string training = R"(<Message><PrintableList pattern="kGLMM_C29"/></Message>)";
};

std::string document(const Parts& parts) {
  return R"(<?xml version="1.0" encoding="UTF-8"?>
<StatXML><BuildSettings>
<Parameter name="TargetField" value="y"/>
<Parameter name="DistributionOfTarget" value="NORMAL"/>
<Parameter name="LinkFunctionType" value="IDENTITY"/>
<Parameter name="CIn" value="0.95"/>
)" + parts.settings +
         R"(</BuildSettings><PMMLModel><PredictiveSummary algorithmName="GLMM"/>
<StringMap mapId="0"><MapEntry name="P0"><Label>
<RegressionParameter isIntercept="true" name="P0"/></Label></MapEntry></StringMap>
<ModelDiagnostics>
<Statistic name="AICC" value="1756.1138210928998"/>
)" + parts.diagnostics +
         "</ModelDiagnostics>\n<TrainingSummary>\n" + parts.training +
         "</TrainingSummary></PMMLModel></StatXML>\n";
}

std::string effect(const std::string& field) {
  return "<StructuredValue><Attribute name=\"Fields\"><ListValue><Value value=\"" + field +
         "\"/></ListValue></Attribute><Attribute name=\"NestingLevels\"><ListValue>"
         "<Value value=\"0\"/></ListValue></Attribute></StructuredValue>\n";
}

std::string array(size_t count, const std::function<std::string(size_t)>& item) {
  std::string text = "<Array n=\"" + number(count) + "\" type=\"real\">";
  for (size_t i = 0; i < count; ++i) {
    if (i > 0) text += ' ';
    text += item(i);
  }
  return text + "</Array>";
}

std::string coordinates(const std::string& attributes,
                        size_t count,
                        const std::function<std::string(size_t)>& item) {
  return "<Coordinates " + attributes + ">" + array(count, item) + "</Coordinates>\n";
}

std::string statistics(size_t count, std::initializer_list<const char*> names) {
  std::string text;
  for (const char* name : names) {
    text +=
        coordinates("feature=\"statistic\" statistic=\"" + std::string(name) + "\"", count, digits);
  }
  return text;
}

std::string means_request(const std::string& factors) {
  return "<Parameter name=\"EMMEANS\"><ListValue><StructuredValue><Attribute name=\"Factors\">"
         "<StructuredValue><Attribute name=\"Fields\"><ListValue>" +
         factors +
         "</ListValue></Attribute></StructuredValue></Attribute>"
         "<Attribute name=\"CompareFactor\" value=\"a\"/></StructuredValue></ListValue>"
         "</Parameter>\n";
}

std::string block(const std::string& content) {
  return "<DataGroup description=\"customEmmeans\"><Statistic name=\"EMMEANSIndex\" "
         "value=\"0\"/>\n" +
         content + "</DataGroup>\n";
}

}  // namespace

std::string model_document() {
  std::string levels;
  for (size_t i = 1; i <= kLevels; ++i)
    levels += "<Value value=\"" + number(i) + "\"/>";
  const auto factor = [&](const char* name) {
    return "<DataField name=\"" + std::string(name) +
           "\" optype=\"categorical\" dataType=\"integer\">" + levels + "</DataField>\n";
  };
  return "<PMML><DataDictionary>\n"
         "<DataField name=\"y\" optype=\"continuous\" dataType=\"double\"/>\n" +
         factor("a") + factor("b") +
         "<DataField name=\"x\" optype=\"continuous\" dataType=\"double\"/>\n"
         "</DataDictionary><GeneralRegressionModel><MiningSchema><MiningField name=\"y\"/>"
         "<MiningField name=\"a\"/><MiningField name=\"b\"/><MiningField name=\"x\"/>"
         "</MiningSchema></GeneralRegressionModel></PMML>";
}

std::string settings_and_tests(size_t bytes) {
  Parts parts;
  parts.settings = "<Parameter name=\"FixedEffectList\"><ListValue>\n";
  for (size_t i = 0; parts.settings.size() + parts.diagnostics.size() < bytes; ++i) {
    parts.settings += effect(i % 2 == 0 ? "a" : "x");
    parts.diagnostics += "<ModelTestStats description=\"fixedEffect\" testID=\"" + number(i) +
                         "\" testType=\"III\">\n<FTest fStatistic=\"" + digits(i) + "\" sig=\"" +
                         digits(i + 1) + "\" df1=\"1\" df2=\"" + digits(i + 2) +
                         "\"/>\n</ModelTestStats>\n";
  }
  parts.settings += "</ListValue></Parameter>\n";
  return document(parts);
}

std::string parameter_estimates(size_t count) {
  constexpr const char* kNumbers[] = {
      "estimate", "stdError", "df",        "confIntervalLower", "confIntervalUpper", "tTest",
      "zTest",    "sig",      "chiSquare", "expEstimate",       "expCILower",        "expCIUpper"};
  Parts parts;
  parts.training = "<ParameterEstimates parameterType=\"fixed\">\n";
  for (size_t i = 0; i < count; ++i) {
    const std::string name = "P" + number(i);
    parts.training += "<ParameterStats paramName=\"" + name +
                      "\" paramLabel=\"[a=" + number(i % kLevels + 1) +
                      "]*[b=" + number(i / kLevels % kLevels + 1) + "]\"";
    for (size_t k = 0; k < std::size(kNumbers); ++k) {
      parts.training += " " + std::string(kNumbers[k]) + "=\"" + digits(i * 12 + k) + "\"";
    }
    parts.training +=
        " isRedundant=\"false\">\n<RegressionParameter isIntercept=\"false\" name=\"" + name +
        "\"><Factor field=\"a\" value=\"" + number(i % kLevels + 1) +
        "\"/><Factor field=\"b\" value=\"" + number(i / kLevels % kLevels + 1) +
        "\"/></RegressionParameter>\n"
        "<Statistic name=\"fixedEffectIndex\" value=\"1\"/>\n</ParameterStats>\n";
  }
  parts.training += "</ParameterEstimates>\n";
  return document(parts);
}

std::string estimated_means(size_t cells) {
  Parts parts;
  parts.settings = means_request("<Value value=\"a\"/><Value value=\"b\"/>");
  parts.diagnostics =
      block("<MultivariateData description=\"estimates\"><CoordinatesGroup>\n" +
            coordinates("feature=\"fields\" field=\"a\"", cells,
                        [](size_t i) { return number(i / kLevels % kLevels + 1); }) +
            coordinates("feature=\"fields\" field=\"b\"", cells,
                        [](size_t i) { return number(i % kLevels + 1); }) +
            "</CoordinatesGroup>\n" +
            statistics(cells, {"mean", "stdErr", "confIntervalLower", "confIntervalUpper"}) +
            "</MultivariateData>\n");
  return document(parts);
}

std::string pairwise_contrasts(size_t levels) {
  std::vector<std::pair<size_t, size_t>> pairs;
  for (size_t i = 1; i <= levels; ++i) {
    for (size_t j = i + 1; j <= levels; ++j)
      pairs.emplace_back(i, j);
  }
  Parts parts;
  parts.settings = means_request("<Value value=\"a\"/>");
  parts.diagnostics = block(
      "<MultivariateData description=\"contrasts\">"
      "<Statistic name=\"adjustedSigLevel\" value=\"0.05\"/>"
      "<CoordinatesGroup description=\"pairwiseContrast\">\n" +
      coordinates("feature=\"fields\" field=\"a\"", pairs.size(),
                  [&](size_t i) { return number(pairs[i].first); }) +
      coordinates("feature=\"fields\" field=\"a\"", pairs.size(),
                  [&](size_t i) { return number(pairs[i].second); }) +
      "</CoordinatesGroup>\n" +
      statistics(pairs.size(), {"contrastEstimate", "stdErr", "tTest", "df", "adjustedSig",
                                "confIntervalLower", "confIntervalUpper"}) +
      "</MultivariateData>\n");
  return document(parts);
}

std::string observed_by_predicted(size_t points) {
  Parts parts;
  parts.diagnostics =
      "<BivariateData description=\"observedByPredicted\"><Counts totalFreq=\"" + number(points) +
      "\"/>\n" + coordinates("feature=\"observed\"", points, digits) +
      coordinates("feature=\"statistic\"", points, [](size_t i) { return digits(i + 7); }) +
      coordinates("feature=\"frequency\"", points, [](size_t) { return "1"; }) +
      "</BivariateData>\n";
  return document(parts);
}

std::string grouped_covariances(size_t groups, size_t effects) {
  Parts parts;
  parts.settings =
      "<Parameter name=\"RandomSpecs\"><ListValue><StructuredValue>"
      "<Attribute name=\"GroupSpec\"><ListValue><Value value=\"a\"/></ListValue></Attribute>"
      "<Attribute name=\"CovarianceType\" value=\"UNSTRUCTURED\"/>"
      "</StructuredValue></ListValue></Parameter>\n";
  parts.diagnostics =
      "<StructuredData description=\"randomEffectCovariances\"><Statistic name=\"block\" "
      "value=\"0\"/><MatrixLabels><RowColLabels>\n";
  for (size_t e = 0; e < effects; ++e) {
    parts.diagnostics += "<Label><PrintableList pattern=\"e" + number(e) + "\"/></Label>\n";
  }
  parts.diagnostics += "</RowColLabels></MatrixLabels>\n";
  for (size_t g = 0; g < groups; ++g) {
    parts.diagnostics += "<SegmentData><SegmentInfo><FieldInfo fieldName=\"a\" fieldValue=\"" +
                         number(g + 1) + "\"/></SegmentInfo><Matrix nbRows=\"" + number(effects) +
                         "\" kind=\"symmetric\">" + array(effects * (effects + 1) / 2, digits) +
                         "</Matrix></SegmentData>\n";
  }
  parts.diagnostics += "</StructuredData>\n";
  return document(parts);
}

}  // namespace hierfit::bench
