#include "Platform/Posix/Trash.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <optional>

#include "Platform/Posix/FileStatus.h"
#include "Platform/Posix/FileSystemCalls.h"

namespace orvane {

namespace {

/// Whether a folder is `other` or lies in it, told by identity on the way up to the machine's root.
Result<bool> isWithin(int folder, const FileIdentity& other) {
    const int flags = searchFlags | O_NOFOLLOW | O_CLOEXEC;
    FileDescriptor above(::openat(folder, ".", flags));
    std::optional<FileIdentity> below;
    while (true) {
        if (!above) return errnoFailure();
        const auto identity = identityOf(above.get());
        if (!identity) return tl::unexpected(identity.error());
        if (*identity == other) return true;
        // Above the root there is the root.
        if (below == *identity) return false;
        below = *identity;
        above = FileDescriptor(::openat(above.get(), "..", flags));
    }
}

}  // namespace

Result<void> checkTrashable(int folder, const char* name, const FileIdentity& trash, int inOrAroundTrash) {
    const auto status = statusOf(folder, name);
    if (!status) return tl::unexpected(status.error());
    const auto liesInTrash = isWithin(folder, trash);
    if (!liesInTrash) return tl::unexpected(liesInTrash.error());
    if (*liesInTrash) return failure(std::errc::invalid_argument);
    if (!S_ISDIR(status->st_mode)) return {};
    const auto holdsTrash = isWithin(inOrAroundTrash, identityOf(*status));
    if (!holdsTrash) return tl::unexpected(holdsTrash.error());
    if (*holdsTrash || identityOf(*status) == trash) return failure(std::errc::invalid_argument);
    const FileDescriptor item(::openat(folder, name, searchFlags | O_NOFOLLOW | O_CLOEXEC));
    if (!item) return errnoFailure();
    const auto mounts = holdsMounts(item.get());
    if (!mounts) return tl::unexpected(mounts.error());
    if (*mounts) return failure(std::errc::device_or_resource_busy);
    return {};
}

}  // namespace orvane
