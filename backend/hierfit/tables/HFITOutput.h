// Runs all writers, and writes the tables of the model, its data and its classification.
#pragma once

#include "host/framework.h"
#include "host/pivot.h"

#include "backend/hierfit/store/HFITOutputStats.h"
#include "backend/hierfit/store/SystemMissing.h"

/// The writer of one run. It owns nothing and only reads the store. A table without the data that
/// it rests on stays away.
class HFITOutput {
 public:
  HFITOutput(BpProcedure* procedure, ProcedureDataSource* dataSource, HFITOutputStats* outputStats);

  /// All output, in the order in which it is shown.
  void WriteAll();
  /// Target, distribution, link and information criteria; needs the model diagnostics.
  void ModelSummaryOutput();
  /// The records of the first subject; needs subject fields.
  void DataStructureOutput();
  /// Observed by predicted categories; needs the classification matrix.
  void ClassificationOutput();

 private:
  double fMissingValue = kSystemMissing;
  BpProcedure* fpProcedure;
  ProcedureDataSource* fpDataSource;
  HFITOutputStats* fpHFITOutputStats;
  BuildSettingsStruct* fpBuildSettings;
};
