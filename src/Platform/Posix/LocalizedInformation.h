#pragma once

#include <vector>

#include "Platform/Bundle.h"
#include "Platform/FileManager.h"
#include "Text/Language.h"

namespace orvane {

/// Lets a bundle, whose resources are in a folder, say in the first of the languages that it has what it says
/// in that one: by "InfoPlist.strings", which is for all languages, else by
/// "LANGUAGE.lproj/InfoPlist.strings" or "InfoPlist.loctable". A bundle with none of the languages says it in
/// that of its development region, which is English where it names none; last in that of "Base.lproj".
void localize(Bundle& bundle, const FileURL& resources, const FileManager& fileManager,
              const std::vector<Language>& languages);

}  // namespace orvane
