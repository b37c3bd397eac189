#include "Platform/Linux/RootOwned.h"

#include <sys/stat.h>

namespace orvane {

namespace {

/// The mode of an entry that only root can write to; 0 for any other.
mode_t modeIfRootsOwn(const std::string& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0 || status.st_uid != 0) return 0;
    return (status.st_mode & (S_IWGRP | S_IWOTH)) == 0 ? status.st_mode : 0;
}

}  // namespace

bool isRootsOwnProgram(const std::string& path) {
    if (!path.starts_with('/')) return false;
    const auto mode = modeIfRootsOwn(path);
    if (!S_ISREG(mode) || (mode & S_IXUSR) == 0) return false;
    for (auto end = path.rfind('/');; end = path.rfind('/', end - 1)) {
        if (!S_ISDIR(modeIfRootsOwn(end == 0 ? "/" : path.substr(0, end)))) return false;
        if (end == 0) return true;
    }
}

}  // namespace orvane
