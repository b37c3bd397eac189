#include "Platform/Posix/FileStatus.h"

#include <fcntl.h>

namespace orvane {

Result<struct stat> statusOf(int file) {
    struct stat status {};
    if (::fstat(file, &status) != 0) return errnoFailure();
    return status;
}

Result<struct stat> statusOf(int folder, const char* name) {
    struct stat status {};
    if (::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0) return errnoFailure();
    return status;
}

}  // namespace orvane
