#include "tests/backend/result_documents.h"

#include <algorithm>
#include <doctest/doctest.h>
#include <variant>

namespace hierfit::test {

namespace {

constexpr char kModel[] = R"(<PMML><DataDictionary>
 <DataField name="y" displayName="Yield" optype="continuous" dataType="double"/>
 <DataField name="n" optype="continuous" dataType="integer"/>
 <DataField name="x" optype="continuous" dataType="double"/>
 <DataField name="g" optype="categorical" dataType="integer">
  <Value value="1"/><Value value="2"/><Value value="3"/></DataField>
 <DataField name="s" optype="categorical" dataType="string">
  <Value value="a"/><Value value="b"/></DataField>
 <DataField name="t" optype="ordinal" dataType="integer"><Value value="1"/><Value value="2"/></DataField>
 <DataField name="extra" optype="categorical" dataType="integer"><Value value="1"/></DataField>
</DataDictionary><GeneralRegressionModel><MiningSchema>
 <MiningField name="y"/><MiningField name="x"/><MiningField name="g"/><MiningField name="n"/>
 <MiningField name="s"/><MiningField name="t"/>
</MiningSchema></GeneralRegressionModel></PMML>)";

constexpr char kResult[] = R"(<StatXML>
<BuildSettings>
 <Parameter name="TargetField" value="y"/>
 <Parameter name="RandomSpecs"><ListValue><StructuredValue>
  <Attribute name="EffectList"><ListValue><StructuredValue>
   <Attribute name="Fields"><ListValue><Value value="x"/></ListValue></Attribute>
  </StructuredValue></ListValue></Attribute>
  <Attribute name="Intercept" value="true"/>
 </StructuredValue></ListValue></Parameter>
</BuildSettings>
<PMMLModel>
<PredictiveSummary algorithmName="GLMM"/>
<StringMap mapId="0">
 <MapEntry name="P0"><Label><RegressionParameter isIntercept="true" name="P0"/></Label></MapEntry>
 <MapEntry name="P1"><Label><RegressionParameter isIntercept="false" name="P1">
  <Covariate field="x" power="1"/></RegressionParameter></Label></MapEntry>
</StringMap>
<ModelDiagnostics>
 <Statistic name="AICC" value="12.5"/>
 <StructuredData description="firstSubjectRecordsForDataStructure">
  <Counts totalFreq="25"/>
  <SegmentData><SegmentInfo><FieldInfo fieldName="s" fieldValue="a"/></SegmentInfo>
   <MultivariateData>
    <CoordinatesGroup description="repeatedMeasures">
     <Coordinates field="t"><Array>1 2</Array></Coordinates></CoordinatesGroup>
    <CoordinatesGroup description="target">
     <Coordinates field="y"><Array>1.5 2.5</Array></Coordinates></CoordinatesGroup>
   </MultivariateData></SegmentData>
 </StructuredData>
 <StructuredData description="randomEffectCovariances">
  <Statistic name="block" value="0"/>
  <MatrixLabels><RowColLabels>
   <Label><PrintableList pattern="P0" mapId="0"/></Label>
   <Label><PrintableList pattern="P1" mapId="0"/></Label></RowColLabels></MatrixLabels>
  <SegmentData><SegmentInfo/>
   <Matrix nbRows="2" kind="symmetric"><Array>1 2 3</Array></Matrix></SegmentData>
 </StructuredData>
 <Matrix description="classificationTable" nbRows="2"><MatrixLabels><RowColLabels>
   <Label label="1"/><Label label="2"/></RowColLabels></MatrixLabels>
  <Array>1 2 3 4</Array></Matrix>
 <DataGroup description="Emmeans"><MultivariateData>
  <CoordinatesGroup><Coordinates feature="fields" field="g"><Array>1 2</Array></Coordinates>
  </CoordinatesGroup>
  <Coordinates feature="statistic" statistic="mean"><Array>5 __MISSING__</Array></Coordinates>
 </MultivariateData></DataGroup>
 <DataGroup description="customEmmeans">
  <Label><PrintableList><PrintableList pattern="x"><PrintableList pattern="4.5"/></PrintableList>
  </PrintableList></Label>
  <Statistic name="EMMEANSIndex" value="0"/>
  <MultivariateData description="estimates">
   <Coordinates statistic="mean"><Array>7</Array></Coordinates></MultivariateData>
  <MultivariateData description="contrasts">
   <Statistic name="adjustedSigLevel" value="0.05"/>
   <CoordinatesGroup description="simpleContrast">
    <Coordinates field="g"><Array>2</Array></Coordinates>
    <Coordinates field="g"><Array>1</Array></Coordinates></CoordinatesGroup>
   <Coordinates statistic="contrastEstimate"><Array>8</Array></Coordinates></MultivariateData>
  <ModelTestStats testID="3"><SegmentInfo><FieldInfo fieldName="s" fieldValue="b"/></SegmentInfo>
   <FTest fStatistic="1" sig="2" df1="3" df2="4"/></ModelTestStats>
  <Message><PrintableList pattern="kGLMM_C20"/></Message>
 </DataGroup>
</ModelDiagnostics>
<TrainingSummary>
 <ParameterEstimates parameterType="fixed">
  <ParameterStats paramName="P1" paramLabel="x" estimate="1" stdError="2" df="3"
    confIntervalLower="4" confIntervalUpper="5" tTest="6" zTest="" sig="8" chiSquare="9"
    expEstimate="10" expCILower="11" expCIUpper="12" isRedundant="true">
   <RegressionParameter isIntercept="false" name="P1"><Covariate field="x" power="1"/>
   </RegressionParameter><Statistic name="fixedEffectIndex" value="0"/></ParameterStats>
 </ParameterEstimates>
 <Message><PrintableList pattern="kGLMM_C8"><PrintableValue value="one"/><PrintableValue value=""/>
  <PrintableValue value="two"/></PrintableList></Message>
</TrainingSummary>
</PMMLModel>
</StatXML>)";

}  // namespace

