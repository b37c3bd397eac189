#include "Services/RemovalRefusals.h"

#include <algorithm>

#include "Models/ApplicationBundle.h"
#include "Services/LinkedPath.h"

namespace orvane {

namespace {

constexpr std::string_view isProtected =
    "Orvane does not remove this folder, because other applications use it.";
constexpr std::string_view climbs =
    "Orvane does not remove this item, because its path leads out of the folder that it names.";
constexpr std::string_view isLinked =
    "Orvane does not remove this item, because its path leads through a link.";
constexpr std::string_view isNoApplication =
    "Orvane does not remove this item, because it is not an application.";
constexpr std::string_view isSystemApplication =
    "Orvane does not remove this item, because it belongs to the system.";
constexpr std::string_view holdsKept =
    "Orvane does not remove this item, because something in it is to stay.";

/// Whether a path has a dot-dot component. Only an identifier or a catalog that was made up has one: it names
/// a file that is somewhere else than it seems to be.
bool hasParentComponent(std::string_view path) {
    for (std::size_t start = 0; start <= path.size();) {
        const auto end = std::min(path.find('/', start), path.size());
        if (path.substr(start, end - start) == "..") return true;
        start = end + 1;
    }
    return false;
}

bool isAtOrBelow(std::string_view path, std::string_view folder) {
    return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

}  // namespace

RemovalRefusals::RemovalRefusals(const FileManager& fileManager, const std::vector<RelatedItem>& kept)
    : fileManager_(fileManager),
      folders_(fileManager.homeDirectoryForCurrentUser()),
      protectedLocations_(fileManager),
      keptPlaces_(fileManager) {
    for (const auto& item : kept) {
        const auto path = item.url.fileSystemPath();
        if (!path) continue;
        keptPlaces_.addWithFolders(*path);
        keptPaths_.push_back(item.url.standardized().path());
    }
}

std::string_view RemovalRefusals::reason(const RelatedItem& item, const Result<EntryFacts>& found) const {
    const auto path = item.url.fileSystemPath();
    if (!path) return {};
    const bool isThere = found || cannotTell(found.error());
    // The administrator's items are handed on whether or not they are there, and may be back by then.
    if (!item.requiresAdministrator && !isThere) return {};
    if (protectedLocations_.contains(found)) return isProtected;
    if (hasParentComponent(*path)) return climbs;
    const bool isReachedDirectly = found && found->isReachedDirectly;
    if (!isReachedDirectly && leadsThroughLink(fileManager_, folders_, item.url)) return isLinked;
    if (holdsKeptItem(item.url, found)) return holdsKept;
    return item.kind == RelatedItemKind::application ? applicationReason(item.url) : std::string_view();
}

std::string_view RemovalRefusals::applicationReason(const FileURL& url) const {
    if (!isApplicationBundle(url)) return isNoApplication;
    // By its path, and by where it is on the disk: another name of the folder is the same folder.
    Places above(fileManager_);
    above.addFoldersUpwards(folderPath(url.path()));
    const bool isSystems = isBelowSystem(url) || above.contains(FileURL::fromPath("/System/.", true));
    return isSystems ? isSystemApplication : std::string_view();
}

bool RemovalRefusals::holdsKeptItem(const FileURL& url, const Result<EntryFacts>& found) const {
    if (keptPlaces_.contains(found.map([](const EntryFacts& entry) { return entry.identity; }))) return true;
    if (keptPaths_.empty()) return false;
    const auto path = url.standardized().path();
    return std::ranges::any_of(keptPaths_, [&](const auto& kept) { return isAtOrBelow(kept, path); });
}

}  // namespace orvane
