#pragma once

#include <cstddef>
#include <vector>

#include "Platform/FileManager.h"
#include "Platform/Posix/FileDescriptor.h"
#include "Platform/Result.h"
#include "Text/FunctionRef.h"

namespace orvane {

/// What the regular files of each tree occupy, as `walkTree` visits them; 0 for one that does not open.
/// `open` opens the tree of a number for reading, and is called by the threads of `together`, which share all
/// folders.
///
/// Each of them has `DirectoryStack::maximumOpenFolders` open at most, and `SharedWork::maximumWaiting` more
/// wait for a thread; a tree for which the descriptors do not suffice all the same is measured again by one
/// thread alone. Memory goes by threads and depth, not by the number of files.
std::vector<AllocatedSizes> sizesOfTrees(std::size_t count,
                                         FunctionRef<Result<FileDescriptor>(std::size_t)> open,
                                         WalkOptions options, Together together);

}  // namespace orvane
