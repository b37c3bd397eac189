#include "Platform/Posix/LocalizedInformation.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "Formats/PropertyList.h"

namespace orvane {

namespace {

constexpr std::string_view stringsName = "InfoPlist.strings";
constexpr std::string_view tableName = "InfoPlist.loctable";
constexpr std::string_view localizationExtension = ".lproj";
constexpr std::string_view baseLocalization = "Base";

/// No language has a longer name, no bundle more of them.
constexpr std::size_t longestName = 64;
constexpr std::size_t mostLocalizations = 500;

/// What a bundle's resources hold of its information in other languages.
struct LocalizedResources {
    bool hasStrings = false;
    bool hasTable = false;
    /// The names of the folders, without their extension.
    std::vector<std::string> localizations;
};

/// One look at the folder tells more than many files that are not there.
LocalizedResources localizedResources(const FileURL& folder, const FileManager& fileManager) {
    LocalizedResources resources;
    // Keeps the names itself: a folder can hold millions of others.
    const auto keep = [&](std::string_view name) {
        if (name == stringsName) resources.hasStrings = true;
        if (name == tableName) resources.hasTable = true;
        if (!name.ends_with(localizationExtension)) return false;
        name.remove_suffix(localizationExtension.size());
        if (name.size() <= longestName && resources.localizations.size() < mostLocalizations) {
            resources.localizations.emplace_back(name);
        }
        return false;
    };
    fileManager.contentsOfDirectory(folder, {.skipsHiddenFiles = true, .takes = keep});
    return resources;
}

bool contains(const std::vector<std::string>& names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// The localizations in which the information is looked for, one after the other.
std::vector<std::string> searchList(const std::vector<std::string>& names,
                                    const std::vector<Language>& languages,
                                    const std::optional<std::string>& developmentRegion) {
    auto list = closestLocalizations(languages, names);
    const auto own = Language::named(developmentRegion.value_or("")).value_or(Language{"en", {}, {}});
    for (auto& name : closestLocalizations({own}, names)) {
        if (!contains(list, name)) list.push_back(std::move(name));
    }
    list.emplace_back(baseLocalization);
    return list;
}

bool isMissing(const std::error_code& error) {
    return error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory;
}

}  // namespace

void localize(Bundle& bundle, const FileURL& resources, const FileManager& fileManager,
              const std::vector<Language>& languages) {
    const auto contents = [&](const FileURL& folder, std::string_view name) {
        return fileManager.contents(folder.appendingPathComponent(name), PropertyListLimits::bytes);
    };
    const auto found = localizedResources(resources, fileManager);
    if (found.hasStrings) {
        bundle.localize(contents(resources, stringsName).value_or(std::string()));
        return;
    }

    const auto table =
        found.hasTable ? contents(resources, tableName).value_or(std::string()) : std::string();
    const auto tableNames = propertyListDictionaries(table, longestName, mostLocalizations);
    auto names = found.localizations;
    names.insert(names.end(), tableNames.begin(), tableNames.end());
    if (names.empty()) return;

    // The first list that is there counts, even one that says nothing.
    for (const auto& name : searchList(names, languages, bundle.developmentRegion)) {
        if (contains(found.localizations, name)) {
            const auto folder =
                resources.appendingPathComponent(name + std::string(localizationExtension), true);
            const auto strings = contents(folder, stringsName);
            if (strings) bundle.localize(*strings);
            if (strings || !isMissing(strings.error())) return;
        }
        if (contains(tableNames, name)) {
            bundle.localize(table, name);
            return;
        }
    }
}

}  // namespace orvane
