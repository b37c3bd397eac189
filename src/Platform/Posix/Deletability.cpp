#include "Platform/Posix/Deletability.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Platform/Posix/FileSystemCalls.h"

namespace orvane {

bool isDeletable(const Volume::Entry& entry) {
    const int folder = entry.folder.get();
    struct stat folderStatus {};
    struct stat status {};
    if (::fstat(folder, &folderStatus) != 0 ||
        ::fstatat(folder, entry.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        return false;
    }
    // Knows access control lists, locked folders and read-only file systems as well.
    if (::faccessat(folder, ".", W_OK | X_OK, AT_EACCESS) != 0) return false;
    const auto user = ::geteuid();
    const bool isSticky = (folderStatus.st_mode & S_ISVTX) != 0;
    if (isSticky && user != 0 && user != status.st_uid && user != folderStatus.st_uid) return false;
    const auto folderAttributes = entryAttributes(folder, "");
    const auto attributes = entryAttributes(folder, entry.name.c_str());
    return folderAttributes && attributes && !folderAttributes->isAppendOnly && !attributes->isImmutable &&
           !attributes->isAppendOnly && !attributes->isMountPoint;
}

}  // namespace orvane
