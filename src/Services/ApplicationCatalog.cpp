#include "Services/ApplicationCatalog.h"

#include <algorithm>
#include <string>
#include <unordered_set>
#include <utility>

#include "Formats/CatalogCoding.h"
#include "Services/ParallelFor.h"

namespace orvane {

namespace {

/// Far beyond what a machine's applications need; a larger file is no catalog of ours.
constexpr std::size_t maximumFileSize = std::size_t{64} << 20U;

using Applications = std::vector<InstalledApplication>;

Applications merged(Applications discovered, const Applications& saved, const LocalizedText& localizedText) {
    std::unordered_set<std::string> discoveredPaths;
    for (const auto& application : discovered) discoveredPaths.insert(application.url.standardized().path());

    auto applications = std::move(discovered);
    for (const auto& application : saved) {
        if (discoveredPaths.contains(application.url.standardized().path())) continue;
        applications.push_back(application);
        applications.back().isInstalled = false;
    }
    std::stable_sort(applications.begin(), applications.end(), [&](const auto& a, const auto& b) {
        return localizedText.localizedCaseInsensitiveCompare(a.name, b.name) < 0;
    });
    return applications;
}

}  // namespace

ApplicationCatalog::ApplicationCatalog(const asio::any_io_executor& pool, FileManager& fileManager,
                                       const LocalizedText& localizedText)
    : Actor(pool), pool_(pool), fileManager_(fileManager), localizedText_(localizedText) {}

Task<Applications> ApplicationCatalog::load() {
    return perform([this]() -> Applications {
        const auto bytes = fileManager_.contents(fileURL(), maximumFileSize);
        if (!bytes) return {};
        return decodeCatalog(*bytes).value_or(Applications());
    });
}

Task<void> ApplicationCatalog::save(SharedApplications applications) {
    return perform([this, applications = std::move(applications)] {
        if (!fileManager_.createDirectory(folderURL())) return;
        const auto bytes = encodeCatalog(*applications);
        if (!bytes) return;
        // A failure leaves the old file, and nobody is to be told: the next save tries again.
        (void)fileManager_.writeAtomically(*bytes, fileURL());
    });
}

Task<Applications> ApplicationCatalog::updateAvailability(Applications applications) {
    return perform([this, applications = std::move(applications)]() mutable {
        std::vector<const FileURL*> urls;
        urls.reserve(applications.size());
        for (const auto& application : applications) urls.push_back(&application.url);
        const auto together = [&](FunctionRef<void()> work) { workTogether(pool_, work); };
        const auto areThere = fileManager_.filesExist(urls, together);
        for (std::size_t index = 0; index < applications.size(); ++index) {
            applications[index].isInstalled = areThere[index];
        }
        return std::move(applications);
    });
}

Task<Applications> ApplicationCatalog::merge(Applications discovered, SharedApplications saved) {
    return perform([this, discovered = std::move(discovered), saved = std::move(saved)]() mutable {
        return merged(std::move(discovered), *saved, localizedText_);
    });
}

FileURL ApplicationCatalog::folderURL() const {
    return fileManager_.applicationSupportDirectory().appendingPathComponent("Orvane", true);
}

FileURL ApplicationCatalog::fileURL() const {
    return folderURL().appendingPathComponent("applications.json");
}

}  // namespace orvane
