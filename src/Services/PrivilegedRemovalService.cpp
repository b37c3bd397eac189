#include "Services/PrivilegedRemovalService.h"

#include <array>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "Platform/SystemFolders.h"
#include "Text/UTF8.h"

namespace orvane {

namespace {

constexpr std::string_view notGranted = "Administrator permission was not granted.";
constexpr std::string_view stillExists = "The item still exists after administrator authorization.";

/// A count that nobody has come to.
std::uint64_t unguessedCount() {
    std::random_device device;
    constexpr std::uint64_t nobodyCountsSoFar = std::uint64_t{1} << 63;
    return nobodyCountsSoFar | (std::uint64_t{device()} << 32) | device();
}

/// A free name in the Trash. One that an earlier item of the batch was given is not reserved: nothing has
/// been moved yet, and so two items with the same name go to the same place, where the later one replaces the
/// earlier one.
FileURL uniqueTrashDestination(const FileManager& fileManager, const FileURL& source, const FileURL& trash) {
    const auto name = source.lastPathComponent();
    const auto candidate = [&](std::uint64_t number) {
        return trash.appendingPathComponent(candidateNameInTrash(name, number));
    };
    for (std::uint64_t number = 1;; ++number) {
        // A dangling link is in the way as well: what is in the Trash is not replaced.
        const auto there = fileManager.identity(candidate(number));
        if (there) continue;
        // Where the system hides the Trash from this program, or the disk cannot be read, any name may be
        // taken.
        const bool isHidden = there.error() == std::errc::operation_not_permitted ||
                              there.error() == std::errc::permission_denied || cannotTell(there.error());
        return candidate(isHidden ? unguessedCount() : number);
    }
}

RemovalResult failureResult(const std::vector<RelatedItem>& items, std::string_view reason) {
    RemovalResult result;
    for (const auto& item : items) result.failed.push_back({item.url, std::string(reason)});
    return result;
}

PrivilegedRequest requestFor(const FileManager& fileManager, const std::vector<RelatedItem>& items,
                             RemovalMode mode, const FoldersOfItems& folders) {
    using Kind = PrivilegedRequest::Item::Kind;
    const auto trash = SystemFolders(fileManager.homeDirectoryForCurrentUser()).trash;
    PrivilegedRequest request{mode, {}};
    for (const auto& item : items) {
        // What is no absolute path names no file, and no shell may take it for one.
        if (!item.url.fileSystemPath()) continue;
        auto destination = mode == RemovalMode::trash
                               ? uniqueTrashDestination(fileManager, item.url, trash).path()
                               : std::string();
        const auto shown = folders.find(item.id());
        const auto folder = shown != folders.end() ? std::optional(shown->second) : std::nullopt;
        request.items.push_back({item.kind == RelatedItemKind::launchDaemon ? Kind::daemon : Kind::item,
                                 item.url.path(), std::move(destination), folder});
    }
    return request;
}

/// The text without the white space and line ends around it, as the Mac defines these.
std::string_view trimmed(std::string_view text) {
    static constexpr std::array<std::string_view, 26> whiteSpace{
        "\t",           "\n",           "\v",           "\f",           "\r",           " ",
        "\xc2\x85",     "\xc2\xa0",     "\xe1\x9a\x80", "\xe2\x80\x80", "\xe2\x80\x81", "\xe2\x80\x82",
        "\xe2\x80\x83", "\xe2\x80\x84", "\xe2\x80\x85", "\xe2\x80\x86", "\xe2\x80\x87", "\xe2\x80\x88",
        "\xe2\x80\x89", "\xe2\x80\x8a", "\xe2\x80\x8b", "\xe2\x80\xa8", "\xe2\x80\xa9", "\xe2\x80\xaf",
        "\xe2\x81\x9f", "\xe3\x80\x80"};
    for (bool found = true; std::exchange(found, false);) {
        for (const auto space : whiteSpace) {
            if (text.starts_with(space)) {
                text.remove_prefix(space.size());
                found = true;
            }
            if (text.ends_with(space)) {
                text.remove_suffix(space.size());
                found = true;
            }
        }
    }
    return text;
}

/// Why the run failed: what it wrote to standard error, if that is text.
std::string_view reasonFor(std::string_view standardError) {
    const auto text = isValidUTF8(standardError) ? trimmed(standardError) : std::string_view();
    return text.empty() ? notGranted : text;
}

/// What the disk says after the commands have run. `reasons` are the runner's, by the items that the request
/// has: those that name a file.
RemovalResult resultOnDisk(const FileManager& fileManager, const std::vector<RelatedItem>& items,
                           const std::vector<std::string>& reasons) {
    RemovalResult result;
    std::size_t place = 0;
    for (const auto& item : items) {
        const auto reason = item.url.fileSystemPath() ? place++ : reasons.size();
        if (!fileManager.fileExists(item.url)) {
            result.removed.push_back(item.url);
            continue;
        }
        std::string text(stillExists);
        if (reason < reasons.size() && !reasons[reason].empty()) text += " " + reasons[reason];
        result.failed.push_back({item.url, std::move(text)});
    }
    return result;
}

RemovalResult removeBatch(const FileManager& fileManager, PrivilegedRunner& privilegedRunner,
                          const std::vector<RelatedItem>& items, RemovalMode mode,
                          const FoldersOfItems& folders) {
    const auto request = requestFor(fileManager, items, mode, folders);
    PrivilegedOutcome outcome;
    // No prompt for nothing.
    if (!request.items.empty()) {
        outcome = privilegedRunner.run(request);
        if (!outcome.launchError.empty()) return failureResult(items, outcome.launchError);
        if (outcome.terminationStatus != 0) return failureResult(items, reasonFor(outcome.standardError));
    }
    return resultOnDisk(fileManager, items, outcome.reasons);
}

}  // namespace

PrivilegedRemovalService::PrivilegedRemovalService(const asio::any_io_executor& pool,
                                                   const FileManager& fileManager,
                                                   PrivilegedRunner& privilegedRunner)
    : Actor(pool), fileManager_(fileManager), privilegedRunner_(privilegedRunner) {}

Task<RemovalResult> PrivilegedRemovalService::remove(std::vector<RelatedItem> items, Action action,
                                                     FoldersOfItems folders) {
    return perform([this, items = std::move(items), action, folders = std::move(folders)] {
        return removeBatch(fileManager_, privilegedRunner_, items, action, folders);
    });
}

}  // namespace orvane
