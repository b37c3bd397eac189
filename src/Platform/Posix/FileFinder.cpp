#include "Platform/Posix/FileFinder.h"

#include "Platform/Posix/FileStatus.h"
#include "Platform/Posix/FileSystemCalls.h"

namespace orvane {

Result<void> FileFinder::find(std::string_view path) {
    if (const auto place = Volume::place(path); place && isInKeptFolder(*place)) return {};
    // A link, which may lead nowhere; or nothing, or what cannot be told: the whole way says which.
    return volume_.find(path, 0);
}

bool FileFinder::isInKeptFolder(const Volume::Place& place) {
    if (!folder_ || place.folder != path_) {
        auto opened = volume_.openPath(place.folder, searchFlags);
        if (!opened) return false;
        path_ = place.folder;
        folder_ = std::move(*opened);
    }
    const auto status = statusOf(folder_.get(), std::string(place.name).c_str());
    return status && !S_ISLNK(status->st_mode);
}

}  // namespace orvane
