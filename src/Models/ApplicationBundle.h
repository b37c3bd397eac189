#pragma once

#include <string_view>

#include "Models/FileURL.h"

namespace orvane {

/// Whether a file's name is an application bundle's: its extension is "app", in any case.
bool isApplicationBundleName(std::string_view name);

/// Whether a URL names an application bundle, by its name alone: whether one is there is not asked.
bool isApplicationBundle(const FileURL& url);

/// Whether a URL names something below the system's own folder, as its path is spelled.
bool isBelowSystem(const FileURL& url);

}  // namespace orvane
