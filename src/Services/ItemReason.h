#pragma once

#include <optional>
#include <string>

#include "Models/InstalledApplication.h"
#include "Models/RelatedItem.h"
#include "Platform/FileManager.h"
#include "Text/LocalizedText.h"

namespace orvane {

/// Why an item is in the plan of an application, in one short sentence made of the rules that found it: its
/// place and what it is named after, or what its text or its name mentions. A short name, of fewer than four
/// letters, is mentioned by much that is no business of the application; where nothing else has found the
/// item, the sentence says so. Absent when the item as it now is belongs into no plan of the application.
/// Reads the file of a launch item. Blocks on the disk.
std::optional<std::string> whyListed(const InstalledApplication& application, const RelatedItem& item,
                                     const FileManager& fileManager, const LocalizedText& localizedText);

}  // namespace orvane
