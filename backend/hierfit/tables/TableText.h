// Texts that several tables carry: the target note, captions, headings, effects, long labels.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "host/dictionary.h"
#include "host/pivot.h"

#include "backend/hierfit/store/HFITOutputStats.h"

/// The note that names the target, with its trials when it counts events: "Target ^1/^2".
BpComposite TargetNote(const BuildSettingsStruct& settings, const VELT_DataSource& dataSource);

/// The caption that names the distribution and the link, with the link's parameter when it has one.
/// The link's name goes in as a key when `linkIsKey` says so.
BpComposite DistributionCaption(const HFITOutputStats& store, bool linkIsKey);

/// The title of the group of a confidence interval's bounds, with the level of confidence in it.
BpComposite ConfidenceHeading(const char* pattern, const BuildSettingsStruct& settings);
inline constexpr char kConfidenceInterval[] = "^1% Confidence Interval";
inline constexpr char kExpConfidenceInterval[] = "^1% Confidence Interval for Exp(Coefficient)";

/// A label of any length: pieces of 255 characters, joined by the pivot library, when the text is
/// longer than that.
std::unique_ptr<BpCellText> LongTextCell(const std::string& text);

/// The number of a cell that is held as text; "__MISSING__" is the missing number.
double CellNumber(const std::string& text);
