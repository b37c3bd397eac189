#include "Platform/SystemFolders.h"

namespace orvane {

namespace {

FileURL folder(std::string_view path) {
    return FileURL::fromPath(path, true);
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
      trash(homeFolder.appendingPathComponent(".Trash", true)) {}

}  // namespace orvane
