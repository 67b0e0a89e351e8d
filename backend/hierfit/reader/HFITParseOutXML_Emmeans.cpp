// Reads tables of estimated means and contrasts, and overall tests.
#include <algorithm>
#include <utility>

#include "backend/hierfit/reader/Attributes.h"
#include "backend/hierfit/reader/Elements.h"
#include "backend/hierfit/reader/HFITParseOutXML.h"

namespace {

constexpr std::string_view kFeatures[] = {"observed", "frequency", "statistic", "fields"};
static_assert(std::size(kFeatures) == Feature::kUnknown);

constexpr std::string_view kContrastKinds[] = {"pairwiseContrast", "deviationContrast",
                                               "simpleContrast"};
static_assert(std::size(kContrastKinds) == ContrastKind::kUnknown);

int32_t ParseFeature(const std::string& text) { return CodeOf(kFeatures, text); }
int32_t ParseContrastKind(const std::string& text) { return CodeOf(kContrastKinds, text); }

// clang-format off
constexpr AttributeBinding<CoordinatesData> kCoordinatesAttributes[] = {
    {"feature", &CoordinatesData::fFeature, Feature::kUnknown, &ParseFeature},
    {"field", &CoordinatesData::fField},
    {"statistic", &CoordinatesData::fStatistic},
};

constexpr AttributeBinding<EmmeansContrastData> kContrastGroupAttributes[] = {
    {"description", &EmmeansContrastData::fContrastKind, ContrastKind::kUnknown,
     &ParseContrastKind},
};

constexpr AttributeBinding<EmmeansContrastData> kContrastStatistics[] = {
    {"adjustedSigLevel", &EmmeansContrastData::fAdjustedSigLevel},
};

constexpr AttributeBinding<EmmeansOverallTest> kOverallTestAttributes[] = {
    {"testID", &EmmeansOverallTest::fTestID, -1},
};

constexpr AttributeBinding<EmmeansOverallTest> kOverallFTestAttributes[] = {
    {"fStatistic", &EmmeansOverallTest::fFStatistic},
    {"sig", &EmmeansOverallTest::fSig},
    {"df1", &EmmeansOverallTest::fDf1},
    {"df2", &EmmeansOverallTest::fDf2},
};

/// A column of a table by the name of its statistic.
template <class Table>
struct StatisticBinding {
  std::string_view statistic;
  CoordinatesData Table::*column;
};

constexpr StatisticBinding<EmmeansEstimData> kEstimateColumns[] = {
    {"mean", &EmmeansEstimData::fMean},
    {"stdErr", &EmmeansEstimData::fStdErr},
    {"confIntervalLower", &EmmeansEstimData::fConfIntervalLower},
    {"confIntervalUpper", &EmmeansEstimData::fConfIntervalUpper},
};

constexpr StatisticBinding<EmmeansContrastData> kContrastColumns[] = {
    {"contrastEstimate", &EmmeansContrastData::fContrastEstimate},
    {"stdErr", &EmmeansContrastData::fStdErr},
    {"tTest", &EmmeansContrastData::fTTest},
    {"df", &EmmeansContrastData::fDf},
    {"adjustedSig", &EmmeansContrastData::fAdjustedSig},
    {"confIntervalLower", &EmmeansContrastData::fConfIntervalLower},
    {"confIntervalUpper", &EmmeansContrastData::fConfIntervalUpper},
};
// clang-format on

/// Reads the columns that stand below the element itself, of which there must be one.
template <class Table, std::size_t N>
bool ReadColumns(HFITParseOutXML& reader,
                 SDOMXMLWrapper& tableElm,
                 const StatisticBinding<Table> (&columns)[N],
                 Table& table) {
  SDOMXMLIterator* coordinatesIter = Children(tableElm, "Coordinates");
  if (coordinatesIter == nullptr) return false;
  for (SDOMXMLWrapper* coordinatesElm = nullptr; Step(coordinatesIter, coordinatesElm);) {
    CoordinatesData coordinates;
    if (!reader.ReadCoordinates(coordinatesElm, coordinates)) return false;
    const auto binding =
        std::ranges::find(columns, coordinates.fStatistic, &StatisticBinding<Table>::statistic);
    if (binding != std::end(columns)) table.*binding->column = std::move(coordinates);
  }
  return true;
}

/// Appends the coordinates of a group up to the first that does not read, which is appended too.
void ReadGroupCoordinates(HFITParseOutXML& reader,
                          SDOMXMLWrapper& groupElm,
                          std::vector<CoordinatesData>& vCoordinates) {
  SDOMXMLIterator* coordinatesIter = Children(groupElm, "Coordinates");
  for (SDOMXMLWrapper* coordinatesElm = nullptr; Step(coordinatesIter, coordinatesElm);) {
    if (!reader.ReadCoordinates(coordinatesElm, vCoordinates.emplace_back())) return;
  }
}

/// Stores the adjusted significance level when the statistic is one.
void ReadContrastStatistic(SDOMXMLWrapper& statisticElm, EmmeansContrastData& contrasts) {
  std::string name;
  std::string value;
  if (!statisticElm.GetAttribute("name", name)) return;
  if (!statisticElm.GetAttribute("value", value)) return;
  StoreNamed(kContrastStatistics, name, value, contrasts);
}

}  // namespace

