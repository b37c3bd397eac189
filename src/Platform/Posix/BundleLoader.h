#pragma once

#include <memory>

#include "Platform/Bundle.h"
#include "Platform/FileManager.h"

namespace orvane {

/// Opens bundles through a file manager, which outlives it.
std::unique_ptr<BundleLoader> makeBundleLoader(const FileManager& fileManager);

}  // namespace orvane
