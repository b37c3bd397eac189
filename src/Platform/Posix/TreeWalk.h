#pragma once

#include "Platform/FileManager.h"
#include "Platform/Posix/FileDescriptor.h"
#include "Text/FunctionRef.h"

namespace orvane {

/// Visits everything below a folder that is open for reading, each folder before its contents, links as
/// links. What cannot be read is left out. Blocks on the disk; one system call per regular file, four per
/// folder.
void walkTree(FileDescriptor folder, WalkOptions options, FunctionRef<void(const WalkEntry&)> visit);

/// Space on disk of a file that occupies `blocks` of 512 bytes.
constexpr std::int64_t allocatedSize(std::int64_t blocks) {
    return blocks * 512;
}

}  // namespace orvane
