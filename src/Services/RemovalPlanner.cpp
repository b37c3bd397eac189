#include "Services/RemovalPlanner.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <unordered_set>
#include <utility>

#include "Models/ApplicationBundle.h"
#include "Platform/Places.h"
#include "Platform/SystemFolders.h"
#include "Services/DiskSize.h"
#include "Services/ItemReason.h"
#include "Services/LaunchItems.h"
#include "Services/LinkedPath.h"
#include "Services/ParallelFor.h"
#include "Services/RelatedLocations.h"
#include "Services/SearchTerms.h"

namespace orvane {

namespace {

void appendExistingItems(std::vector<RelatedItem>& items, const FileManager& fileManager,
                         const SystemFolders& folders, std::vector<RelatedLocation> locations) {
    for (auto& location : locations) {
        // An identifier may hold slashes, and then a link on the way leads to what is not this application's.
        const bool isElsewhere = location.kind != RelatedItemKind::application &&
                                 leadsThroughLink(fileManager, folders, location.url);
        if (isElsewhere || !fileManager.fileExists(location.url)) continue;
        RelatedItem item;
        item.requiresAdministrator = !fileManager.isDeletableFile(location.url);
        item.url = std::move(location.url);
        item.kind = location.kind;
        items.push_back(std::move(item));
    }
}

void appendGroupContainers(std::vector<RelatedItem>& items, const FileManager& fileManager,
                           const FileURL& folder, const SearchTerms& terms) {
    auto entries = fileManager.contentsOfDirectory(folder, {});
    if (!entries) return;
    for (auto& entry : *entries) {
        if (!terms.areMentionedIn(entry.url.lastPathComponent())) continue;
        RelatedItem item;
        item.url = std::move(entry.url);
        item.kind = RelatedItemKind::container;
        items.push_back(std::move(item));
    }
}

/// Drops every item whose standardized path an earlier one has.
void makeUnique(std::vector<RelatedItem>& items) {
    std::unordered_set<std::string> seenPaths;
    std::erase_if(items, [&](const RelatedItem& item) {
        return !seenPaths.insert(item.url.standardized().path()).second;
    });
}

void measure(std::vector<RelatedItem>& items, const asio::any_io_executor& pool,
             const FileManager& fileManager) {
    std::vector<FileURL> urls;
    urls.reserve(items.size());
    for (const auto& item : items) urls.push_back(item.url);
    const auto sizes = itemSizes(pool, fileManager, urls);
    for (std::size_t i = 0; i < sizes.size(); ++i) items[i].size = sizes[i];
}

std::vector<RunningService> runningServices(const Workspace& workspace,
                                            const InstalledApplication& application,
                                            const SearchTerms& terms) {
    // What is no bundle holds no application: every process of a home or a disk would belong to it.
    const auto bundlePath =
        isApplicationBundle(application.url) ? application.url.fileSystemPath() : std::nullopt;
    std::vector<RunningService> services;
    for (auto& running : workspace.runningApplications()) {
        auto executablePath = running.executableURL ? running.executableURL->path() : std::string();
        const auto& identifier = running.bundleIdentifier;
        const bool belongs = identifier == application.bundleIdentifier ||
                             (bundlePath && executablePath.starts_with(*bundlePath)) ||
                             (identifier && terms.areMentionedIn(*identifier));
        if (!belongs) continue;
        services.push_back({running.processIdentifier,
                            std::move(running.localizedName).value_or(application.name),
                            std::move(executablePath)});
    }
    return services;
}

}  // namespace

RemovalPlanner::RemovalPlanner(const asio::any_io_executor& pool, const FileManager& fileManager,
                               const Workspace& workspace, const LocalizedText& localizedText)
    : Actor(pool),
      pool_(pool),
      fileManager_(fileManager),
      workspace_(workspace),
      localizedText_(localizedText) {}

Task<RemovalPlan> RemovalPlanner::plan(InstalledApplication application) {
    return perform([this, application = std::move(application)]() mutable {
        const SystemFolders folders(fileManager_.homeDirectoryForCurrentUser());
        const SearchTerms terms(application, localizedText_);

        std::vector<RelatedItem> items;
        appendExistingItems(items, fileManager_, folders, relatedLocations(application, folders.home));
        std::ranges::move(launchItems(pool_, fileManager_, folders, terms), std::back_inserter(items));
        appendGroupContainers(items, fileManager_, folders.groupContainers, terms);
        makeUnique(items);
        measure(items, pool_, fileManager_);

        FoldersOfItems shownFolders;
        for (const auto& item : items) {
            const auto folder = fileManager_.identity(FileURL::fromPath(folderPath(item.url.path()), true));
            if (folder) shownFolders.emplace(item.id(), *folder);
        }
        auto services = runningServices(workspace_, application, terms);
        return RemovalPlan{std::move(application), std::move(items), std::move(services),
                           std::move(shownFolders)};
    });
}

Task<std::vector<std::string>> RemovalPlanner::reasons(RemovalPlan plan) {
    return perform([this, plan = std::move(plan)] {
        std::vector<std::string> reasons(plan.items.size());
        parallelFor(pool_, plan.items.size(), [&](std::size_t index) {
            const auto reason = whyListed(plan.application, plan.items[index], fileManager_, localizedText_);
            reasons[index] = reason.value_or(std::string());
        });
        return reasons;
    });
}

}  // namespace orvane
