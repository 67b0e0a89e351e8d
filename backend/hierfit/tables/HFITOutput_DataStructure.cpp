// The layout of the first subject's records.
#include <algorithm>

#include "backend/hierfit/frame/Messages.h"
#include "backend/hierfit/store/EngineMessages.h"
#include "backend/hierfit/tables/CellText.h"
#include "backend/hierfit/tables/HFITOutput.h"
#include "backend/hierfit/tables/TableShape.h"
#include "backend/hierfit/tables/TableText.h"

namespace {

constexpr int32_t kMostRecords = 10;
constexpr char kSubjectNotUsed[] = "Subject field not used ...";

/// The lists of the records are parallel and the subject has a value for each field.
bool IsConsistent(const StructuredData& records, const BuildSettingsStruct& settings) {
  const SegmentInfoData& subjects = records.fSubjects;
  const std::size_t fieldCount = subjects.fvFieldNames.size();
  const std::size_t recordCount = records.fvTargetValues.size();
  return subjects.fvVarIndices.size() == fieldCount &&
         subjects.fSubjectValues.size() == fieldCount &&
         subjects.fvLevelCounts.size() == fieldCount &&
         std::ranges::all_of(records.fvRepeatMeasVars,
                             [&](const RepeatMeasVarStruct& field) {
                               return field.fvValues.size() == recordCount;
                             }) &&
         (settings.fTrialsIndex < 0 || records.fvTrialsValues.size() == recordCount);
}

void ReportSubjectNotUsed() {
  BpComposite text("^1: ^2", false);
  text.Add(Key("Data Structure"));
  text.Add(Key(kSubjectNotUsed));
  text.Finish();
  BpError(text, kShowInOutput, kWarningLevel);
}

/// The target note again, with the warning below it.
BpComposite WarningNote(const BpComposite& targetNote) {
  BpComposite note(kLinesPattern, true);
  note.Sublist();
  note.Add(targetNote);
  note.Add(Key(kSubjectNotUsed));
  note.EndSublist();
  note.Finish();
  return note;
}

/// Writes the columns of one record or of the levels. What differs is the cell of a field.
class RecordColumns {
 public:
  RecordColumns(BpDimension& variables,
                const VELT_DataSource& dataSource,
                const StructuredData& records,
                const BuildSettingsStruct& settings)
      : fVariables(variables), fDataSource(dataSource), fRecords(records), fSettings(settings) {}

  void WriteRecord(std::size_t record) {
    const SegmentInfoData& subjects = fRecords.fSubjects;
    WriteSubjects([&](std::size_t field) {
      return Value(subjects.fvVarIndices[field], subjects.fSubjectValues[field], kValueAlone);
    });
    WriteRepeatedMeasures([&](const RepeatMeasVarStruct& field) {
      return Value(field.fRepMeasInd, field.fvValues[record], kValueAlone);
    });
    WriteTarget(record);
  }

  void WriteLevels() {
    WriteSubjects([&](std::size_t field) {
      return BpNumber(fRecords.fSubjects.fvLevelCounts[field], BpProcedure::Count());
    });
    WriteRepeatedMeasures([](const RepeatMeasVarStruct& field) {
      return BpNumber(field.fLevelCount, BpProcedure::Count());
    });
  }

  void NoteTrials() {
    BpGroup group = GroupOf(fVariables, Key("Target"));
    BpCategory target = group.Category(Label(fSettings.fTargetIndex));
    target.Note(Footnote(
        KeyWith("Number of Trials = ^1", BpNumber(fSettings.fTrialsValue, BpProcedure::Count()))));
  }

 private:
  template <class Cell>
  void WriteSubjects(Cell cell) {
    BpGroup group = GroupOf(fVariables, Key("Subjects"));
    for (std::size_t field = 0; field < fRecords.fSubjects.fvVarIndices.size(); ++field) {
      BpCategory category = group.Category(Label(fRecords.fSubjects.fvVarIndices[field]));
      category.Cell(cell(field));
    }
  }

  template <class Cell>
  void WriteRepeatedMeasures(Cell cell) {
    if (fRecords.fvRepeatMeasVars.empty()) return;
    BpGroup group = GroupOf(fVariables, Key("Repeated Measures"));
    for (const RepeatMeasVarStruct& field : fRecords.fvRepeatMeasVars) {
      BpCategory category = group.Category(Label(field.fRepMeasInd));
      category.Cell(cell(field));
    }
  }

  void WriteTarget(std::size_t record) {
    BpGroup group = GroupOf(fVariables, Key("Target"));
    group.Category(Label(fSettings.fTargetIndex))
        .Cell(Value(fSettings.fTargetIndex, fRecords.fvTargetValues[record], kPreferLabel));
    if (fSettings.fTrialsIndex < 0) return;
    group.Category(Label(fSettings.fTrialsIndex))
        .Cell(Value(fSettings.fTrialsIndex, fRecords.fvTrialsValues[record], kPreferLabel));
  }

  BpVariable Label(int32_t index) const {
    return BpVariable(fDataSource.GetVariable(index), kVariableInCell);
  }

  BpDataValue Value(int32_t index, const CFStatVariableValue& value, int32_t preference) const {
    return BpDataValue(fDataSource.GetVariable(index), value.GetObsValue(), preference);
  }

  BpDimension& fVariables;
  const VELT_DataSource& fDataSource;
  const StructuredData& fRecords;
  const BuildSettingsStruct& fSettings;
};

}  // namespace

void HFITOutput::DataStructureOutput() {
  if (fpHFITOutputStats == nullptr) return;
  const StructuredData* records = fpHFITOutputStats->GetStructuredData();
  const bool hasWarning = fpHFITOutputStats->HasWarning(kGLMM_C26);
  if (records == nullptr || records->fSubjects.fvFieldNames.empty()) {
    if (hasWarning) ReportSubjectNotUsed();
    return;
  }
  if (!IsConsistent(*records, *fpBuildSettings)) return;

  BpPivotTable table = fpProcedure->PivotTable(Key("Data Structure"), Text("DataStructure"), true);
  const BpComposite targetNote = TargetNote(*fpBuildSettings, *fpDataSource);
  table.Note(Footnote(targetNote));
  if (records->fTotalFreq > kMostRecords) {
    table.Caption(KeyWith("Only the first ^1 records are displayed.",
                          BpNumber(kMostRecords, BpProcedure::Count())));
  }
  if (hasWarning) table.Note(Footnote(WarningNote(targetNote)));

  BpDimension record = AddDimension(table, Text("Record"), kRows, 1, Shown::Nothing);
  BpDimension part = AddDimension(table, Text("Data"), kRows, 2, Shown::LabelsAlone);
  BpDimension variables = AddDimension(table, Text("Variables"), kColumns, 1, Shown::LabelsAlone);
  RecordColumns columns(variables, *fpDataSource, *records, *fpBuildSettings);

  part.Category(Key("Data for First Subject"));
  for (std::size_t r = 0; r < records->fvTargetValues.size(); ++r) {
    record.Category(BpNumber(static_cast<double>(r), BpProcedure::Count()));
    columns.WriteRecord(r);
  }
  if (fpBuildSettings->fUseTrials && fpBuildSettings->fTrialsIndex < 0) columns.NoteTrials();
  part.Category(Key("Total Number of Levels"));
  record.Category(Text("Levels"));
  columns.WriteLevels();
}
