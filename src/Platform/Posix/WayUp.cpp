#include "Platform/Posix/WayUp.h"

#include <fcntl.h>

#include <algorithm>
#include <utility>

#include "Platform/Posix/FileDescriptor.h"
#include "Platform/Posix/FileStatus.h"
#include "Platform/Posix/FileSystemCalls.h"

namespace orvane {

namespace {

/// A folder and all that it lies in, the root last.
Result<std::vector<FileIdentity>> foldersUpwards(int folder) {
    const int flags = searchFlags | O_NOFOLLOW | O_CLOEXEC;
    std::vector<FileIdentity> folders;
    FileDescriptor above(::openat(folder, ".", flags));
    while (true) {
        if (!above) return errnoFailure();
        const auto identity = identityOf(above.get());
        if (!identity) return tl::unexpected(identity.error());
        // Above the root there is the root.
        if (!folders.empty() && folders.back() == *identity) return folders;
        folders.push_back(*identity);
        above = FileDescriptor(::openat(above.get(), "..", flags));
    }
}

}  // namespace

Result<bool> WayUp::passes(const FileIdentity& other) {
    if (folders_.empty()) {
        auto found = foldersUpwards(folder_);
        if (!found) return tl::unexpected(found.error());
        folders_ = std::move(*found);
    }
    return std::ranges::find(folders_, other) != folders_.end();
}

}  // namespace orvane
