#include "Platform/Posix/FileSystemCalls.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <linux/stat.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>

#include "Platform/Linux/MountTable.h"
#include "Platform/Posix/FileStatus.h"

namespace orvane {

namespace {

/// How often a resolution is tried that renames elsewhere on the machine keep disturbing.
constexpr int maximumAttempts = 10'000;

FileDescriptor openResolving(int folder, const char* path, int flags, mode_t mode, std::uint64_t resolve) {
    open_how how{};
    how.flags = static_cast<std::uint64_t>(flags | O_CLOEXEC);
    // The kernel refuses a mode where nothing can be created.
    how.mode = (flags & O_CREAT) != 0 ? mode : 0;
    how.resolve = resolve;
    for (int attempt = 1;; ++attempt) {
        FileDescriptor opened(static_cast<int>(::syscall(SYS_openat2, folder, path, &how, sizeof how)));
        if (opened || (errno != EAGAIN && errno != EINTR) || attempt == maximumAttempts) return opened;
    }
}

/// The link by which a process finds its own descriptor in the file system.
struct DescriptorLink {
    explicit DescriptorLink(int descriptor) {
        std::snprintf(path, sizeof path, "/proc/self/fd/%d", descriptor);
    }
    char path[32];
};

}  // namespace

const int searchFlags = O_PATH | O_DIRECTORY;
const int lookFlags = O_PATH;

FileDescriptor openInRoot(int root, const char* path, int flags, mode_t mode) {
    return openResolving(root, path, flags, mode, RESOLVE_IN_ROOT | RESOLVE_NO_MAGICLINKS);
}

Result<struct stat> statusInRoot(int root, const char* path, int flags) {
    const int links = (flags & AT_SYMLINK_NOFOLLOW) != 0 ? O_NOFOLLOW : 0;
    const auto file = openInRoot(root, path, O_PATH | links, 0);
    if (!file) return errnoFailure();
    return statusOf(file.get());
}

FileDescriptor openInRootWithoutLinks(int root, const char* path, int flags) {
    // Without O_NOFOLLOW, so that a link at the end is told by the same error as one on the way.
    return openResolving(root, path, flags, 0, RESOLVE_IN_ROOT | RESOLVE_NO_SYMLINKS);
}

FileDescriptor openOnSameMount(int folder, const char* name, int flags) {
    return openResolving(folder, name, flags | O_NOFOLLOW, 0,
                         RESOLVE_BENEATH | RESOLVE_NO_XDEV | RESOLVE_NO_SYMLINKS);
}

FileDescriptor openForReading(int descriptor) {
    constexpr int flags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    return FileDescriptor(::open(DescriptorLink(descriptor).path, flags));
}

Result<std::string> realPath(int folder) {
    std::string path(PATH_MAX, '\0');
    const auto length = ::readlink(DescriptorLink(folder).path, path.data(), path.size());
    if (length < 0) return errnoFailure();
    path.resize(static_cast<std::size_t>(length));
    // The kernel marks a removed folder in the text of the link only; the text must lead back to the folder.
    struct stat named {};
    struct stat opened {};
    if (!path.starts_with('/')) return failure(std::errc::no_such_file_or_directory);
    if (::lstat(path.c_str(), &named) != 0 || ::fstat(folder, &opened) != 0) return errnoFailure();
    if (identityOf(named) != identityOf(opened)) return failure(std::errc::no_such_file_or_directory);
    return path;
}

bool renameExclusively(int fromFolder, const char* from, int toFolder, const char* to) {
    return ::renameat2(fromFolder, from, toFolder, to, RENAME_NOREPLACE) == 0;
}

bool changeMode(int descriptor, mode_t mode) {
    return ::chmod(DescriptorLink(descriptor).path, mode) == 0;
}

bool flushToDisk(int descriptor) {
    return ::fsync(descriptor) == 0;
}

timespec modificationTime(const struct stat& status) {
    return status.st_mtim;
}

Result<EntryAttributes> entryAttributes(int folder, const char* name) {
    struct statx status {};
    constexpr int flags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_EMPTY_PATH;
    if (::statx(folder, name, flags, STATX_TYPE, &status) != 0) return errnoFailure();
    return EntryAttributes{.isImmutable = (status.stx_attributes & STATX_ATTR_IMMUTABLE) != 0,
                           .isAppendOnly = (status.stx_attributes & STATX_ATTR_APPEND) != 0,
                           .isMountPoint = (status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0};
}

Result<bool> holdsMounts(int folder) {
    const auto path = realPath(folder);
    if (!path) return tl::unexpected(path.error());
    const auto mounts = mountTable();
    if (!mounts) return tl::unexpected(mounts.error());
    return std::ranges::any_of(*mounts, [&](const Mount& mount) {
        const auto& place = mount.place;
        return place.starts_with(*path) && (place.size() == path->size() || place[path->size()] == '/');
    });
}

}  // namespace orvane
