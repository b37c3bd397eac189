#include "Services/AppRemovalService.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include "Services/ProtectedLocations.h"

namespace orvane {

namespace {

constexpr std::string_view isProtected =
    "Orvane does not remove this folder, because other applications use it.";
constexpr std::string_view climbs =
    "Orvane does not remove this item, because its path leads out of the folder that it names.";

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

/// Why an item is not even tried; empty when nothing speaks against it.
std::string_view refusal(const FileManager& fileManager, const ProtectedLocations& protectedLocations,
                         const FileURL& url) {
    if (protectedLocations.contains(url)) return isProtected;
    return hasParentComponent(url.path()) && fileManager.entryExists(url) ? climbs : std::string_view();
}

template <typename T>
void append(std::vector<T>& list, std::vector<T> more) {
    list.insert(list.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

}  // namespace

AppRemovalService::AppRemovalService(const asio::any_io_executor& pool, FileManager& fileManager,
                                     Workspace& workspace, PrivilegedRunner& privilegedRunner)
    : Actor(pool),
      fileManager_(fileManager),
      workspace_(workspace),
      privilegedRemovalService_(pool, fileManager, privilegedRunner) {}

Task<RemovalResult> AppRemovalService::moveToTrash(std::vector<RelatedItem> items,
                                                   std::vector<RunningService> runningServices) {
    return performTask(remove(std::move(items), std::move(runningServices),
                              PrivilegedRemovalService::Action::trash, &FileManager::trashItem));
}

Task<RemovalResult> AppRemovalService::deletePermanently(std::vector<RelatedItem> items,
                                                         std::vector<RunningService> runningServices) {
    return performTask(remove(std::move(items), std::move(runningServices),
                              PrivilegedRemovalService::Action::permanent, &FileManager::removeItem));
}

Task<RemovalResult> AppRemovalService::remove(std::vector<RelatedItem> items,
                                              std::vector<RunningService> runningServices,
                                              PrivilegedRemovalService::Action privilegedAction,
                                              Operation operation) {
    for (const auto& service : runningServices) workspace_.terminate(service);

    RemovalResult result;
    std::vector<RelatedItem> standard;
    std::vector<RelatedItem> privileged;
    const ProtectedLocations protectedLocations(fileManager_);
    for (auto& item : items) {
        if (const auto reason = refusal(fileManager_, protectedLocations, item.url); !reason.empty()) {
            result.failed.push_back({item.url, std::string(reason)});
        } else {
            (item.requiresAdministrator ? privileged : standard).push_back(std::move(item));
        }
    }

    for (auto& item : standard) {
        if (!fileManager_.fileExists(item.url)) continue;
        if ((fileManager_.*operation)(item.url)) {
            result.removed.push_back(item.url);
        } else {
            // Whatever the reason, administrator rights are the second try.
            privileged.push_back(std::move(item));
        }
    }

    auto privilegedResult =
        co_await privilegedRemovalService_.remove(std::move(privileged), privilegedAction);
    append(result.removed, std::move(privilegedResult.removed));
    append(result.failed, std::move(privilegedResult.failed));
    co_return result;
}

}  // namespace orvane