bool HFITParseOutXML::ReadCoordinates(SDOMXMLWrapper* coordinatesElm,
                                      CoordinatesData& coordinatesData) {
  if (!(coordinatesElm != nullptr)) return false;
  ReadAttributesUntested(*coordinatesElm, kCoordinatesAttributes, coordinatesData);
  SDOMXMLWrapper* arrayElm = FirstElement(*coordinatesElm, "Array");
  return arrayElm != nullptr && arrayElm->GetSimpleArray(coordinatesData.fvValues);
}

bool HFITParseOutXML::ReadEmmeansEstimates(SDOMXMLWrapper* emmeansEstiElm,
                                           EmmeansEstimData& emmeansEstimData) {
  if (!(emmeansEstiElm != nullptr)) return false;
  if (SDOMXMLWrapper* groupElm = FirstElement(*emmeansEstiElm, "CoordinatesGroup")) {
    ReadGroupCoordinates(*this, *groupElm, emmeansEstimData.fvCoordinates);
  }
  return ReadColumns(*this, *emmeansEstiElm, kEstimateColumns, emmeansEstimData);
}

bool HFITParseOutXML::ReadEmmeansContrasts(SDOMXMLWrapper* emmeansContrastElm,
                                           EmmeansContrastData& emmeansContrastData) {
  if (!(emmeansContrastElm != nullptr)) return false;
  if (SDOMXMLWrapper* statisticElm = FirstElement(*emmeansContrastElm, "Statistic")) {
    ReadContrastStatistic(*statisticElm, emmeansContrastData);
  }
  if (SDOMXMLWrapper* groupElm = FirstElement(*emmeansContrastElm, "CoordinatesGroup")) {
    ReadAttributesUntested(*groupElm, kContrastGroupAttributes, emmeansContrastData);
    ReadGroupCoordinates(*this, *groupElm, emmeansContrastData.fvCoordinates);
  }
  return ReadColumns(*this, *emmeansContrastElm, kContrastColumns, emmeansContrastData);
}

bool HFITParseOutXML::ReadEmmeansOverallTest(SDOMXMLWrapper* emmeansOverallTestElm,
                                             EmmeansOverallTest& emmeansOverallTest) {
  if (!(emmeansOverallTestElm != nullptr)) return false;
  ReadAttributesUntested(*emmeansOverallTestElm, kOverallTestAttributes, emmeansOverallTest);
  SDOMXMLWrapper* segmentInfoElm = FirstElement(*emmeansOverallTestElm, "SegmentInfo");
  if (segmentInfoElm != nullptr && !ReadSegmentInfo(segmentInfoElm, emmeansOverallTest.fFields)) {
    return false;
  }
  SDOMXMLWrapper* fTestElm = FirstElement(*emmeansOverallTestElm, "FTest");
  return fTestElm != nullptr &&
         ReadAttributes(*fTestElm, kOverallFTestAttributes, emmeansOverallTest);
}
