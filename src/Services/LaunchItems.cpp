#include "Services/LaunchItems.h"

#include <optional>
#include <utility>

#include "Formats/PropertyList.h"
#include "Services/ParallelFor.h"
#include "Text/UTF8.h"

namespace orvane {

namespace {

/// Every property list of one folder, as the item that it is if its text matches.
void appendCandidates(std::vector<RelatedItem>& candidates, const FileManager& fileManager,
                      const FileURL& folder, RelatedItemKind kind, bool requiresAdministrator) {
    auto entries = fileManager.contentsOfDirectory(folder, {});
    if (!entries) return;
    for (auto& entry : *entries) {
        if (entry.url.pathExtension() != "plist") continue;
        RelatedItem item;
        item.url = std::move(entry.url);
        item.kind = kind;
        item.requiresAdministrator = requiresAdministrator;
        candidates.push_back(std::move(item));
    }
}

/// The item with its label; absent when its text does not mention the application.
std::optional<RelatedItem> matching(RelatedItem item, const FileManager& fileManager,
                                    const SearchTerms& terms) {
    const auto text = launchItemText(fileManager, item.url);
    if (!text || !terms.areMentionedIn(*text)) return std::nullopt;
    readPropertyListTexts(*text, {{"Label", item.detail}});
    return item;
}

}  // namespace

std::optional<std::string> launchItemText(const FileManager& fileManager, const FileURL& url) {
    auto text = fileManager.contents(url, PropertyListLimits::bytes);
    if (!text || !isValidUTF8(*text)) return std::nullopt;
    return *std::move(text);
}

std::vector<RelatedItem> launchItems(const asio::any_io_executor& pool, const FileManager& fileManager,
                                     const SystemFolders& folders, const SearchTerms& terms) {
    std::vector<RelatedItem> candidates;
    appendCandidates(candidates, fileManager, folders.userLaunchAgents, RelatedItemKind::launchAgent, false);
    appendCandidates(candidates, fileManager, folders.launchAgents, RelatedItemKind::launchAgent, true);
    appendCandidates(candidates, fileManager, folders.launchDaemons, RelatedItemKind::launchDaemon, true);

    std::vector<std::optional<RelatedItem>> matches(candidates.size());
    parallelFor(pool, candidates.size(), [&](std::size_t index) {
        matches[index] = matching(std::move(candidates[index]), fileManager, terms);
    });

    std::vector<RelatedItem> items;
    for (auto& match : matches) {
        if (match) items.push_back(*std::move(match));
    }
    return items;
}

}  // namespace orvane
