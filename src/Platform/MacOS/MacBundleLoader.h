#pragma once

#include <memory>

#include "Platform/Bundle.h"
#include "Platform/FileManager.h"

namespace orvane {

/// Opens bundles through a file manager, which outlives it; the texts that a person reads are in the language
/// that the Mac chooses, and icons are the ones that it draws.
std::unique_ptr<BundleLoader> makeMacBundleLoader(const FileManager& fileManager);

}  // namespace orvane
