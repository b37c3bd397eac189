#include "Platform/SystemFolders.h"

#include <array>
#include <string_view>

namespace orvane {

namespace {

constexpr std::array<std::string_view, 8> namesInLibrary{
    "Caches", "Preferences", "Saved Application State", "HTTPStorages",
    "WebKit", "Containers",  "Application Support",     "Logs"};

std::vector<FileURL> libraryFolders(const FileURL& home) {
    std::vector<FileURL> folders;
    folders.reserve(namesInLibrary.size());
    for (const auto name : namesInLibrary) {
        folders.push_back(home.appendingPathComponent("Library", true).appendingPathComponent(name, true));
    }
    return folders;
}

FileURL folder(std::string_view path) {
    return FileURL::fromPath(path, true);
}

}  // namespace

SystemFolders::SystemFolders(const FileURL& homeFolder)
    : home(homeFolder),
      applications{folder("/Applications"), homeFolder.appendingPathComponent("Applications", true),
                   folder("/System/Applications")},
      library(libraryFolders(homeFolder)),
      userLaunchAgents(homeFolder.appendingPathComponent("Library/LaunchAgents", true)),
      launchAgents(folder("/Library/LaunchAgents")),
      launchDaemons(folder("/Library/LaunchDaemons")),
      groupContainers(homeFolder.appendingPathComponent("Library/Group Containers", true)),
      trash(homeFolder.appendingPathComponent(".Trash", true)) {}

std::vector<FileURL> SystemFolders::shared() const {
    auto folders = applications;
    folders.insert(folders.end(), library.begin(), library.end());
    folders.insert(folders.end(), {userLaunchAgents, groupContainers, launchAgents, launchDaemons});
    return folders;
}

}  // namespace orvane
