#pragma once

#include <system_error>

#include "Platform/FileManager.h"
#include "Platform/Posix/FileDescriptor.h"
#include "Text/FunctionRef.h"

namespace orvane {

/// Visits everything below a folder that is open for reading, each folder before its contents, links as
/// links. What cannot be read is left out. Blocks on the disk; one system call per regular file, four per
/// folder.
void walkTree(FileDescriptor folder, WalkOptions options, FunctionRef<void(const WalkEntry&)> visit);

enum class WalkOutcome {
    /// All was visited that can be.
    complete,
    /// Something was left out because all descriptors that the process may have were in use.
    shortOfDescriptors,
};

/// What a folder that cannot be opened for that reason makes of it.
WalkOutcome outcomeOf(const std::error_code& reason);

/// The same, but leaves the folders that `take` moves away, each visited and open for reading, to whoever has
/// them then. Paths are relative to the folder that this very call was given.
WalkOutcome walkTreeInParts(FileDescriptor folder, WalkOptions options,
                            FunctionRef<void(const WalkEntry&)> visit,
                            FunctionRef<bool(FileDescriptor&)> take);

/// Space on disk of a file that occupies `blocks` of 512 bytes.
constexpr std::int64_t allocatedSize(std::int64_t blocks) {
    return blocks * 512;
}

}  // namespace orvane
