// The run of the procedure: read both documents, then write.
#include "backend/hierfit/frame/HFITProcCustom.h"

#include <new>

#include "backend/hierfit/reader/HFITParseOutXML.h"
#include "backend/hierfit/tables/HFITOutput.h"

namespace {

/// Null when there is none to be had.
std::unique_ptr<HFITOutputStats> MakeStore() {
  try {
    return std::make_unique<HFITOutputStats>();
  } catch (...) {
    // Whatever the host's string table throws, or the lack of memory, is no exception of the
    // factory's: a procedure without a store reads nothing.
    return nullptr;
  }
}

}  // namespace

HFITProcCustom::HFITProcCustom() : fpHFITOutputStats(MakeStore()) {}

HFITProcCustom::HFITProcCustom(BpProcedure* procedure, ProcedureDataSource* dataSource)
    : CFProcCustom(procedure, dataSource), fpHFITOutputStats(MakeStore()) {}

HFITProcCustom::~HFITProcCustom() = default;

bool HFITProcCustom::GenerateOutput(const std::vector<std::string>& vPMMLStr,
                                    const std::vector<StatXMLBlock>& vStatXMLBlocks,
                                    const std::string& summaryXMLStr) {
  if (!(vPMMLStr.size() == 1)) return false;
  if (!(vStatXMLBlocks.size() == 1)) return false;
  if (!(summaryXMLStr.empty())) return false;
  return GenerateDocumentOutput(vPMMLStr[0], vStatXMLBlocks[0]);
}

bool HFITProcCustom::GenerateDocumentOutput(const std::string& pmmlStr,
                                            const StatXMLBlock& statXMLBlock) {
  if (!(fpHFITOutputStats != nullptr)) return false;
  if (fpProcedure == nullptr || fpDataSource == nullptr) return false;
  fpHFITOutputStats->SetMetaData(fpMetaData);

  HFITParseOutXML reader(fpProcedure, fpDataSource, fpHFITOutputStats.get(), pmmlStr,
                         statXMLBlock.fDocumentText);
  const bool isRead = reader.ReadDocuments();
  if (isRead) {
    HFITOutput output(fpProcedure, fpDataSource, fpHFITOutputStats.get());
    output.WriteAll();
  }
  return isRead;
}

CFProcCustom* GetCFProcCustom() { return new (std::nothrow) HFITProcCustom; }
