#include "Platform/ProtectedLocations.h"

#include "Platform/SystemFolders.h"

namespace orvane {

ProtectedLocations::ProtectedLocations(const FileManager& fileManager)
    : fileManager_(fileManager), folders_(fileManager), crowdedFolders_(fileManager) {
    const SystemFolders systemFolders(fileManager.homeDirectoryForCurrentUser());
    auto folders = systemFolders.shared();
    folders.push_back(systemFolders.home);
    folders.push_back(systemFolders.trash);
    for (const auto& folder : folders) {
        folders_.addWithFolders(folder.path());
        folders_.addFoldersUpwards(folder.path() + "/.");
    }
    crowdedFolders_.addFolder("/");
    // Beside the home as it is spelled, and beside the folder that it leads to.
    crowdedFolders_.addFolder(folderPath(systemFolders.home.path()));
    crowdedFolders_.addFolder(systemFolders.home.path() + "/..");
}

bool ProtectedLocations::contains(const FileURL& url) const {
    return contains(url, fileManager_.identity(url));
}

bool ProtectedLocations::contains(const FileURL& url, const Result<FileIdentity>& found) const {
    if (folders_.contains(found)) return true;
    const auto path = url.fileSystemPath();
    const bool isThere = found || cannotTell(found.error());
    return path && isThere && crowdedFolders_.containFolderOf(*path);
}

}  // namespace orvane