ResultDocuments::ResultDocuments() : model(kModel), result(kResult) {}

ResultDocuments& ResultDocuments::replace(std::string_view from, std::string_view to) {
  const std::size_t position = result.find(from);
  REQUIRE_MESSAGE(position != std::string::npos, "the result document lacks ", std::string(from));
  result.replace(position, from.size(), to);
  return *this;
}

ResultDocuments& ResultDocuments::replace_range(std::string_view from,
                                                std::string_view end,
                                                std::string_view to) {
  const std::size_t first = result.find(from);
  REQUIRE_MESSAGE(first != std::string::npos, "the result document lacks ", std::string(from));
  const std::size_t last = result.find(end, first);
  REQUIRE_MESSAGE(last != std::string::npos, "the result document lacks ", std::string(end));
  result.replace(first, last + end.size() - first, to);
  return *this;
}

ResultDocuments& ResultDocuments::insert_before(std::string_view where, std::string_view text) {
  return replace(where, std::string(text).append(where));
}

Reading::Reading(const ResultDocuments& documents)
    : documents_(documents),
      session_({.pmml_name = "model",
                .pmml = documents_.model,
                .statxml_name = "result",
                .statxml = documents_.result,
                .dictionary_name = {},
                .dictionary = {}},
               {.language = "C",
                .resource_directory = HIERFIT_BINARY_DIR "/share/hierfit",
                .journal = &journal_}),
      procedure_(session_),
      reader(procedure_.fpProcedure,
             procedure_.fpDataSource,
             &store,
             documents_.model,
             documents_.result) {
  store.SetMetaData(procedure_.fpMetaData);
  reads = reader.ReadDocuments();
}

std::size_t Reading::messages() {
  const output::Document document = session_.take_document();
  return static_cast<std::size_t>(
      std::ranges::count_if(document.content.items, [](const output::Item& item) {
        return std::holds_alternative<std::unique_ptr<output::Message>>(item);
      }));
}

void check_changes(std::initializer_list<Change> changes) {
  for (const Change& change : changes) {
    CAPTURE(change.what);
    ResultDocuments documents;
    if (change.end != nullptr) {
      documents.replace_range(change.from, change.end, change.to);
    } else {
      documents.replace(change.from, change.to);
    }
    Reading reading(documents);
    const bool works = change.read == Read::Works;
    CHECK(reading.reads == works);
    CHECK(reading.messages() == (works ? 0 : 1));
  }
}

std::vector<std::string> texts(const std::vector<CFStatVariableValue>& values) {
  std::vector<std::string> result;
  for (const CFStatVariableValue& value : values) {
    result.push_back(value.GetStringValue());
  }
  return result;
}

double number(const CFStatVariableValue& value) {
  REQUIRE(value.GetObsValue() != nullptr);
  return value.GetObsValue()->number;
}

}  // namespace hierfit::test
