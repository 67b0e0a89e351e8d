// The procedure object that the framework drives, and the module's one exported function.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/framework.h"

#include "backend/hierfit/store/HFITOutputStats.h"

/// Reads the two result documents of one fit and writes all of its output. The store lives as long
/// as the procedure.
class HFITProcCustom : public CFProcCustom {
 public:
  HFITProcCustom();
  HFITProcCustom(BpProcedure* procedure, ProcedureDataSource* dataSource);
  HFITProcCustom(const HFITProcCustom&) = delete;
  HFITProcCustom& operator=(const HFITProcCustom&) = delete;
  ~HFITProcCustom() override;

  bool IsReady() override { return true; }
  /// False, with nothing done, unless there is one text of each kind and no summary.
  bool GenerateOutput(const std::vector<std::string>& vPMMLStr,
                      const std::vector<StatXMLBlock>& vStatXMLBlocks,
                      const std::string& summaryXMLStr) override;
  /// Whether the documents were read; what the writers make of them does not count. False, with
  /// nothing done, without a store, or when the framework set no output or no dictionary.
  bool GenerateDocumentOutput(const std::string& pmmlStr,
                              const StatXMLBlock& statXMLBlock) override;

 private:
  std::unique_ptr<HFITOutputStats> fpHFITOutputStats;
};

/// A new procedure, which the caller destroys; null when there is no memory for it. It throws
/// nothing: a procedure that got no store reads no documents.
extern "C" __attribute__((visibility("default"))) CFProcCustom* GetCFProcCustom();
