#include "Platform/Posix/Trash.h"

#include <fcntl.h>

#include <utility>

#include "Platform/Posix/FileStatus.h"
#include "Platform/Posix/FileSystemCalls.h"

namespace orvane {

Result<void> checkTrashable(WayUp& folder, const char* name, const struct stat& status,
                            const FileIdentity& trash, WayUp& inOrAroundTrash) {
    const auto liesInTrash = folder.passes(trash);
    if (!liesInTrash) return tl::unexpected(liesInTrash.error());
    if (*liesInTrash) return failure(std::errc::invalid_argument);
    if (!S_ISDIR(status.st_mode)) return {};
    const auto entry = identityOf(status);
    const auto holdsTrash = inOrAroundTrash.passes(entry);
    if (!holdsTrash) return tl::unexpected(holdsTrash.error());
    if (*holdsTrash || entry == trash) return failure(std::errc::invalid_argument);
    const FileDescriptor item(::openat(folder.folder(), name, searchFlags | O_NOFOLLOW | O_CLOEXEC));
    if (!item) return errnoFailure();
    const auto mounts = holdsMounts(item.get());
    if (!mounts) return tl::unexpected(mounts.error());
    if (*mounts) return failure(std::errc::device_or_resource_busy);
    return {};
}

Trash::Trash(const Volume& volume, std::string home) : volume_(volume), home_(std::move(home)) {}

}  // namespace orvane
