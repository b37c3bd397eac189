#include "Platform/Posix/HomeFolder.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "Platform/Posix/FileSystemCalls.h"
#include "Platform/Posix/PosixFileManager.h"

namespace orvane {

namespace {

using Failure = tl::unexpected<std::string>;

tl::expected<std::string, std::string> onlyHomeOn(const std::shared_ptr<const Volume>& volume,
                                                  const std::string& root) {
    const auto homes = homesOn(volume);
    if (!homes) return Failure("the homes on '" + root + "' cannot be listed: " + homes.error().message());
    if (homes->size() == 1) return homes->front();
    if (homes->empty()) return Failure("'" + root + "' holds no user's home in /Users; give one with --home");
    std::string line = "'" + root + "' holds several homes; give one of them with --home:";
    for (const auto& home : *homes) line += " '" + home + "'";
    return Failure(std::move(line));
}

/// The path in its shortest form, as the paths below it are compared, if a folder of the volume has it.
tl::expected<std::string, std::string> existingFolder(const Volume& volume, std::string path) {
    if (!path.starts_with('/')) return Failure("the home '" + path + "' is not an absolute path");
    path = FileURL::fromPath(path, true).standardized().path();
    const auto folder = volume.openPath(path, searchFlags);
    if (!folder) return Failure("the home '" + path + "' cannot be used: " + folder.error().message());
    return path;
}

}  // namespace

Result<std::vector<std::string>> homesOn(const std::shared_ptr<const Volume>& volume) {
    const auto files = makeFileManager(volume, "/", "/");
    const auto entries =
        files->contentsOfDirectory(FileURL::fromPath("/Users", true), {.skipsHiddenFiles = true});
    std::vector<std::string> homes;
    if (!entries && entries.error() == std::errc::no_such_file_or_directory) return homes;
    if (!entries) return tl::unexpected(entries.error());
    for (const auto& entry : *entries) {
        const auto name = entry.url.lastPathComponent();
        if (entry.isDirectory && name != "Shared" && name != "Guest") homes.push_back(entry.url.path());
    }
    std::sort(homes.begin(), homes.end());
    return homes;
}

tl::expected<HomeFolder, std::string> homeFolder(const std::shared_ptr<const Volume>& volume,
                                                 const MachineOptions& options) {
    const auto own = ownHomeFolder();
    tl::expected<std::string, std::string> named = options.home.value_or(own.path);
    if (options.root && !options.home) named = onlyHomeOn(volume, *options.root);
    const auto path = named.and_then([&](const std::string& home) { return existingFolder(*volume, home); });
    if (!path) return Failure(path.error());
    if (options.root || options.home) return HomeFolder{*path, *path + "/Library/Application Support"};
    return HomeFolder{*path, own.applicationSupport};
}

}  // namespace orvane
