#pragma once

#include <system_error>

namespace orvane {

/// Removes the folder `name` of the open folder `parent` with everything in it, following no link and
/// entering nothing that is mounted in it. What cannot be removed does not stop the rest; the first error is
/// the one returned, and folders of the user's own whose permissions stood in the way have them back if they
/// remain.
std::error_code removeTree(int parent, const char* name);

}  // namespace orvane
