#include "Platform/Linux/TrashFolder.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <string>
#include <utility>

#include "Platform/FileManager.h"
#include "Platform/Posix/FileStatus.h"
#include "Platform/Posix/FileSystemCalls.h"
#include "Platform/Posix/Ownership.h"
#include "Platform/Posix/SignalDeferral.h"
#include "Platform/Posix/Trash.h"

namespace orvane {

namespace {

constexpr const char* trashName = ".Trash";
constexpr int folderFlags = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

}  // namespace

Result<FileDescriptor> openTrash(int home) {
    const auto homeStatus = statusOf(home);
    if (!homeStatus) return tl::unexpected(homeStatus.error());
    FileDescriptor trash(::openat(home, trashName, folderFlags));
    if (!trash && errno == ENOENT) {
        const auto made = makeFolder(home, trashName, S_IRWXU);
        // Made by somebody else in the meantime: it is looked at like any other.
        if (!made && made.error() != std::errc::file_exists) return tl::unexpected(made.error());
        trash = FileDescriptor(::openat(home, trashName, folderFlags));
    }
    if (!trash) return errnoFailure();
    const auto status = statusOf(trash.get());
    if (!status) return tl::unexpected(status.error());
    const auto user = ::geteuid();
    const bool isOwn = status->st_uid == user || (user == 0 && status->st_uid == homeStatus->st_uid);
    if (!isOwn) return failure(std::errc::permission_denied);
    return trash;
}

Result<FileDescriptor> openTrash(const Volume& volume, std::string_view home) {
    const auto folder = volume.openPath(home, O_PATH | O_DIRECTORY);
    if (!folder) return tl::unexpected(folder.error());
    return openTrash(folder->get());
}

Result<void> checkTrashable(int folder, const char* name, int trash) {
    const auto identity = identityOf(trash);
    if (!identity) return tl::unexpected(identity.error());
    return checkTrashable(folder, name, *identity, trash);
}

namespace {

Result<void> moveToFreeName(const Volume::Entry& item, int trash) {
    for (std::uint64_t number = 1;; ++number) {
        const auto candidate = candidateNameInTrash(item.name, number);
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
    auto result = moveToFreeName(item, trash);
    changeMode(folder.get(), mode);
    return result;
}

}  // namespace

Result<void> moveIntoTrash(int folder, const char* name, int trash, const char* nameThere) {
    if (auto checked = checkTrashable(folder, name, trash); !checked) return checked;
    if (renameExclusively(folder, name, trash, nameThere)) return {};
    return errnoFailure();
}

Result<void> moveToTrash(const Volume& volume, const Volume::Entry& item, std::string_view home) {
    const auto status = statusOf(item.folder.get(), item.name.c_str());
    if (!status) return tl::unexpected(status.error());
    const auto trash = openTrash(volume, home);
    if (!trash) return tl::unexpected(trash.error());
    if (auto checked = checkTrashable(item.folder.get(), item.name.c_str(), trash->get()); !checked) {
        return checked;
    }
    auto result = moveToFreeName(item, trash->get());
    if (!result && result.error() == std::errc::permission_denied) {
        return moveWithOwnerRights(item, trash->get());
    }
    return result;
}

}  // namespace orvane
