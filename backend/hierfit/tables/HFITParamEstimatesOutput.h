// Writes the tables of the fixed effects, the coefficients and the covariance parameters.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/framework.h"
#include "host/pivot.h"

#include "backend/hierfit/store/HFITOutputStats.h"

/// A table whose data are absent or contradict each other stays away. Owns nothing that it is
/// given.
class HFITParamEstimatesOutput {
 public:
  HFITParamEstimatesOutput(BpProcedure* procedure,
                           ProcedureDataSource* dataSource,
                           HFITOutputStats* outputStats);

  /// The F tests: the corrected model, then each fixed effect.
  void FixedEffectsOutput();
  /// The fixed coefficients; of a nominal target by its categories, of an ordinal one with the
  /// thresholds in a group.
  void FixedCoefficientsOutput();
  /// Under a heading, the covariance matrices of each block of random effects.
  void RandomEffectCovariancesOutput();
  /// Under a heading, a summary and the covariance parameters of the residual and of each block.
  void CovarianceParametersOutput();

 private:
  /// The block number of the residual effect.
  static constexpr int32_t kResidualBlock = -1;

  /// The titles of the interval columns, made once for all rows of a table.
  struct IntervalHeadings {
    BpComposite interval;
    BpComposite expInterval;
  };
  IntervalHeadings CoefficientHeadings() const;

  void EffectNames(const std::vector<EffectStruct>& effectList, std::vector<std::string>& names);
  void NominalCoefficients(const std::vector<ParamEstimData>& categories);
  void SingleCoefficients(const ParamEstimData& estimates);
  void CoefficientRow(BpDimension& statistics,
                      const IntervalHeadings& headings,
                      const ParamStatData& row);
  BpCategory TermCategory(BpDimension& terms, const ParamStatData& row);
  BpCategory ThresholdCategory(BpDimension& terms, const ParamStatData& row);

  void CovarianceSummary(BpPivotTable& table, const ModelDiagnostics& diagnostics);
  void RandomEffectBlockOutput(BpHeading& heading,
                               const RandEffCovarsData& randEffCovars,
                               std::size_t block);
  void ResidualEffectOutput(BpHeading& heading, const std::vector<ParamEstimData>& paramEstimVect);
  void RandomEffectOutput(BpHeading& heading,
                          const std::vector<ParamEstimData>& paramEstimVect,
                          int32_t block,
                          std::size_t blockCount);
  /// How the rows of a covariance table are written when the engine could not estimate them.
  struct RowStyle {
    std::optional<double> fixedValue;  ///< in place of the estimate, its error and its bounds
    bool hasErrorAndBounds = true;
    bool hasTest = true;
    const char* note = nullptr;  ///< key of a footnote on each estimate
  };
  struct StyleRule;
  /// The style of all rows of one block.
  RowStyle StyleOf(int32_t block) const;
  /// How the rows of a covariance table are laid out.
  enum class Layout { Plain, ByGroup, ByTarget };
  /// What tells the covariance tables apart.
  struct CovarianceLayout {
    Layout layout;
    int32_t covarianceType;
    const EffectStruct* subjects;  ///< null: the caption names none
    bool repeatsWarnings;          ///< whether the caption repeats those of the engine
    const char* rows;              ///< key of the title
    const char* columns;
  };
  /// A covariance table that is open, as its dimensions are.
  struct CovarianceTable {
    Layout layout;
    BpDimension rows;
    std::optional<BpDimension> outer;  ///< none in a plain layout
    BpDimension columns;
  };
  CovarianceTable LayOut(BpPivotTable table, const CovarianceLayout& layout);
  void AllCovarianceRows(CovarianceTable& table,
                         const std::vector<ParamEstimData>& estimates,
                         int32_t block);
  /// The rows of one set of estimates, in the outer category last asked for.
  void CovarianceRows(BpDimension& rows,
                      BpDimension& columns,
                      const ParamEstimData& paramEstimData,
                      int32_t block);

  const RandomSpec* SpecOf(int64_t block) const;
  Layout LayoutOf(const std::vector<std::string>& groupSpec) const;
  static bool Fits(Layout layout, const SegmentInfoData& segment);
  static bool AllFit(Layout layout, const std::vector<ParamEstimData>& estimates);
  BpDimension AddOuterDimension(BpPivotTable& table, Layout layout) const;
  void OuterCategory(CovarianceTable& table, const SegmentInfoData& segment) const;
  std::string SubjectText(const EffectStruct& subjectSpec);
  BpComposite GroupLabel(const SegmentInfoData& segment) const;
  BpDataValue TargetValue(const CFStatVariableValue& value) const;
  const VELT_Variable* Target() const;
  bool HasNoSubjects() const;
  void AddWarningList(BpComposite& caption) const;

  double fMissingValue = kSystemMissing;
  BpProcedure* fpProcedure;
  ProcedureDataSource* fpDataSource;
  HFITOutputStats* fpHFITOutputStats;
  BuildSettingsStruct* fpBuildSettings;
  std::vector<std::string> fvEffectNames;
  /// What the engine says of all rows of covariance parameters, looked up once: the key that
  /// decides on their style, empty for none, and whether each estimate has a note.
  std::string_view fRowWarning;
  bool fHasEstimateNote = false;
};
