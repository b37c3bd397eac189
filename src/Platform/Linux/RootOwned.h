#pragma once

#include <string>

namespace orvane {

/// Whether nobody but root can put something else in the place of that program: it is a regular executable
/// file, and it and every folder above it belong to root and can be written to by no group and no others. A
/// link on the way is no folder.
bool isRootsOwnProgram(const std::string& path);

}  // namespace orvane
