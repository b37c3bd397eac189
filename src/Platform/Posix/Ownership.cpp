#include "Platform/Posix/Ownership.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Platform/Posix/DirectoryReader.h"
#include "Platform/Posix/FileDescriptor.h"
#include "Platform/Posix/FileSystemCalls.h"
#include "Platform/Posix/TemporaryName.h"

namespace orvane {

namespace {

constexpr uid_t administrator = 0;

/// Whether a folder is as this process has made it: its own, and empty.
bool isFresh(const FileDescriptor& folder) {
    struct stat status {};
    if (::fstat(folder.get(), &status) != 0 || status.st_uid != ::geteuid()) return false;
    DirectoryReader reader;
    reader.read(FileDescriptor(::openat(folder.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)));
    return !reader.next() && !reader.error();
}

/// Gives a folder that this process has just made to the owner of the one around it.
Result<void> giveFreshFolder(int folder, const char* name) {
    const FileDescriptor made(::openat(folder, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!made) return errnoFailure();
    if (!isFresh(made)) return failure(std::errc::permission_denied);
    return giveToOwnerOf(folder, made.get());
}

}  // namespace

Result<void> giveToOwnerOf(int folder, int file) {
    if (::geteuid() != administrator) return {};
    struct stat owner {};
    if (::fstat(folder, &owner) != 0) return errnoFailure();
    if (owner.st_uid == administrator) return {};
    if (::fchown(file, owner.st_uid, owner.st_gid) != 0) return errnoFailure();
    return {};
}

Result<void> makeFolder(int folder, const char* name, mode_t mode) {
    struct stat owner {};
    if (::fstat(folder, &owner) != 0) return errnoFailure();
    if (::geteuid() != administrator || owner.st_uid == administrator) {
        if (::mkdirat(folder, name, mode) != 0) return errnoFailure();
        return {};
    }
    // Who finds the folder by its name may use it at once, so it has its owner before it has its name.
    const auto beside = temporaryName(".orvane-folder-");
    if (::mkdirat(folder, beside.c_str(), mode) != 0) return errnoFailure();
    auto given = giveFreshFolder(folder, beside.c_str());
    if (given && !renameExclusively(folder, beside.c_str(), folder, name)) given = errnoFailure();
    if (!given) ::unlinkat(folder, beside.c_str(), AT_REMOVEDIR);
    return given;
}

}  // namespace orvane
