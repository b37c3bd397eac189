#include "Services/AppRemovalService.h"

#include <iterator>
#include <string>
#include <utility>

#include "Services/ParallelFor.h"
#include "Services/RemovalRefusals.h"

namespace orvane {

namespace {

template <typename T>
void append(std::vector<T>& list, std::vector<T> more) {
    list.insert(list.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

std::optional<FileIdentity> folderOf(const RelatedItem& item, const FoldersOfItems& folders) {
    const auto found = folders.find(item.id());
    return found != folders.end() ? std::optional(found->second) : std::nullopt;
}

}  // namespace

AppRemovalService::AppRemovalService(const asio::any_io_executor& pool, FileManager& fileManager,
                                     Workspace& workspace, PrivilegedRunner& privilegedRunner)
    : Actor(pool),
      pool_(pool),
      fileManager_(fileManager),
      workspace_(workspace),
      privilegedRemovalService_(pool, fileManager, privilegedRunner) {}

Task<RemovalResult> AppRemovalService::moveToTrash(std::vector<RelatedItem> items,
                                                   std::vector<RunningService> runningServices,
                                                   ReviewedPlan reviewed) {
    const auto trash = [](EntryRemover& remover, const std::optional<FileIdentity>& folder) {
        return remover.moveToTrash(folder);
    };
    return performTask(remove(std::move(items), std::move(runningServices), std::move(reviewed),
                              PrivilegedRemovalService::Action::trash, trash));
}

Task<RemovalResult> AppRemovalService::deletePermanently(std::vector<RelatedItem> items,
                                                         std::vector<RunningService> runningServices,
                                                         ReviewedPlan reviewed) {
    const auto removeForGood = [this](EntryRemover& remover, const std::optional<FileIdentity>& folder) {
        return remover.remove(folder, [this](FunctionRef<void()> work) { workTogether(pool_, work); });
    };
    return performTask(remove(std::move(items), std::move(runningServices), std::move(reviewed),
                              PrivilegedRemovalService::Action::permanent, removeForGood));
}

Task<RemovalResult> AppRemovalService::remove(std::vector<RelatedItem> items,
                                              std::vector<RunningService> runningServices,
                                              ReviewedPlan reviewed,
                                              PrivilegedRemovalService::Action privilegedAction,
                                              Operation operation) {
    for (const auto& service : runningServices) workspace_.terminate(service);

    RemovalResult result;
    std::vector<RelatedItem> privileged;
    std::vector<RelatedItem> secondTries;
    const RemovalRefusals refusals(fileManager_, reviewed.kept);
    auto remover = fileManager_.makeEntryRemover();
    for (auto& item : items) {
        // Looked at when its turn comes: the disk may have changed while the items before it went.
        const auto found = remover->look(item.url);
        if (const auto reason = refusals.reason(item, found); !reason.empty()) {
            result.failed.push_back({std::move(item.url), std::string(reason)});
        } else if (item.requiresAdministrator) {
            privileged.push_back(std::move(item));
        } else if (found && (!found->isSymbolicLink || fileManager_.fileExists(item.url))) {
            if (operation(*remover, folderOf(item, reviewed.folders))) {
                result.removed.push_back(std::move(item.url));
            } else {
                // Whatever the reason, administrator rights are the second try.
                secondTries.push_back(std::move(item));
            }
        }
    }
    // No folder is kept open while a person reads the administrator's prompt.
    remover.reset();
    append(privileged, std::move(secondTries));

    auto privilegedResult = co_await privilegedRemovalService_.remove(std::move(privileged), privilegedAction,
                                                                      std::move(reviewed.folders));
    append(result.removed, std::move(privilegedResult.removed));
    append(result.failed, std::move(privilegedResult.failed));
    co_return result;
}

}  // namespace orvane
