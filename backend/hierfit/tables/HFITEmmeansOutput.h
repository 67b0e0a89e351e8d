// Writes the tables of the requested estimated means, their contrasts and overall tests.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/framework.h"
#include "host/pivot.h"

#include "backend/hierfit/store/HFITOutputStats.h"

/// The writer of the estimated means. It owns nothing and only reads the store. A table whose data
/// are absent or contradict each other stays away.
class HFITEmmeansOutput {
 public:
  HFITEmmeansOutput(BpProcedure* procedure,
                    ProcedureDataSource* dataSource,
                    HFITOutputStats* outputStats);

  /// The grand means, then each block under its heading. Nothing without a block.
  void EmmeansOutput();

 private:
  void GrandMeansOutput();
  void BlockOutput(const EmmeansData& emmeansData);
  BpComposite BlockTitle(int32_t index) const;
  void EstimatesOutput(BpHeading& heading, const EmmeansData& emmeansData);
  void ContrastsOutput(BpHeading& heading, const EmmeansData& emmeansData);
  /// The table of contrasts, still open; none when its data contradict each other.
  std::optional<BpPivotTable> ContrastTable(BpHeading& heading, const EmmeansData& emmeansData);
  void OverallTestsOutput(BpHeading& heading, const EmmeansData& emmeansData);

  std::string EmmeansEffectText(const EffectStruct& effect) const;
  const EmmeansSpec& SpecOf(const EmmeansData& emmeansData) const;
  VELT_Variable* FindVariable(const std::string& name) const;
  /// The value that a coordinate's text stands for.
  BpDataValue CoordinateValue(const std::string& text, const VELT_Variable* variable);
  void ReportBlock(const BpString& subject, const EmmeansData& emmeansData, const char* key) const;
  /// A row dimension that stands for a factor.
  BpDimension AddFactor(BpPivotTable& table, const VELT_Variable* factor, int32_t level) const;
  bool FindContrastVariables(const EmmeansData& emmeansData,
                             std::vector<VELT_Variable*>& others,
                             VELT_Variable*& compared) const;
  BpComposite ContrastLabel(const EmmeansContrastData& contrasts,
                            const VELT_Variable* compared,
                            std::size_t row);
  void CaptionOfPredictors(BpPivotTable& table, const EmmeansData& emmeansData) const;
  void CaptionOfAdjustment(BpPivotTable& table) const;

  double fMissingValue = kSystemMissing;
  BpProcedure* fpProcedure;
  ProcedureDataSource* fpDataSource;
  HFITOutputStats* fpHFITOutputStats;
  BuildSettingsStruct* fpBuildSettings;
  const EmmeansList* fpEmmeansList;
  CFStatVariableValue fTempValue;  ///< overwritten before every use
};
