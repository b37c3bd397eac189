#include "Platform/Posix/FileSystemCalls.h"

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/param.h>
#include <sys/stat.h>
#include <sys/stdio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <vector>

#include "Platform/Posix/FileStatus.h"

namespace orvane {

namespace {

/// What somebody has locked, and what the system protects from everybody, the administrator too.
constexpr unsigned immutableFlags = UF_IMMUTABLE | SF_IMMUTABLE | SF_NOUNLINK | SF_RESTRICTED;
constexpr unsigned appendOnlyFlags = UF_APPEND | SF_APPEND;

/// Everything that is mounted, by its place.
Result<std::vector<std::string>> mountedPlaces() {
    std::vector<struct statfs> mounts;
    for (;;) {
        const int expected = ::getfsstat(nullptr, 0, MNT_NOWAIT);
        if (expected < 0) return errnoFailure();
        // Room for one more tells a whole list from one that was cut off.
        mounts.resize(static_cast<std::size_t>(expected) + 1);
        const auto size = mounts.size() * sizeof(struct statfs);
        const int count = ::getfsstat(mounts.data(), static_cast<int>(size), MNT_NOWAIT);
        if (count < 0) return errnoFailure();
        if (static_cast<std::size_t>(count) < mounts.size()) {
            mounts.resize(static_cast<std::size_t>(count));
            break;
        }
    }
    std::vector<std::string> places;
    places.reserve(mounts.size());
    for (const auto& mount : mounts) places.emplace_back(mount.f_mntonname);
    return places;
}

bool isAtOrBelow(std::string_view place, std::string_view folder) {
    return place.starts_with(folder) && (place.size() == folder.size() || place[folder.size()] == '/');
}

}  // namespace

const int searchFlags = O_SEARCH;
// Nothing is opened for its name alone here; an unreadable file cannot be looked at in this way.
const int lookFlags = O_RDONLY | O_NONBLOCK | O_NOCTTY;

// This kernel resolves no path as if another folder were the root: a Mac looks at its own disk only.

FileDescriptor openInRoot(int /*root*/, const char* /*path*/, int /*flags*/, mode_t /*mode*/) {
    errno = ENOSYS;
    return {};
}

Result<struct stat> statusInRoot(int /*root*/, const char* /*path*/, int /*flags*/) {
    return failure(std::errc::function_not_supported);
}

FileDescriptor openInRootWithoutLinks(int /*root*/, const char* /*path*/, int /*flags*/) {
    errno = ENOSYS;
    return {};
}

FileDescriptor openOnSameMount(int folder, const char* name, int flags) {
    FileDescriptor opened;
    do {
        opened = FileDescriptor(::openat(folder, name, flags | O_NOFOLLOW_ANY | O_CLOEXEC));
    } while (!opened && errno == EINTR);
    if (!opened) return opened;
    // Each mount has a device number of its own.
    const auto around = statusOf(folder);
    const auto status = statusOf(opened.get());
    if (!around || !status) return {};
    if (around->st_dev != status->st_dev) {
        errno = EXDEV;
        return {};
    }
    return opened;
}

FileDescriptor openForReading(int descriptor) {
    return FileDescriptor(::fcntl(descriptor, F_DUPFD_CLOEXEC, 0));
}

Result<std::string> realPath(int folder) {
    std::string path(MAXPATHLEN, '\0');
    if (::fcntl(folder, F_GETPATH, path.data()) != 0) return errnoFailure();
    path.resize(path.find('\0'));
    // The name may be that of a folder that has been removed, or replaced.
    const auto named = statusOf(AT_FDCWD, path.c_str());
    const auto opened = identityOf(folder);
    if (!path.starts_with('/') || !named || !opened || identityOf(*named) != *opened) {
        return failure(std::errc::no_such_file_or_directory);
    }
    return path;
}

bool renameExclusively(int fromFolder, const char* from, int toFolder, const char* to) {
    return ::renameatx_np(fromFolder, from, toFolder, to, RENAME_EXCL) == 0;
}

bool changeMode(int descriptor, mode_t mode) {
    return ::fchmod(descriptor, mode) == 0;
}

bool flushToDisk(int descriptor) {
    if (::fcntl(descriptor, F_FULLFSYNC) == 0) return true;
    // Servers and other disks than the Mac's own do not know it.
    if (errno != ENOTSUP && errno != EINVAL && errno != ENOTTY) return false;
    return ::fsync(descriptor) == 0;
}

timespec modificationTime(const struct stat& status) {
    return status.st_mtimespec;
}

Result<EntryAttributes> entryAttributes(int folder, const char* name) {
    const bool isFolderItself = *name == '\0';
    const auto status = isFolderItself ? statusOf(folder) : statusOf(folder, name);
    if (!status) return tl::unexpected(status.error());
    const auto around = isFolderItself ? statusOf(folder, "..") : statusOf(folder);
    if (!around) return tl::unexpected(around.error());
    const auto flags = static_cast<unsigned>(status->st_flags);
    return EntryAttributes{.isImmutable = (flags & immutableFlags) != 0,
                           .isAppendOnly = (flags & appendOnlyFlags) != 0,
                           .isMountPoint = status->st_dev != around->st_dev};
}

Result<bool> holdsMounts(int folder) {
    const auto path = realPath(folder);
    if (!path) return tl::unexpected(path.error());
    const auto places = mountedPlaces();
    if (!places) return tl::unexpected(places.error());
    return std::ranges::any_of(*places, [&](const std::string& place) { return isAtOrBelow(place, *path); });
}

}  // namespace orvane
