#pragma once

#include <string>
#include <vector>

#include "Platform/Result.h"

namespace orvane {

/// A line of this process's table of mounts.
struct Mount {
    /// The folder or file that it is mounted on, as this process sees it.
    std::string place;
    /// The file system's kind, such as "ext4" or "fuse.sshfs".
    std::string kind;
};

/// All mounts, in the order in which they were made. An error where the table cannot be read to its end.
Result<std::vector<Mount>> mountTable();

}  // namespace orvane
