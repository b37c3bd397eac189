#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <system_error>

#include "Platform/FileManager.h"
#include "Platform/Posix/FileDescriptor.h"
#include "Text/FunctionRef.h"

namespace orvane {

struct WalkEntry {
    /// Relative to the walked folder; valid during the visit only.
    std::string_view relativePath;
    bool isRegularFile = false;
    /// Space on disk in bytes, known for regular files only.
    std::optional<std::int64_t> fileAllocatedSize;
    std::optional<std::int64_t> totalFileAllocatedSize;
};

enum class WalkOutcome {
    /// All was visited that can be.
    complete,
    /// Something was left out because all descriptors that the process may have were in use.
    shortOfDescriptors,
};

/// What a folder that cannot be opened for that reason makes of it.
WalkOutcome outcomeOf(const std::error_code& reason);

/// Visits everything below a folder that is open for reading, each folder before its contents, links as
/// links. What cannot be read is left out, and so are the contents of the folders that `take` moves away,
/// each visited and open for reading: they are of whoever has them then. Blocks on the disk; one system call
/// per regular file, four per folder.
WalkOutcome walkTree(FileDescriptor folder, WalkOptions options, FunctionRef<void(const WalkEntry&)> visit,
                     FunctionRef<bool(FileDescriptor&)> take);

/// Space on disk of a file that occupies `blocks` of 512 bytes.
constexpr std::int64_t allocatedSize(std::int64_t blocks) {
    return blocks * 512;
}

}  // namespace orvane
