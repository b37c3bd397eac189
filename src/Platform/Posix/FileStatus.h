#pragma once

#include <sys/stat.h>

#include <cstdint>

#include "Models/FileIdentity.h"
#include "Platform/Result.h"

namespace orvane {

/// The facts about what a descriptor stands for, whatever it is opened for.
Result<struct stat> statusOf(int file);
/// The facts about an entry of an open folder, links not followed.
Result<struct stat> statusOf(int folder, const char* name);

/// Which file or folder these facts are about.
inline FileIdentity identityOf(const struct stat& status) {
    // Numbers of the device have a sign on some systems.
    return {static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino)};
}
inline Result<FileIdentity> identityOf(int file) {
    return statusOf(file).map([](const struct stat& status) { return identityOf(status); });
}

}  // namespace orvane
