// The overall tests of the contrasts.
#include <algorithm>

#include "backend/hierfit/tables/CellText.h"
#include "backend/hierfit/tables/HFITEmmeansOutput.h"
#include "backend/hierfit/tables/TableShape.h"

namespace {

constexpr Column<EmmeansOverallTest> kTestColumns[] = {
    {{"F", BpProcedure::Coefficient}, &EmmeansOverallTest::fFStatistic},
    {{"df1", BpProcedure::Count}, &EmmeansOverallTest::fDf1},
    {{"df2", BpProcedure::Count}, &EmmeansOverallTest::fDf2},
    {{"Sig.", BpProcedure::Coefficient}, &EmmeansOverallTest::fSig},
};

/// Every test has a value for each of the fields, which are those of the first test.
bool IsConsistent(const std::vector<EmmeansOverallTest>& tests) {
  const std::vector<int32_t>& fields = tests.front().fFields.fvVarIndices;
  return std::ranges::all_of(tests, [&](const EmmeansOverallTest& test) {
    return test.fFields.fvVarIndices.size() >= fields.size() &&
           test.fFields.fSubjectValues.size() >= fields.size();
  });
}

}  // namespace

void HFITEmmeansOutput::OverallTestsOutput(BpHeading& heading, const EmmeansData& emmeansData) {
  const std::vector<EmmeansOverallTest>& tests = emmeansData.fvOverallTests;
  if (tests.empty() || !IsConsistent(tests)) return;
  const EmmeansSpec& spec = SpecOf(emmeansData);
  const std::vector<int32_t>& fields = tests.front().fFields.fvVarIndices;
  const std::size_t nFactor = fields.size();
  if (!(nFactor + 1 == spec.fFactors.fvVarIndices.size())) return;
  if (std::ranges::find(fields, fpDataSource->FindVarIndex(spec.fCompareFactor, 0)) !=
      fields.end()) {
    return;
  }

  BpPivotTable table =
      heading.PivotTable(Key("Overall Test Results"), Text("OverallTestResults"), true);
  std::vector<BpDimension> factors;
  for (std::size_t i = 0; i < nFactor; ++i) {
    factors.push_back(
        AddFactor(table, fpDataSource->GetVariable(fields[i]), static_cast<int32_t>(nFactor - i)));
  }
  BpDimension statistics = AddDimension(table, Key("Statistics"), kColumns, 1, Shown::LabelsAlone);
  for (const EmmeansOverallTest& test : tests) {
    for (std::size_t i = 0; i < nFactor; ++i) {
      factors[i].Category(BpDataValue(fpDataSource->GetVariable(fields[i]),
                                      test.fFields.fSubjectValues[i].GetObsValue(), kPreferLabel));
    }
    WriteColumns(statistics, kTestColumns, test);
  }
}
