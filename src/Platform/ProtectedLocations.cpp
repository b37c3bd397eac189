#include "Platform/ProtectedLocations.h"

#include "Platform/SystemFolders.h"

namespace orvane {

ProtectedLocations::ProtectedLocations(const FileManager& fileManager)
    : folders_(fileManager), crowdedFolders_(fileManager) {
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

bool ProtectedLocations::contains(const Result<EntryFacts>& found) const {
    if (!found) return cannotTell(found.error());
    return folders_.contains(found->identity) || crowdedFolders_.contains(found->folder);
}

}  // namespace orvane
