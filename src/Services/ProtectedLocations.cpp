#include "Services/ProtectedLocations.h"

#include <vector>

#include "Platform/SystemFolders.h"

namespace orvane {

namespace {

/// What many applications share in the user's Library; a related item is an entry of one of these.
constexpr std::string_view sharedLibraryFolders[] = {
    "Caches",       "Preferences",      "Saved Application State", "HTTPStorages",
    "WebKit",       "Containers",       "Application Support",     "Logs",
    "LaunchAgents", "Group Containers",
};

std::vector<FileURL> protectedFolders(const FileURL& home) {
    const SystemFolders folders(home);
    std::vector<FileURL> protectedFolders = folders.applications;
    protectedFolders.insert(protectedFolders.end(),
                            {folders.launchAgents, folders.launchDaemons, folders.trash});
    for (const auto name : sharedLibraryFolders) {
        protectedFolders.push_back(home.appendingPathComponent("Library").appendingPathComponent(name));
    }
    return protectedFolders;
}

}  // namespace

ProtectedLocations::ProtectedLocations(const FileManager& fileManager) : fileManager_(fileManager) {
    addFoldersUpwards("/.");
    for (const auto& folder : protectedFolders(fileManager.homeDirectoryForCurrentUser())) {
        addWithAncestors(folder.path());
    }
}

bool ProtectedLocations::contains(const FileURL& url) const {
    const auto identity = fileManager_.identity(url);
    if (!identity) return isShortage(identity.error());
    return !isComplete_ || identities_.contains(*identity);
}

/// The entry of every component of the path, and the folder that each leads to.
void ProtectedLocations::addWithAncestors(std::string_view path) {
    for (auto end = path.size(); end != 0; end = path.rfind('/', end - 1)) {
        const std::string component(path.substr(0, end));
        addFoldersUpwards(component + "/.");
        if (const auto entry = identity(component)) identities_.insert(*entry);
    }
}

/// A folder and those above it, as they are on the disk.
void ProtectedLocations::addFoldersUpwards(std::string path) {
    // Whatever is known is known with everything above it, and above the root there is the root.
    for (auto folder = identity(path); folder && identities_.insert(*folder).second;
         folder = identity(path)) {
        path += "/..";
    }
}

Result<FileIdentity> ProtectedLocations::identity(const std::string& path) {
    auto identity = fileManager_.identity(FileURL::fromPath(path, false));
    if (!identity && isShortage(identity.error())) isComplete_ = false;
    return identity;
}

}  // namespace orvane
