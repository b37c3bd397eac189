#include "Platform/SystemFolders.h"

#include <string>
#include <string_view>

namespace orvane {

namespace {

FileURL folder(std::string_view path) {
    return FileURL::fromPath(path, true);
}

std::vector<FileURL> libraryFolders(const FileURL& home) {
    std::vector<FileURL> folders;
    for (const auto* const name :
         {"Caches", "Preferences", "Saved Application State", "HTTPStorages", "WebKit", "Containers",
          "Application Support", "Logs", "LaunchAgents", "Group Containers"}) {
        folders.push_back(home.appendingPathComponent(std::string("Library/") + name, true));
    }
    return folders;
}

}  // namespace

SystemFolders::SystemFolders(const FileURL& homeFolder)
    : home(homeFolder),
      applications{folder("/Applications"), homeFolder.appendingPathComponent("Applications", true),
                   folder("/System/Applications")},
      userLaunchAgents(homeFolder.appendingPathComponent("Library/LaunchAgents", true)),
      launchAgents(folder("/Library/LaunchAgents")),
      launchDaemons(folder("/Library/LaunchDaemons")),
      groupContainers(homeFolder.appendingPathComponent("Library/Group Containers", true)),
      userLibrary(libraryFolders(homeFolder)),
      trash(homeFolder.appendingPathComponent(".Trash", true)) {}

std::vector<FileURL> SystemFolders::shared() const {
    auto folders = applications;
    folders.insert(folders.end(), userLibrary.begin(), userLibrary.end());
    folders.insert(folders.end(), {launchAgents, launchDaemons});
    return folders;
}

}  // namespace orvane
