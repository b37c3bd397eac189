#include "Services/ItemReason.h"

#include <algorithm>
#include <string_view>

#include "Platform/SystemFolders.h"
#include "Services/LaunchItems.h"
#include "Services/RelatedLocations.h"
#include "Services/SearchTerms.h"

namespace orvane {

namespace {

std::string quoted(std::string_view text) {
    return "“" + std::string(text) + "”";
}

/// Whether a text can be the name of a file, and so of one in the folder that it is looked for in.
bool isFileName(std::string_view text) {
    return !text.empty() && text != "." && text != ".." && text.find('/') == text.npos;
}

std::string placeReason(const RelatedLocation& location, const InstalledApplication& application) {
    if (location.naming == RelatedLocation::Naming::bundle) return "The application itself";
    const bool isByIdentifier = location.naming == RelatedLocation::Naming::identifier;
    const auto text = isByIdentifier ? application.bundleIdentifier : bundleName(application);
    const auto giver = (isByIdentifier ? "the identifier " : "the application ") + quoted(*text);
    if (!isFileName(*text)) return "Where " + giver + " leads from " + quoted(location.folder);
    return "In " + quoted(location.folder) + ", named after " + giver;
}

bool isShort(std::string_view term) {
    constexpr std::size_t fewest = 4;
    // Bytes that go on with a character are not counted.
    const auto begins = [](char unit) { return (static_cast<unsigned char>(unit) & 0xC0U) != 0x80U; };
    return static_cast<std::size_t>(std::ranges::count_if(term, begins)) < fewest;
}

std::optional<std::string> mentionReason(const std::string& beginning, std::string_view text,
                                         const SearchTerms& terms) {
    const auto mentioned = terms.mentionedIn(text);
    if (mentioned.empty()) return std::nullopt;
    const auto telling = std::ranges::find_if_not(mentioned, isShort);
    if (telling != mentioned.end()) return beginning + quoted(*telling);
    return beginning + quoted(mentioned.front()) + ", which is so short that others may, too";
}

}  // namespace

std::optional<std::string> whyListed(const InstalledApplication& application, const RelatedItem& item,
                                     const FileManager& fileManager, const LocalizedText& localizedText) {
    for (const auto& location : relatedLocations(application, fileManager.homeDirectoryForCurrentUser())) {
        if (location.url == item.url && location.kind == item.kind) return placeReason(location, application);
    }
    const SystemFolders folders(fileManager.homeDirectoryForCurrentUser());
    const SearchTerms terms(application, localizedText);
    const auto name = item.url.lastPathComponent();
    const auto isIn = [&](const FileURL& folder) {
        return folder.appendingPathComponent(name).path() == item.url.path();
    };
    const bool isLaunchItem = item.kind == RelatedItemKind::launchDaemon
                                  ? isIn(folders.launchDaemons)
                                  : item.kind == RelatedItemKind::launchAgent &&
                                        (isIn(folders.userLaunchAgents) || isIn(folders.launchAgents));
    if (isLaunchItem) {
        const auto text = launchItemText(fileManager, item.url);
        return text ? mentionReason("Mentions ", *text, terms) : std::nullopt;
    }
    if (item.kind == RelatedItemKind::container && isIn(folders.groupContainers))
        return mentionReason("Its name mentions ", name, terms);
    return std::nullopt;
}

}  // namespace orvane
