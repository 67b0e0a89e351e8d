#include "bench/run.h"

#include "backend/hierfit/reader/HFITParseOutXML.h"
#include "backend/hierfit/tables/HFITOutput.h"
#include "bench/documents.h"

namespace hierfit::bench {

/// A procedure that does nothing: what a session hands to it is what the steps need.
class Run::Hands : public CFProcCustom {
 public:
  bool IsReady() override { return true; }
  bool GenerateOutput(const std::vector<std::string>&,
                      const std::vector<StatXMLBlock>&,
                      const std::string&) override {
    return true;
  }
  bool GenerateDocumentOutput(const std::string&, const StatXMLBlock&) override { return true; }
};

Run::Run(std::string statxml) : Run(std::move(statxml), model_document()) {}

Run::Run(std::string statxml, std::string pmml)
    : pmml_(std::move(pmml)), statxml_(std::move(statxml)) {
  session_ = std::make_unique<Session>(SessionInput{.pmml_name = "model.pmml",
                                                    .pmml = pmml_,
                                                    .statxml_name = "result.xml",
                                                    .statxml = {},
                                                    .dictionary_name = {},
                                                    .dictionary = {}},
                                       SessionOptions{.language = "C", .resource_directory = "."});
  hands_ = std::make_unique<Hands>();
  session_->connect(*hands_);
}

Run::~Run() = default;

bool Run::read() {
  store_ = std::make_unique<HFITOutputStats>();
  store_->SetMetaData(hands_->fpMetaData);
  HFITParseOutXML reader(hands_->fpProcedure, hands_->fpDataSource, store_.get(), pmml_, statxml_);
  return reader.ReadDocuments();
}

output::Document Run::write() {
  HFITOutput(hands_->fpProcedure, hands_->fpDataSource, store_.get()).WriteAll();
  return session_->take_document();
}

}  // namespace hierfit::bench
