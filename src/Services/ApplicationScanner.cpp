#include "Services/ApplicationScanner.h"

#include <algorithm>
#include <string>
#include <unordered_set>
#include <utility>

#include "Models/ApplicationBundle.h"
#include "Platform/SystemFolders.h"
#include "Services/DiskSize.h"
#include "Services/ParallelFor.h"
#include "Text/UTF8.h"

namespace orvane {

namespace {

/// The bundles at the top level of the application folders, each standardized path once.
std::vector<FileURL> applicationBundles(const FileManager& fileManager) {
    std::vector<FileURL> bundles;
    std::unordered_set<std::string> seenPaths;
    for (const auto& root : SystemFolders(fileManager.homeDirectoryForCurrentUser()).applications) {
        if (!fileManager.fileExists(root)) continue;
        auto children = fileManager.contentsOfDirectory(root, {.skipsHiddenFiles = true});
        if (!children) continue;
        for (auto& child : *children) {
            if (!isApplicationBundle(child.url)) continue;
            if (!seenPaths.insert(child.url.standardized().path()).second) continue;
            bundles.push_back(std::move(child.url));
        }
    }
    return bundles;
}

InstalledApplication describe(const FileURL& url, const FileManager& fileManager,
                              const BundleLoader& bundleLoader) {
    const auto bundle = bundleLoader.bundle(url).value_or(Bundle());
    const auto values = fileManager.resourceValues(url);
    InstalledApplication application;
    application.url = url;
    application.name = bundle.nameOrFileName(url);
    application.bundleIdentifier = bundle.identifier;
    application.version = bundle.shortVersion.value_or(bundle.version.value_or("Unknown"));
    if (values) application.modifiedAt = values->contentModificationDate;
    application.isSystemApplication = isBelowSystem(url);
    application.isInstalled = true;
    return application;
}

}  // namespace

ApplicationScanner::ApplicationScanner(const asio::any_io_executor& pool, const FileManager& fileManager,
                                       const BundleLoader& bundleLoader, const LocalizedText& localizedText)
    : Actor(pool),
      pool_(pool),
      fileManager_(fileManager),
      bundleLoader_(bundleLoader),
      localizedText_(localizedText) {}

Task<std::vector<InstalledApplication>> ApplicationScanner::scan(BundleSizes sizes) {
    return perform([this, sizes] {
        const auto bundles = applicationBundles(fileManager_);
        std::vector<InstalledApplication> applications(bundles.size());
        parallelFor(pool_, bundles.size(), [&](std::size_t index) {
            applications[index] = describe(bundles[index], fileManager_, bundleLoader_);
        });
        if (sizes == BundleSizes::measured) {
            const auto measured = bundleSizes(pool_, fileManager_, bundles);
            for (std::size_t i = 0; i < measured.size(); ++i) applications[i].size = measured[i];
        }
        std::stable_sort(applications.begin(), applications.end(), [this](const auto& a, const auto& b) {
            return localizedText_.localizedCaseInsensitiveCompare(a.name, b.name) < 0;
        });
        return applications;
    });
}

}  // namespace orvane
