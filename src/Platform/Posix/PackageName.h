#pragma once

#include <string_view>

namespace orvane {

/// Whether a folder of that name is a package, one file to the person who uses it: an application, a plug-in,
/// a preference pane and the like. Told by the extension, whatever its case.
bool isPackageName(std::string_view name);

}  // namespace orvane
