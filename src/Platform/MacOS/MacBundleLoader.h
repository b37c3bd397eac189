#pragma once

#include <memory>

#include "Platform/Bundle.h"
#include "Platform/FileManager.h"

namespace orvane {

/// Opens bundles through a file manager, which outlives it, for a person who reads the languages that are set
/// on this Mac now; icons are the ones that it draws. What a bundle says is read anew at each call, by us:
/// the system's own bundles stay as they were when they were opened first, whatever has taken their place.
std::unique_ptr<BundleLoader> makeMacBundleLoader(const FileManager& fileManager);

}  // namespace orvane
