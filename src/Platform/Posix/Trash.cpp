#include "Platform/Posix/Trash.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "Models/FileURL.h"
#include "Platform/Posix/FileSystemCalls.h"
#include "Platform/Posix/Ownership.h"
#include "Platform/Posix/SignalDeferral.h"

namespace orvane {

namespace {

constexpr const char* trashName = ".Trash";
constexpr int folderFlags = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

bool isSameFile(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

}  // namespace

Result<FileDescriptor> openTrash(int home) {
    struct stat homeStatus {};
    if (::fstat(home, &homeStatus) != 0) return errnoFailure();
    FileDescriptor trash(::openat(home, trashName, folderFlags));
    if (!trash && errno == ENOENT) {
        const auto made = makeFolder(home, trashName, S_IRWXU);
        // Made by somebody else in the meantime: it is looked at like any other.
        if (!made && made.error() != std::errc::file_exists) return tl::unexpected(made.error());
        trash = FileDescriptor(::openat(home, trashName, folderFlags));
    }
    if (!trash) return errnoFailure();
    struct stat status {};
    if (::fstat(trash.get(), &status) != 0) return errnoFailure();
    const auto user = ::geteuid();
    const bool isOwn = status.st_uid == user || (user == 0 && status.st_uid == homeStatus.st_uid);
    if (!isOwn) return failure(std::errc::permission_denied);
    return trash;
}

Result<FileDescriptor> openTrash(const Volume& volume, std::string_view home) {
    const auto folder = volume.openPath(home, O_PATH | O_DIRECTORY);
    if (!folder) return tl::unexpected(folder.error());
    return openTrash(folder->get());
}

namespace {

/// Whether a folder is `other` or lies in it, told by identity on the way up to the machine's root.
Result<bool> isWithin(int folder, const struct stat& other) {
    FileDescriptor above(::openat(folder, ".", folderFlags));
    struct stat status {};
    if (!above || ::fstat(above.get(), &status) != 0) return errnoFailure();
    while (!isSameFile(status, other)) {
        const auto below = status;
        above = FileDescriptor(::openat(above.get(), "..", folderFlags));
        if (!above || ::fstat(above.get(), &status) != 0) return errnoFailure();
        if (isSameFile(status, below)) return false;
    }
    return true;
}

}  // namespace

Result<void> checkTrashable(int folder, const char* name, int trash) {
    struct stat trashStatus {};
    struct stat status {};
    if (::fstat(trash, &trashStatus) != 0 || ::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
        return errnoFailure();
    }
    const auto liesInTrash = isWithin(folder, trashStatus);
    if (!liesInTrash) return tl::unexpected(liesInTrash.error());
    const auto holdsTrash = isWithin(trash, status);
    if (!holdsTrash) return tl::unexpected(holdsTrash.error());
    if (*liesInTrash || *holdsTrash) return failure(std::errc::invalid_argument);
    if (!S_ISDIR(status.st_mode)) return {};
    const FileDescriptor item(::openat(folder, name, folderFlags));
    if (!item) return errnoFailure();
    const auto mounts = holdsMounts(item.get());
    if (!mounts) return tl::unexpected(mounts.error());
    if (*mounts) return failure(std::errc::device_or_resource_busy);
    return {};
}

namespace {

/// The name itself, then "base 2.extension", "base 3.extension" and so on.
std::string candidateName(const std::string& name, std::uint64_t number) {
    if (number == 1) return name;
    const auto url = FileURL::fromPath("/" + name, false);
    const auto extension = url.pathExtension();
    const auto base = url.deletingPathExtension().lastPathComponent();
    return base + " " + std::to_string(number) + (extension.empty() ? "" : "." + extension);
}

Result<void> moveToFreeName(const Volume::Entry& item, int trash) {
    for (std::uint64_t number = 1;; ++number) {
        const auto candidate = candidateName(item.name, number);
        if (renameExclusively(item.folder.get(), item.name.c_str(), trash, candidate.c_str())) return {};
        if (errno != EEXIST) return errnoFailure();
    }
}

/// A folder can only be moved to another one by who may write to it: its own entry ".." changes. Until it has
/// its old mode again no request to end is heeded. Who kills the program by force in that moment, or cuts its
/// power, finds the folder whole, in one place or the other, but writable to its owner.
Result<void> moveWithOwnerRights(const Volume::Entry& item, int trash) {
    const FileDescriptor folder(::openat(item.folder.get(), item.name.c_str(), folderFlags));
    struct stat status {};
    const bool mayHelp = folder && ::fstat(folder.get(), &status) == 0 && status.st_uid == ::geteuid() &&
                         (status.st_mode & S_IWUSR) == 0;
    const mode_t mode = status.st_mode & 07777;
    const SignalDeferral deferral;
    if (!mayHelp || !changeMode(folder.get(), mode | S_IWUSR)) return failure(std::errc::permission_denied);
    auto moved = moveToFreeName(item, trash);
    changeMode(folder.get(), mode);
    return moved;
}

}  // namespace

Result<void> moveIntoTrash(int folder, const char* name, int trash, const char* nameThere) {
    if (auto checked = checkTrashable(folder, name, trash); !checked) return checked;
    if (renameExclusively(folder, name, trash, nameThere)) return {};
    return errnoFailure();
}

Result<void> moveToTrash(const Volume& volume, const Volume::Entry& item, std::string_view home) {
    struct stat status {};
    if (::fstatat(item.folder.get(), item.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        return errnoFailure();
    }
    const auto trash = openTrash(volume, home);
    if (!trash) return tl::unexpected(trash.error());
    if (auto checked = checkTrashable(item.folder.get(), item.name.c_str(), trash->get()); !checked) {
        return checked;
    }
    auto moved = moveToFreeName(item, trash->get());
    if (!moved && moved.error() == std::errc::permission_denied) {
        return moveWithOwnerRights(item, trash->get());
    }
    return moved;
}

}  // namespace orvane
