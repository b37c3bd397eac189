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
    const auto status = statusOf(folder, name);
    if (!status) return tl::unexpected(status.error());
    const auto identity = identityOf(trash);
    if (!identity) return tl::unexpected(identity.error());
    WayUp fromFolder(folder);
    WayUp fromTrash(trash);
    return checkTrashable(fromFolder, name, *status, *identity, fromTrash);
}

namespace {

Result<void> moveToFreeName(int folder, const std::string& name, int trash) {
    for (std::uint64_t number = 1;; ++number) {
        const auto candidate = candidateNameInTrash(name, number);
        if (renameExclusively(folder, name.c_str(), trash, candidate.c_str())) return {};
        if (errno != EEXIST) return errnoFailure();
    }
}

/// A folder can only be moved to another one by who may write to it: its own entry ".." changes. Until it has
/// its old mode again no request to end is heeded. Who kills the program by force in that moment, or cuts its
/// power, finds the folder whole, in one place or the other, but writable to its owner.
Result<void> moveWithOwnerRights(int folder, const std::string& name, int trash) {
    const FileDescriptor item(::openat(folder, name.c_str(), folderFlags));
    struct stat status {};
    const bool mayHelp = item && ::fstat(item.get(), &status) == 0 && status.st_uid == ::geteuid() &&
                         (status.st_mode & S_IWUSR) == 0;
    const mode_t mode = status.st_mode & 07777;
    const SignalDeferral deferral;
    if (!mayHelp || !changeMode(item.get(), mode | S_IWUSR)) return failure(std::errc::permission_denied);
    auto result = moveToFreeName(folder, name, trash);
    changeMode(item.get(), mode);
    return result;
}

}  // namespace

Result<void> moveIntoTrash(int folder, const char* name, int trash, const char* nameThere) {
    if (auto checked = checkTrashable(folder, name, trash); !checked) return checked;
    if (renameExclusively(folder, name, trash, nameThere)) return {};
    return errnoFailure();
}

Result<void> Trash::take(WayUp& folder, const std::string& name, const struct stat& status) {
    const auto opened =
        folder_.open(volume_, home_ + "/" + trashName, [&] { return openTrash(volume_, home_); });
    if (!opened) return opened;
    const int trash = folder_.descriptor();
    auto checked = checkTrashable(folder, name.c_str(), status, folder_.identity(), folder_.wayUp());
    if (!checked) return checked;
    auto result = moveToFreeName(folder.folder(), name, trash);
    if (!result && result.error() == std::errc::permission_denied) {
        return moveWithOwnerRights(folder.folder(), name, trash);
    }
    return result;
}

}  // namespace orvane
