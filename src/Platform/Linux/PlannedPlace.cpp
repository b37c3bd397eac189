#include "Platform/Linux/PlannedPlace.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <optional>
#include <string_view>
#include <utility>

#include "Models/ApplicationBundle.h"
#include "Models/FileURL.h"
#include "Platform/Posix/FileStatus.h"
#include "Platform/Posix/FileSystemCalls.h"
#include "Platform/SystemFolders.h"

namespace orvane {

namespace {

using Item = PrivilegedRequest::Item;
using Refusal = tl::unexpected<std::string>;

constexpr const char* notPlanned =
    "Administrator rights are not used for it: it lies in none of the places where applications keep their "
    "files.";
constexpr const char* moved = "The folder that it lies in is no longer the one that was shown.";
constexpr const char* strange =
    "Administrator rights are not used for it: a link leads to the folder of another user.";

/// A place in a fixed folder.
struct Place {
    std::string folder;
    /// The rest of the item's path, one component or several.
    std::string rest;
    /// Whether the folder is the machine's, not the user's.
    bool isOfMachine = false;
};

/// The rest of a path below a folder; absent for any other path, and for the folder itself.
std::optional<std::string> below(const std::string& folder, const std::string& path) {
    const auto prefix = folder == "/" ? folder : folder + "/";
    if (!path.starts_with(prefix) || path.size() == prefix.size()) return std::nullopt;
    return path.substr(prefix.size());
}

std::optional<Place> placeOf(const Item& item, const SystemFolders& folders) {
    const auto extension = FileURL::fromPath(item.source, false).pathExtension();
    const bool isDaemon = item.kind == Item::Kind::daemon;
    std::optional<Place> place;
    const auto tryFolder = [&](const FileURL& folder, bool isOfMachine, bool mayBeDeep, bool isAllowed) {
        auto rest = below(folder.path(), item.source);
        if (place || !isAllowed || !rest) return;
        if (mayBeDeep || rest->find('/') == std::string::npos) {
            place = Place{folder.path(), std::move(*rest), isOfMachine};
        }
    };
    const bool isList = extension == "plist";
    tryFolder(folders.launchDaemons, true, false, isDaemon && isList);
    if (isDaemon) return place;
    // The system's applications are the system's.
    const bool isBundle = isApplicationBundle(FileURL::fromPath(item.source, false));
    tryFolder(folders.applications[0], true, false, isBundle);
    tryFolder(folders.applications[1], false, false, isBundle);
    tryFolder(folders.launchAgents, true, false, isList);
    tryFolder(folders.userLaunchAgents, false, false, isList);
    tryFolder(folders.groupContainers, false, false, true);
    for (const auto& folder : folders.library) tryFolder(folder, false, true, true);
    return place;
}

/// The fixed folder itself.
tl::expected<FileDescriptor, std::string> openFixedFolder(const ServedHome& home, const Place& place) {
    constexpr int flags = O_PATH | O_DIRECTORY;
    auto folder = openInRootWithoutLinks(home.root, place.folder.c_str(), flags);
    if (folder || errno != ELOOP) {
        if (!folder) return Refusal(currentError().message());
        return folder;
    }
    folder = openInRoot(home.root, place.folder.c_str(), flags, 0);
    if (!folder) return Refusal(currentError().message());
    const auto status = statusOf(folder.get());
    if (!status) return Refusal(status.error().message());
    const bool isTrusted = status->st_uid == home.owner || (place.isOfMachine && status->st_uid == 0);
    if (!isTrusted) return Refusal(strange);
    return folder;
}

}  // namespace

tl::expected<ServedHome, std::string> openServedHome(int root, const std::string& path) {
    ServedHome home{root, path, openInRootWithoutLinks(root, path.c_str(), O_PATH | O_DIRECTORY), 0, 0};
    struct stat status {};
    if (!home.folder || ::fstat(home.folder.get(), &status) != 0) {
        return Refusal("the home '" + path + "' cannot be used: " + currentError().message());
    }
    home.owner = status.st_uid;
    home.group = status.st_gid;
    return home;
}

tl::expected<FileDescriptor, std::string> openFolderOfPlannedItem(const ServedHome& home, const Item& item) {
    const auto place = placeOf(item, SystemFolders(FileURL::fromPath(home.path, true)));
    if (!place) return Refusal(notPlanned);
    auto folder = openFixedFolder(home, *place);
    if (!folder) return folder;
    if (const auto slash = place->rest.rfind('/'); slash != std::string::npos) {
        folder = openOnSameMount(folder->get(), place->rest.substr(0, slash).c_str(), O_PATH | O_DIRECTORY);
        if (!*folder) return Refusal(currentError().message());
    }
    const auto identity = identityOf(folder->get());
    if (!identity) return Refusal(identity.error().message());
    if (item.folder && *item.folder != *identity) return Refusal(moved);
    return folder;
}

std::string nameInTrash(const std::string& home, std::string_view path) {
    const auto trash = SystemFolders(FileURL::fromPath(home, true)).trash;
    const auto rest = below(trash.path(), std::string(path));
    return rest && rest->find('/') == std::string::npos ? *rest : std::string();
}

}  // namespace orvane
