#pragma once

#include <sys/stat.h>

#include "Models/FileIdentity.h"
#include "Platform/Result.h"

namespace orvane {

/// The facts about what a descriptor stands for, one opened with O_PATH too.
Result<struct stat> statusOf(int file);
/// The facts about an entry of an open folder, links not followed.
Result<struct stat> statusOf(int folder, const char* name);

/// Which file or folder these facts are about.
inline FileIdentity identityOf(const struct stat& status) {
    return {status.st_dev, status.st_ino};
}
inline Result<FileIdentity> identityOf(int file) {
    return statusOf(file).map([](const struct stat& status) { return identityOf(status); });
}

}  // namespace orvane
