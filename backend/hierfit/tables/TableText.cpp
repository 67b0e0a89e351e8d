#include "backend/hierfit/tables/TableText.h"

#include "host/framework.h"

#include "backend/hierfit/frame/Characters.h"
#include "backend/hierfit/tables/TableShape.h"

namespace {

constexpr std::size_t kPieceLength = 255;

/// Where the next `count` characters end, counted from `begin`.
std::size_t EndOfCharacters(const std::string& text, std::size_t begin, std::size_t count) {
  std::size_t end = begin;
  for (; count > 0 && end < text.size(); --count)
    end = EndOfCharacter(text, end);
  return end;
}

void AddTrials(BpComposite& note,
               const BuildSettingsStruct& settings,
               const VELT_DataSource& dataSource) {
  if (settings.fTrialsIndex < 0) {
    note.Add(BpNumber(settings.fTrialsValue, BpProcedure::Count()));
  } else {
    note.Add(BpVariable(dataSource.GetVariable(settings.fTrialsIndex), kVariableInNote));
  }
}

}  // namespace

BpComposite TargetNote(const BuildSettingsStruct& settings, const VELT_DataSource& dataSource) {
  BpComposite note(settings.fUseTrials ? "Target ^1/^2" : "Target ^1", true);
  note.Add(BpVariable(dataSource.GetVariable(settings.fTargetIndex), kVariableInNote));
  if (settings.fUseTrials) AddTrials(note, settings, dataSource);
  note.Finish();
  return note;
}

BpComposite DistributionCaption(const HFITOutputStats& store, bool linkIsKey) {
  const BuildSettingsStruct& settings = *store.GetBuildSettings();
  const bool hasParameter = settings.fLinkParam != kSystemMissing;
  BpComposite caption(hasParameter ? "Probability Distribution ^1, Link Function ^2 with ^3 ..."
                                   : "Probability Distribution ^1, Link Function ^2 ...",
                      true);
  caption.Add(Text(store.DistributionName(settings.fDistribution, true)));
  caption.Add(
      BpString(store.LinkFunctionName(settings.fLink, settings.fDistribution, true), linkIsKey));
  if (hasParameter) {
    caption.Add(SigDigitNumber(settings.fLinkParam));
  }
  caption.Finish();
  return caption;
}

BpComposite ConfidenceHeading(const char* pattern, const BuildSettingsStruct& settings) {
  return KeyWith(pattern, SigDigitNumber(settings.fCIn * 100.0));
}

std::unique_ptr<BpCellText> LongTextCell(const std::string& text) {
  std::size_t end = EndOfCharacters(text, 0, kPieceLength);
  if (end == text.size()) return std::make_unique<BpString>(text, false);
  auto cell = std::make_unique<BpComposite>("[:^1:]1", true);
  cell->Sublist();
  for (std::size_t begin = 0; begin < text.size(); begin = end) {
    end = EndOfCharacters(text, begin, kPieceLength);
    cell->Add(Text(text.substr(begin, end - begin)));
  }
  cell->EndSublist();
  cell->Finish();
  return cell;
}

double CellNumber(const std::string& text) {
  return text == kMissingItem ? kSystemMissing : String2Double(text);
}
