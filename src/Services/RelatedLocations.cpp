#include "Services/RelatedLocations.h"

#include <utility>

#include "Services/SearchTerms.h"

namespace orvane {

std::vector<RelatedLocation> relatedLocations(const InstalledApplication& application, const FileURL& home) {
    using Naming = RelatedLocation::Naming;
    std::vector<RelatedLocation> locations{
        {application.url, RelatedItemKind::application, Naming::bundle, {}}};
    const auto add = [&](const char* folderName, const std::string& name, RelatedItemKind kind,
                         Naming naming) {
        auto folder = std::string("Library/") + folderName;
        auto url = home.appendingPathComponent(folder + "/" + name);
        locations.push_back({std::move(url), kind, naming, std::move(folder)});
    };
    if (const auto& identifier = application.bundleIdentifier) {
        const auto addByIdentifier = [&](const char* folder, const char* extension, RelatedItemKind kind) {
            add(folder, *identifier + extension, kind, Naming::identifier);
        };
        addByIdentifier("Caches", "", RelatedItemKind::cache);
        addByIdentifier("Preferences", ".plist", RelatedItemKind::preference);
        addByIdentifier("Saved Application State", ".savedState", RelatedItemKind::savedState);
        addByIdentifier("HTTPStorages", "", RelatedItemKind::webData);
        addByIdentifier("WebKit", "", RelatedItemKind::webData);
        addByIdentifier("Containers", "", RelatedItemKind::container);
    }
    if (const auto name = bundleName(application)) {
        add("Application Support", *name, RelatedItemKind::applicationSupport, Naming::name);
        add("Caches", *name, RelatedItemKind::cache, Naming::name);
        add("Logs", *name, RelatedItemKind::other, Naming::name);
    }
    return locations;
}

}  // namespace orvane
