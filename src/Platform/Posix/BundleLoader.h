#pragma once

#include <memory>
#include <vector>

#include "Platform/Bundle.h"
#include "Platform/FileManager.h"
#include "Text/Language.h"

namespace orvane {

/// Opens bundles through a file manager, which outlives it, for a person who reads these languages, best
/// first. Where a bundle has none of them, it says what it says in its own.
std::unique_ptr<BundleLoader> makeBundleLoader(const FileManager& fileManager,
                                               std::vector<Language> languages = {});

}  // namespace orvane
