#pragma once

#include <system_error>

#include "Platform/Together.h"

namespace orvane {

/// Removes the entry `name` of the open folder `parent`, a folder with everything in it, following no link
/// and entering nothing that is mounted on it or in it: EXDEV for such a folder, EBUSY for such a file. What
/// cannot be removed does not stop the rest; the first error is the one returned, ESTALE where a folder was
/// moved away meanwhile, and folders of the user's own whose permissions stood in the way have them back if
/// they remain. What is not there, or vanishes meanwhile, is removed.
///
/// Some threads of `together`, about as many as there are cores, share all folders, each with
/// `DirectoryStack::maximumOpenFolders` open at most, and `SharedWork::maximumWaiting` more wait for a
/// thread; where the descriptors do not suffice all the same, one thread alone goes over what is left. Memory
/// goes by threads and depth, not by the number of files.
std::error_code removeTree(int parent, const char* name, Together together);

}  // namespace orvane
